// SPDX-License-Identifier: MIT
// The semaphore over the desktop's multiprocessing services.
#include "misc/threads/semaphore.h"

#include "misc/text/numbers.h"

namespace Orvil {

namespace {

Exception failure(const std::string& message, std::uint32_t line) {
    return {"Semaphore (Carbon-MP): failed to " + message,
            "source/externals/orvil/source/misc/threads/semaphore", line, ""};
}

} // namespace

Semaphore::Semaphore(std::uint32_t initialValue) {
    const OSStatus status = MPCreateSemaphore(maximumValue, initialValue, &semaphore_);
    if (status != noErr) {
        throw failure("create semaphore (intialValue: " + toString(initialValue, 0, 6) +
                          "): " + toString(status, 0, 6),
                      __LINE__);
    }
}

Semaphore::~Semaphore() {
    MPDeleteSemaphore(semaphore_);
}

void Semaphore::dec() {
    if (MPWaitOnSemaphore(semaphore_, kDurationForever) != noErr) {
        throw failure("decrement semaphore", __LINE__);
    }
}

bool Semaphore::trydec() {
    const OSStatus status = MPWaitOnSemaphore(semaphore_, kDurationImmediate);
    if (status != noErr && status != kMPTimeoutErr) {
        throw failure("try decrement semaphore", __LINE__);
    }
    return status == noErr;
}

void Semaphore::inc() {
    if (MPSignalSemaphore(semaphore_) != noErr) {
        throw incrementFailure();
    }
}

Exception Semaphore::incrementFailure() {
    return failure("increment semaphore", __LINE__);
}

} // namespace Orvil
