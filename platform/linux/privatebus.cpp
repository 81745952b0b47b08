// SPDX-License-Identifier: MIT
// Starts the bus daemon, bound to the life of this process by the kernel's parent-death signal.
#include "privatebus.h"

#include "glibhandles.h"
#include "signalmask.h"
#include "system/descriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <future>
#include <memory>
#include <string_view>
#include <system_error>
#include <thread>

namespace platform {

namespace {

constexpr int startTimeoutMilliseconds = 10'000;

struct Started {
    std::string address; ///< empty: `reason` tells why
    std::string reason;
};

/// Between fork and exec: nothing but async-signal-safe calls.
[[noreturn]] void becomeDaemon(const char* program, char* const* arguments, pid_t parent,
                               int addressPipe) {
    constexpr int cannotRun = 127;
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) { // ended before the signal was asked for
        _exit(cannotRun);
    }
    setsid(); // an interrupt typed at the terminal is for the program, not for its bus
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const int pipe = fcntl(addressPipe, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    // The daemon's standard error would only tell of limits that it could not raise.
    const int nothing = ::open("/dev/null", O_RDWR);
    dup2(nothing, STDIN_FILENO);
    dup2(nothing, STDERR_FILENO);
    dup2(pipe, STDOUT_FILENO);
    execv(program, arguments);
    _exit(cannotRun);
}

/// The first line written to `pipe`; empty when there is none in time.
std::string readLine(int pipe) {
    std::string line;
    std::array<char, 512> buffer{};
    while (line.find('\n') == std::string::npos) {
        pollfd watched{pipe, POLLIN, 0};
        const int ready = poll(&watched, 1, startTimeoutMilliseconds);
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        const ssize_t count = ready > 0 ? read(pipe, buffer.data(), buffer.size()) : 0;
        if (count <= 0) {
            return {};
        }
        line.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return line.substr(0, line.find('\n'));
}

void reap(pid_t child) {
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

/// Body of the thread that forks the daemon. The kernel binds the parent-death signal to the
/// forking thread, so this one stays for as long as the daemon runs, and reaps it.
void keepDaemon(std::promise<Started> started) {
    const TextHandle program(g_find_program_in_path("dbus-daemon"));
    if (!program) {
        return started.set_value({{}, "dbus-daemon is not installed"});
    }
    std::array<std::string, 5> texts{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                     "--print-address=" + std::to_string(STDOUT_FILENO)};
    std::array<char*, 6> arguments{};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        arguments[i] = texts[i].data();
    }
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
        return started.set_value({{}, std::generic_category().message(errno)});
    }
    const sys::Descriptor readEnd(pipe[0]);
    sys::Descriptor writeEnd(pipe[1]);

    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) {
        return started.set_value({{}, std::generic_category().message(errno)});
    }
    if (child == 0) {
        becomeDaemon(program.get(), arguments.data(), parent, writeEnd.get());
    }
    writeEnd.close();
    std::string address = readLine(readEnd.get());
    if (address.empty()) {
        kill(child, SIGKILL);
        reap(child);
        return started.set_value({{}, "dbus-daemon told no address"});
    }
    started.set_value({std::move(address), {}});
    reap(child);
}

} // namespace

std::optional<std::string> startPrivateBus(std::string& reason) {
    std::promise<Started> promise;
    std::future<Started> future = promise.get_future();
    try {
        const SignalMask mask;
        std::thread(keepDaemon, std::move(promise)).detach();
    } catch (const std::system_error& error) {
        reason = error.what();
        return std::nullopt;
    }
    Started started = future.get();
    reason = std::move(started.reason);
    return started.address.empty() ? std::nullopt : std::optional(std::move(started.address));
}

} // namespace platform
