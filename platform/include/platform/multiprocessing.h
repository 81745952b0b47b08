// SPDX-License-Identifier: MIT
// Counting semaphores with a maximum, and the atomic addition.
#pragma once

#include "platform/types.h"

using MPSemaphoreID = struct OpaqueMPSemaphore*;
using MPSemaphoreCount = std::uint32_t;
using Duration = std::int32_t; ///< milliseconds

enum : Duration {
    kDurationImmediate = 0,
    kDurationForever = 0x7FFFFFFF,
};
enum : OSStatus {
    kMPTimeoutErr = -29296,
    kMPInsufficientResourcesErr = -29298,
    kMPInvalidIDErr = -29299,
};

/// [any-thread] Makes a semaphore with 0 <= initialValue <= maximumValue (at least 1, at most
/// 32,767); owned by the caller until MPDeleteSemaphore. paramErr: values out of range or null
/// result; kMPInsufficientResourcesErr.
[[nodiscard]] OSStatus MPCreateSemaphore(MPSemaphoreCount maximumValue,
                                         MPSemaphoreCount initialValue, MPSemaphoreID* semaphore);
/// [any-thread] Takes one, waiting up to `timeout`. A wait (not an immediate try) is a cancellation
/// point of POSIX threads; a cancelled one has taken nothing. Signal handlers do not end it.
/// kMPTimeoutErr; kMPInvalidIDErr: null; paramErr: negative time-out.
[[nodiscard]] OSStatus MPWaitOnSemaphore(MPSemaphoreID semaphore, Duration timeout);
/// [any-thread] Gives one; never blocks. kMPInsufficientResourcesErr: it is at its maximum;
/// kMPInvalidIDErr: null.
OSStatus MPSignalSemaphore(MPSemaphoreID semaphore);
/// [any-thread] Deletes it. No thread may be waiting on it. kMPInvalidIDErr: null.
OSStatus MPDeleteSemaphore(MPSemaphoreID semaphore);

/// [any-thread] Adds `amount` with a full memory barrier and returns the new value.
inline std::int32_t OSAtomicAdd32Barrier(std::int32_t amount, volatile std::int32_t* value) {
    return __atomic_add_fetch(value, amount, __ATOMIC_SEQ_CST);
}
