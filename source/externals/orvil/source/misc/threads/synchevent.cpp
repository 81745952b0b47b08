// SPDX-License-Identifier: MIT
// The event over a POSIX condition and mutex.
#include "misc/threads/synchevent.h"

#include "misc/exception.h"
#include "misc/threads/cancellation.h"

#include <cerrno>
#include <ctime>
#include <sys/time.h>

namespace Orvil {

namespace {

constexpr unsigned untimedStep = 250; // milliseconds

/// For the POSIX mutex inside the event; none of its calls can fail there.
class Locked {
public:
    explicit Locked(pthread_mutex_t& mutex) noexcept : mutex_(mutex) {
        pthread_mutex_lock(&mutex_);
    }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked() { pthread_mutex_unlock(&mutex_); }

private:
    pthread_mutex_t& mutex_;
};

timespec deadlineAfter(unsigned milliseconds) {
    constexpr long nanosecondsPerSecond = 1'000'000'000;
    timeval now{};
    gettimeofday(&now, nullptr);
    timespec deadline{};
    deadline.tv_sec = now.tv_sec + static_cast<time_t>(milliseconds / 1000);
    deadline.tv_nsec = static_cast<long>(milliseconds % 1000) * 1'000'000 + now.tv_usec * 1000;
    if (deadline.tv_nsec >= nanosecondsPerSecond) {
        deadline.tv_nsec -= nanosecondsPerSecond;
        ++deadline.tv_sec;
    }
    return deadline;
}

} // namespace

/// Counts the calling thread among those that the destructor has to let out. Its end is safe during
/// the unwinding of a cancelled thread too.
class SynchEvent::Visit {
public:
    explicit Visit(const SynchEvent& event) noexcept : event_(event) {
        const Locked locked(event_.mutex_);
        ++event_.visitors_;
    }
    Visit(const Visit&) = delete;
    Visit& operator=(const Visit&) = delete;
    ~Visit() {
        const Locked locked(event_.mutex_);
        --event_.visitors_;
        if (event_.dying_) {
            pthread_cond_broadcast(&event_.condition_);
        }
    }

private:
    const SynchEvent& event_;
};

SynchEvent::SynchEvent(bool autoReset) : autoReset_(autoReset) {
    pthread_mutexattr_t attribute{};
    pthread_mutexattr_init(&attribute);
    pthread_mutexattr_settype(&attribute, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&mutex_, &attribute);
    pthread_mutexattr_destroy(&attribute);
}

SynchEvent::~SynchEvent() noexcept(false) {
    endUncancelled();
    pthread_testcancel();
}

void SynchEvent::endUncancelled() {
    const CancellationBlock block;
    signal();
    {
        const Locked locked(mutex_);
        dying_ = true;
        pthread_cond_broadcast(&condition_);
        while (visitors_ > 0) {
            pthread_cond_wait(&condition_, &mutex_);
        }
    }
    pthread_mutex_destroy(&mutex_);
    pthread_cond_destroy(&condition_);
}

void SynchEvent::signal() {
    const CancellationBlock block;
    const Locked locked(mutex_);
    signalled_ = 1;
    const int error =
        autoReset_ ? pthread_cond_signal(&condition_) : pthread_cond_broadcast(&condition_);
    if (error != 0) {
        throw Exception(autoReset_ ? "could not signal" : "could not broadcast",
                        "source/externals/orvil/source/misc/threads/synchevent", __LINE__, "");
    }
}

void SynchEvent::reset() {
    const Locked locked(mutex_);
    signalled_ = 0;
}

bool SynchEvent::waitUncancelled(unsigned milliseconds) const {
    const timespec deadline = deadlineAfter(milliseconds);
    const CancellationBlock block;
    const Visit visit(*this);
    const Locked locked(mutex_);
    int result = 0;
    while (signalled_ == 0 && !dying_ && result != ETIMEDOUT) {
        result = pthread_cond_timedwait(&condition_, &mutex_, &deadline);
    }
    const bool found = signalled_ != 0 || dying_;
    if (autoReset_) {
        signalled_ = 0;
    }
    return found;
}

bool SynchEvent::wait(unsigned milliseconds) const {
    const bool found = waitUncancelled(milliseconds);
    pthread_testcancel();
    return found;
}

bool SynchEvent::wait() const {
    const Visit visit(*this);
    while (!wait(untimedStep)) {
    }
    return true;
}

} // namespace Orvil
