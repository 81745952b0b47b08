// SPDX-License-Identifier: MIT
// A stretch of code in which the calling thread cannot be cancelled.
#pragma once

#include <pthread.h>

namespace Orvil {

/// Puts cancellation of the calling thread off for the length of a scope. Its end is no
/// cancellation point; the next one acts on what came meanwhile.
class CancellationBlock {
public:
    CancellationBlock() noexcept { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &previous_); }
    CancellationBlock(const CancellationBlock&) = delete;
    CancellationBlock& operator=(const CancellationBlock&) = delete;
    ~CancellationBlock() { pthread_setcancelstate(previous_, nullptr); }

private:
    int previous_ = PTHREAD_CANCEL_ENABLE;
};

} // namespace Orvil
