// SPDX-License-Identifier: MIT
// Mutual exclusion between threads.
#pragma once

#include "misc/exception.h"

#include <pthread.h>

namespace Orvil {

/// [any-thread] A POSIX mutex. Its calls are not cancellation points. Each throws Exception, with a
/// fixed message per error, when the system refuses.
class Mutex {
public:
    /// A recursive mutex may be locked again by the thread that holds it; another one blocks.
    explicit Mutex(bool recursive);
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;
    ~Mutex();

    void lock();
    void unlock();

    /// The failures that lock() and unlock() throw for an error number of the C library.
    [[nodiscard]] static Exception lockFailure(int error);
    [[nodiscard]] static Exception unlockFailure(int error);

private:
    pthread_mutex_t mutex_{};
};

/// Holds a lock for the length of a scope.
template <typename MutexType>
class ScopedLock {
public:
    explicit ScopedLock(MutexType& mutex) : mutex_(mutex) { mutex_.lock(); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;
    ~ScopedLock() { mutex_.unlock(); }

private:
    MutexType& mutex_;
};

} // namespace Orvil
