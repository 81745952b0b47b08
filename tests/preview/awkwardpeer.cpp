// SPDX-License-Identifier: MIT
// In the place of the process that draws: does what the text says, or the file's name where it is
// looked at. Its pictures are one pixel, the number of the request.
#include "preview/drawing/serve.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <string_view>

namespace {

void end(int signal) {
    std::signal(signal, SIG_DFL); // not the sanitizer's report
    std::raise(signal);
}

[[noreturn]] void spin() {
    for (volatile unsigned turns = 0;;) {
        turns = turns + 1;
    }
}

void say(std::string_view bytes) {
    if (write(STDIN_FILENO, bytes.data(), bytes.size()) < 0) {
        std::perror("socket");
    }
    pause();
}

// The one that lists them has one open too.
std::string extraDescriptors() {
    using Folder = std::filesystem::directory_iterator;
    return std::to_string(std::distance(Folder("/proc/self/fd"), Folder()) - 4);
}

std::string message(std::size_t length, std::string_view body) {
    return std::string{static_cast<char>(length), 0, 0, static_cast<char>(length >> 24U)} +
           std::string(body);
}

/// Has this process, once it is killed, not end for its parent before somebody writes to `pipe`:
/// one that traces it would have to be told first. False: the system allows no tracing.
bool lingerUntilWrittenTo(const std::string& pipe) {
    constexpr unsigned atMost = 300; // seconds, should nobody ever write
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0) {
        return false;
    }
    prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY);
    if (fork() == 0) {
        alarm(atMost);
        close(STDIN_FILENO);
        const bool traces = ptrace(PTRACE_SEIZE, getppid(), nullptr, nullptr) == 0;
        if (traces && write(ends[1], "x", 1) == 1) {
            open(pipe.c_str(), O_RDONLY | O_CLOEXEC);
        }
        _exit(0);
    }
    close(ends[1]);
    char byte = 0;
    return read(ends[0], &byte, 1) == 1;
}

preview::Look look(const std::string& file) {
    if (file.ends_with("hung")) {
        pause();
    } else if (file.ends_with("elsewhere")) {
        static std::int64_t looks = 0; // another file at each second one
        return {{}, {1, 2, 3, 4, (looks++ / 2) << 32}};
    }
    return preview::lookAt(file);
}

} // namespace

int main(int argc, char** argv) {
    char count = 0;
    const auto draw = [&count](const preview::Request& request) {
        const std::string& text = request.text;
        if (text.starts_with("linger") && !lingerUntilWrittenTo(request.file)) {
            return preview::Answer{"no tracing"};
        }
        if (text == "crash") {
            end(SIGSEGV);
        } else if (text == "be killed") {
            end(SIGKILL);
        } else if (text == "leave" || text == "linger and leave") {
            _exit(3);
        } else if (text == "wait") {
            pause();
        } else if (text == "spin") {
            spin();
        } else if (text == "say too much") {
            say(message(0xFF000000, "x"));
        } else if (text == "say nonsense" || text == "linger and say nonsense") {
            say(message(5, "hello"));
        } else if (text == "say more than it said") {
            say(message(1, "hello"));
        } else if (text == "take memory") {
            return preview::Answer{std::string(std::size_t{1} << 30U, 'x')};
        } else if (text == "tell descriptors") {
            return preview::Answer{extraDescriptors()};
        }
        return preview::Answer{{}, {preview::PixelForm::Grey, 1, 1, 0, {++count}}, {}};
    };
    return preview::serveMain(argc, argv, draw, look);
}
