// SPDX-License-Identifier: MIT
// An event that threads wait for.
#pragma once

#include <pthread.h>

namespace Orvil {

/// A flag that is signalled and waited for. With auto-reset a successful wait clears it and a
/// signal wakes one waiter; otherwise it stays set and a signal wakes all.
/// [any-thread] A cancelled thread never leaves the event locked: cancellation is acted on only at
/// the end of a wait, outside the lock.
class SynchEvent {
public:
    explicit SynchEvent(bool autoReset);
    SynchEvent(const SynchEvent&) = delete;
    SynchEvent& operator=(const SynchEvent&) = delete;
    /// Signals first and stays until every waiter has left; none stays blocked on a dying event.
    /// Ends with a cancellation point.
    ~SynchEvent() noexcept(false);

    /// Throws Exception if the system cannot wake the waiters.
    void signal();
    /// Clears the flag.
    void reset();
    /// Whether the event was signalled within `milliseconds`. Ends with a cancellation point.
    [[nodiscard]] bool wait(unsigned milliseconds) const;
    /// Waits as long as it takes, in steps of 250 ms that each end with a cancellation point: a
    /// thread that waits here is cancelled within a quarter of a second. Always true.
    bool wait() const;

private:
    class Visit;

    void endUncancelled();
    bool waitUncancelled(unsigned milliseconds) const;

    bool autoReset_;
    mutable pthread_cond_t condition_ = PTHREAD_COND_INITIALIZER;
    mutable pthread_mutex_t mutex_{};
    mutable int signalled_ = 0;
    mutable unsigned visitors_ = 0; // threads inside a wait
    bool dying_ = false;
};

} // namespace Orvil
