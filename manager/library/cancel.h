// SPDX-License-Identifier: MIT
// Ending long work at a safe point, when a signal asks this process to end.
#pragma once

#include "manager/library/error.h"
#include "system/descriptor.h"

#include <csignal>

namespace manager {

/// What was begun was not brought to its end, as its user wished.
class Cancelled : public Error {
public:
    using Error::Error;
};

/// [main-thread] While it lives, SIGINT and SIGTERM do not end the process, but have checkCancelled
/// throw. Processes that are forked meanwhile take no notice of them. One at a time.
class CancelBySignals {
public:
    /// Throws Error.
    CancelBySignals();
    CancelBySignals(const CancelBySignals&) = delete;
    CancelBySignals& operator=(const CancelBySignals&) = delete;
    /// The process is asked no more.
    ~CancelBySignals();

private:
    sys::Descriptor asked_;
    struct sigaction interrupt_ {};
    struct sigaction terminate_ {};
};

/// Stands at the safe points. Throws Cancelled once the process was asked to end, until the
/// CancelBySignals goes.
void checkCancelled();

/// Readable from when the process was asked to end: for who waits for something else at the same
/// time, and would miss a signal that comes just before. -1, which poll passes over, while there is
/// no CancelBySignals.
[[nodiscard]] int cancelDescriptor() noexcept;

} // namespace manager
