// SPDX-License-Identifier: MIT
// Keeps the program's signals away from threads that this library causes to be made.
#pragma once

#include <csignal>

namespace platform {

/// Blocks all signals in the calling thread while it lives; threads made meanwhile inherit that, so
/// that a signal always reaches, and interrupts, a thread of the program itself.
class SignalMask {
public:
    SignalMask() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &previous_);
    }
    ~SignalMask() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
    SignalMask(const SignalMask&) = delete;
    SignalMask& operator=(const SignalMask&) = delete;

private:
    sigset_t previous_;
};

} // namespace platform
