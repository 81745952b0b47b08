// SPDX-License-Identifier: MIT
// A counter that any thread may change.
#pragma once

#include "platform/multiprocessing.h"

#include <cstdint>

namespace Orvil {

/// A signed 32-bit counter, changed with full memory barriers only.
class AtomicCount {
public:
    explicit AtomicCount(std::int32_t initial) noexcept : count_(initial) {}
    AtomicCount(const AtomicCount&) = delete;
    AtomicCount& operator=(const AtomicCount&) = delete;
    ~AtomicCount() = default;

    /// Adds and returns the new value.
    std::int32_t add(std::int32_t amount) noexcept { return OSAtomicAdd32Barrier(amount, &count_); }

private:
    std::int32_t count_;
};

} // namespace Orvil
