// SPDX-License-Identifier: MIT
// A counting semaphore.
#pragma once

#include "misc/exception.h"
#include "platform/multiprocessing.h"

#include <cstdint>

namespace Orvil {

/// [any-thread] Counts up to 32,767. Throws Exception when the system refuses a call.
class Semaphore {
public:
    static constexpr std::uint32_t maximumValue = 32767;

    explicit Semaphore(std::uint32_t initialValue);
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;
    /// No thread may be waiting.
    ~Semaphore();

    /// Takes one, waiting for it as long as it takes. A cancellation point.
    void dec();
    /// Takes one if there is one, without waiting.
    [[nodiscard]] bool trydec();
    /// Gives one. Throws at the maximum too.
    void inc();

    /// What inc() throws.
    [[nodiscard]] static Exception incrementFailure();

private:
    MPSemaphoreID semaphore_ = nullptr;
};

} // namespace Orvil
