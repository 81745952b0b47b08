// SPDX-License-Identifier: MIT
// Starts, watches and ends the scanning process.
#include "manager/cli/scanprocess.h"

#include "manager/cli/report.h"
#include "manager/library/error.h"
#include "system/descriptor.h"

#include <array>
#include <csignal>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration)

namespace manager {

namespace {

constexpr int patienceMilliseconds = 2000;

} // namespace

ScanProcess::~ScanProcess() {
    if (process_ <= 0) {
        return;
    }
    kill(process_, SIGTERM);
    // It ends at once, unless a file system holds it up; that must not hold the server up.
    const sys::Descriptor process(static_cast<int>(syscall(SYS_pidfd_open, process_, 0)));
    pollfd ended{process.get(), POLLIN, 0};
    if (!process || poll(&ended, 1, patienceMilliseconds) != 1) {
        kill(process_, SIGKILL);
    }
    waitpid(process_, nullptr, WNOHANG);
}

void ScanProcess::start() {
    std::array<char, 16> program{"glyphora"};
    std::array<char, 8> command{"scan"};
    std::array<char, 8> option{"--quiet"};
    const std::array<char*, 4> arguments = {program.data(), command.data(), option.data(), nullptr};
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    const int code =
        posix_spawn(&process_, "/proc/self/exe", nullptr, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    if (code != 0) {
        process_ = -1;
        warn(systemError("scan", "cannot be started", code).what());
    }
}

bool ScanProcess::hasEnded() {
    int status = 0;
    if (process_ <= 0 || waitpid(process_, &status, WNOHANG) != process_) {
        return false;
    }
    process_ = -1;
    if (WIFSIGNALED(status)) {
        warn("scan: ended by signal " + std::to_string(WTERMSIG(status)));
    }
    return true;
}

} // namespace manager
