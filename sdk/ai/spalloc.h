// SPDX-License-Identifier: MIT
// An allocator over the host's memory, for containers whose storage the host is to own and count.
#pragma once

#include "sp/basic.h"

#include <cstddef>
#include <limits>
#include <new>

namespace ai {

namespace detail {
/// [any-thread] A block of the basic suite, owned by the caller until freeBlock. Throws
/// std::bad_alloc.
[[nodiscard]] void* allocateBlock(std::size_t size);
/// [any-thread]
void freeBlock(void* block) noexcept;
} // namespace detail

/// [any-thread] Meets the standard's requirements for allocators; all instances are equal.
template <typename T>
class SPAlloc {
public:
    using value_type = T;

    SPAlloc() noexcept = default;
    template <typename Other>
    SPAlloc(const SPAlloc<Other>&) noexcept {} // NOLINT: allocators convert implicitly

    [[nodiscard]] T* allocate(std::size_t count) {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        return static_cast<T*>(detail::allocateBlock(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t) noexcept { detail::freeBlock(block); }

    template <typename Other>
    bool operator==(const SPAlloc<Other>&) const noexcept {
        return true;
    }
};

} // namespace ai
