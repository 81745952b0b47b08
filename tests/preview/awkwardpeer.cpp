// SPDX-License-Identifier: MIT
// In the place of the process that draws: does what the text says. Its pictures are one pixel, the
// number of the request.
#include "preview/drawing/serve.h"

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

} // namespace

int main(int argc, char** argv) {
    char count = 0;
    return preview::serveMain(argc, argv, [&count](const preview::Request& request) {
        const std::string& text = request.text;
        if (text == "crash") {
            end(SIGSEGV);
        } else if (text == "be killed") {
            end(SIGKILL);
        } else if (text == "leave") {
            _exit(3);
        } else if (text == "wait") {
            pause();
        } else if (text == "spin") {
            spin();
        } else if (text == "say too much") {
            say(message(0xFF000000, "x"));
        } else if (text == "say nonsense") {
            say(message(5, "hello"));
        } else if (text == "say more than it said") {
            say(message(1, "hello"));
        } else if (text == "take memory") {
            return preview::Answer{std::string(std::size_t{1} << 30U, 'x')};
        } else if (text == "tell descriptors") {
            return preview::Answer{extraDescriptors()};
        }
        return preview::Answer{{}, {preview::PixelForm::Grey, 1, 1, 0, {++count}}, {}};
    });
}
