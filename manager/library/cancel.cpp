// SPDX-License-Identifier: MIT
#include "manager/library/cancel.h"

#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace manager {

namespace {

volatile std::sig_atomic_t isAsked = 0;
volatile std::sig_atomic_t descriptor = -1;

void ask(int /*signal*/) {
    const int before = errno;
    isAsked = 1;
    const std::uint64_t one = 1;
    static_cast<void>(write(descriptor, &one, sizeof one) != 0);
    errno = before;
}

} // namespace

CancelBySignals::CancelBySignals() : asked_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!asked_) {
        throw systemError("signals", "cannot be waited for", errno);
    }
    descriptor = asked_.get();
    isAsked = 0;
    struct sigaction action {}; // no SA_RESTART: what waits is to look
    action.sa_handler = ask;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &interrupt_);
    sigaction(SIGTERM, &action, &terminate_);
}

CancelBySignals::~CancelBySignals() {
    sigaction(SIGINT, &interrupt_, nullptr);
    sigaction(SIGTERM, &terminate_, nullptr);
    isAsked = 0;
    descriptor = -1;
}

int cancelDescriptor() noexcept {
    return descriptor;
}

void checkCancelled() {
    if (isAsked != 0) {
        throw Cancelled("cancelled before its end");
    }
}

} // namespace manager
