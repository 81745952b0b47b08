// SPDX-License-Identifier: MIT
// The counting semaphores of multiprocessing.h: a POSIX semaphore with its maximum kept beside it.
#include "platform/multiprocessing.h"

#include <semaphore.h>

#include <atomic>
#include <cerrno>
#include <ctime>
#include <memory>
#include <new>

/// POSIX semaphores know no maximum, so `counted` counts along: it goes up before each post and
/// down after each wait and is therefore never below the semaphore's own value. A signal that finds
/// it at the maximum fails without posting. It also orders memory between signaller and waiter.
struct OpaqueMPSemaphore {
    OpaqueMPSemaphore(MPSemaphoreCount maximumValue, MPSemaphoreCount initialValue)
        : maximum(maximumValue), counted(initialValue) {
        valid = sem_init(&semaphore, 0, initialValue) == 0;
    }
    ~OpaqueMPSemaphore() {
        if (valid) {
            sem_destroy(&semaphore);
        }
    }
    OpaqueMPSemaphore(const OpaqueMPSemaphore&) = delete;
    OpaqueMPSemaphore& operator=(const OpaqueMPSemaphore&) = delete;

    sem_t semaphore{};
    const MPSemaphoreCount maximum;
    std::atomic<MPSemaphoreCount> counted;
    bool valid = false;
};

namespace {

constexpr MPSemaphoreCount greatestMaximum = 32767;

timespec deadlineAfter(Duration milliseconds) {
    constexpr long nanosecondsPerSecond = 1'000'000'000;
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    time.tv_sec += milliseconds / 1000;
    time.tv_nsec += (milliseconds % 1000) * 1'000'000L;
    if (time.tv_nsec >= nanosecondsPerSecond) {
        time.tv_nsec -= nanosecondsPerSecond;
        ++time.tv_sec;
    }
    return time;
}

/// 0 or an errno value. Cancellation of the thread unwinds through here with nothing taken.
int take(sem_t& semaphore, Duration timeout) {
    if (timeout == kDurationImmediate) {
        return sem_trywait(&semaphore) == 0 ? 0 : errno;
    }
    const bool forever = timeout == kDurationForever;
    const timespec deadline = forever ? timespec{} : deadlineAfter(timeout);
    for (;;) {
        const int result =
            forever ? sem_wait(&semaphore) : sem_clockwait(&semaphore, CLOCK_MONOTONIC, &deadline);
        if (result == 0 || errno != EINTR) {
            return result == 0 ? 0 : errno;
        }
    }
}

} // namespace

OSStatus MPCreateSemaphore(MPSemaphoreCount maximumValue, MPSemaphoreCount initialValue,
                           MPSemaphoreID* semaphore) {
    if (semaphore == nullptr || maximumValue < 1 || maximumValue > greatestMaximum ||
        initialValue > maximumValue) {
        return paramErr;
    }
    std::unique_ptr<OpaqueMPSemaphore> made(new (std::nothrow)
                                                OpaqueMPSemaphore(maximumValue, initialValue));
    if (!made || !made->valid) {
        return kMPInsufficientResourcesErr;
    }
    *semaphore = made.release();
    return noErr;
}

OSStatus MPWaitOnSemaphore(MPSemaphoreID semaphore, Duration timeout) {
    if (semaphore == nullptr) {
        return kMPInvalidIDErr;
    }
    if (timeout < 0) {
        return paramErr;
    }
    switch (take(semaphore->semaphore, timeout)) {
    case 0:
        semaphore->counted.fetch_sub(1, std::memory_order_acq_rel);
        return noErr;
    case EAGAIN:
    case ETIMEDOUT:
        return kMPTimeoutErr;
    default:
        return kMPInvalidIDErr;
    }
}

OSStatus MPSignalSemaphore(MPSemaphoreID semaphore) {
    if (semaphore == nullptr) {
        return kMPInvalidIDErr;
    }
    MPSemaphoreCount count = semaphore->counted.load(std::memory_order_relaxed);
    do {
        if (count >= semaphore->maximum) {
            return kMPInsufficientResourcesErr;
        }
    } while (!semaphore->counted.compare_exchange_weak(count, count + 1, std::memory_order_acq_rel,
                                                       std::memory_order_relaxed));
    return sem_post(&semaphore->semaphore) == 0 ? OSStatus{noErr} : OSStatus{kMPInvalidIDErr};
}

OSStatus MPDeleteSemaphore(MPSemaphoreID semaphore) {
    if (semaphore == nullptr) {
        return kMPInvalidIDErr;
    }
    const std::unique_ptr<OpaqueMPSemaphore> deleted(semaphore);
    return noErr;
}
