// SPDX-License-Identifier: MIT
// Exchanging file descriptors.
#include "host/cli/standardoutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <string>

namespace host {

ReservedOutput::ReservedOutput(Chatter chatter) {
    std::cout.flush();
    std::fflush(stdout);
    kept_ = sys::Descriptor(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    const sys::Descriptor nothing(
        chatter == Chatter::Dropped ? open("/dev/null", O_WRONLY | O_CLOEXEC) : -1);
    if (kept_) {
        dup2(nothing ? nothing.get() : STDERR_FILENO, STDOUT_FILENO);
    }
}

ReservedOutput::~ReservedOutput() {
    if (!kept_) {
        return;
    }
    std::cout.flush();
    std::fflush(stdout);
    dup2(kept_.get(), STDOUT_FILENO);
}

bool ReservedOutput::write(std::string_view text) const {
    return sys::writeAll(kept_ ? kept_.get() : STDOUT_FILENO, text);
}

std::filesystem::path ReservedOutput::redirected(const std::filesystem::path& path) const {
    if (!kept_ || sys::descriptorNamed(path) != STDOUT_FILENO) {
        return path;
    }
    return "/dev/fd/" + std::to_string(kept_.get());
}

} // namespace host
