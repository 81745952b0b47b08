// SPDX-License-Identifier: MIT
// Starts, watches and ends the scanning process.
#include "manager/cli/scanprocess.h"

#include "manager/cli/ownprocess.h"
#include "manager/cli/report.h"
#include "manager/library/error.h"
#include "system/descriptor.h"

#include <array>
#include <csignal>
#include <poll.h>
#include <string>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

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
    const std::array<std::string, 2> words = {"scan", "--quiet"};
    const int code = startOwn({words}, process_);
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
