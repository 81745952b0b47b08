// SPDX-License-Identifier: MIT
// Exchanging file descriptors.
#include "host/cli/standardoutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <iostream>

namespace host {

ReservedOutput::ReservedOutput(Chatter chatter) {
    std::cout.flush();
    std::fflush(stdout);
    kept_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nothing = chatter == Chatter::Dropped ? open("/dev/null", O_WRONLY | O_CLOEXEC) : -1;
    if (kept_ >= 0) {
        dup2(nothing >= 0 ? nothing : STDERR_FILENO, STDOUT_FILENO);
    }
    if (nothing >= 0) {
        close(nothing);
    }
}

ReservedOutput::~ReservedOutput() {
    if (kept_ < 0) {
        return;
    }
    std::cout.flush();
    std::fflush(stdout);
    dup2(kept_, STDOUT_FILENO);
    close(kept_);
}

bool ReservedOutput::write(std::string_view text) const {
    const int descriptor = kept_ >= 0 ? kept_ : STDOUT_FILENO;
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace host
