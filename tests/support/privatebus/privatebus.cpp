// SPDX-License-Identifier: MIT
// Starting and ending the bus daemon of a test.
#include "tests/support/privatebus/privatebus.h"

#include "system/descriptor.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>

namespace testsupport {

namespace {

/// Between fork and exec: nothing but async-signal-safe calls.
[[noreturn]] void becomeDaemon(pid_t parent, int addressPipe, const char* addressOption) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (getppid() == parent) {
        dup2(addressPipe, STDOUT_FILENO);
        dup2(open("/dev/null", O_WRONLY), STDERR_FILENO); // limits that it could not raise
        execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile",
               "--print-address=1", addressOption, static_cast<char*>(nullptr));
    }
    _exit(127);
}

std::string readLine(int pipe) {
    std::string line;
    char character = 0;
    while (read(pipe, &character, 1) == 1 && character != '\n') {
        line += character;
    }
    return line;
}

} // namespace

PrivateBus::PrivateBus(const std::string& listenAddress) {
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe for the bus daemon");
    }
    const sys::Descriptor readEnd(pipe[0]);
    sys::Descriptor writeEnd(pipe[1]);
    const std::string address = "--address=" + listenAddress;
    const char* addressOption = listenAddress.empty() ? nullptr : address.c_str();
    const pid_t parent = getpid();
    daemon_ = fork();
    if (daemon_ == 0) {
        becomeDaemon(parent, pipe[1], addressOption);
    }
    writeEnd.close();
    address_ = daemon_ > 0 ? readLine(readEnd.get()) : "";
    if (address_.empty()) {
        stop();
        throw std::runtime_error("dbus-daemon could not be started");
    }
    variable_.emplace("DBUS_SESSION_BUS_ADDRESS", address_);
}

PrivateBus::~PrivateBus() {
    stop();
}

void PrivateBus::stop() {
    if (daemon_ <= 0) {
        return;
    }
    kill(daemon_, SIGTERM); // so that it removes its socket
    while (waitpid(daemon_, nullptr, 0) < 0 && errno == EINTR) {
    }
    daemon_ = -1;
}

} // namespace testsupport
