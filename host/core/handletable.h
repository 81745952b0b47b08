// SPDX-License-Identifier: MIT
// Opaque handles that cannot dangle: a handle is an index and a generation in the width of a
// pointer, and is looked up, never followed. A stale one is recognised, not a crash.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <new>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace host {

/// Packs two numbers into a pointer-sized value that is never null.
struct HandleBits {
    static constexpr unsigned width = std::numeric_limits<std::uintptr_t>::digits;
    static constexpr unsigned indexBits = width >= 64 ? 32 : 24;
    static constexpr std::uintptr_t indexMask = (std::uintptr_t{1} << indexBits) - 1;
    static constexpr std::uint32_t generationMask =
        static_cast<std::uint32_t>(std::numeric_limits<std::uintptr_t>::max() >> indexBits);
    static constexpr std::size_t maximumIndex = static_cast<std::size_t>(indexMask) - 1;

    std::size_t index = 0;
    std::uint32_t generation = 0; ///< only the bits of generationMask are kept

    template <typename Handle>
    Handle pack() const noexcept {
        static_assert(std::is_pointer_v<Handle>);
        const std::uintptr_t bits =
            (static_cast<std::uintptr_t>(generation & generationMask) << indexBits) |
            (static_cast<std::uintptr_t>(index) + 1);
        return reinterpret_cast<Handle>(bits);
    }

    /// False for a value that no pack() makes.
    template <typename Handle>
    static bool unpack(Handle handle, HandleBits& result) noexcept {
        const auto bits = reinterpret_cast<std::uintptr_t>(handle);
        if ((bits & indexMask) == 0) {
            return false;
        }
        result.index = static_cast<std::size_t>((bits & indexMask) - 1);
        result.generation = static_cast<std::uint32_t>(bits >> indexBits);
        return true;
    }
};

enum class HandleState : std::uint8_t {
    Live,
    Dead,   ///< was handed out once
    Unknown ///< never was
};

/// Values by handle; addresses stay while a value lives. Slots are used again, so that a hundred
/// thousand short-lived values need few. [one-thread]
template <typename T, typename Handle>
class HandleTable {
public:
    /// Throws std::bad_alloc, also when the indices are used up.
    template <typename... Arguments>
    Handle add(Arguments&&... arguments) {
        if (free_.empty()) {
            if (slots_.size() >= HandleBits::maximumIndex) {
                throw std::bad_alloc();
            }
            if (free_.capacity() <= slots_.size()) {
                free_.reserve(2 * slots_.size() + 16); // remove() must not fail
            }
            slots_.emplace_back();
            free_.push_back(slots_.size() - 1);
        }
        const std::size_t index = free_.back();
        Slot& slot = slots_[index];
        slot.value.emplace(std::forward<Arguments>(arguments)...);
        free_.pop_back();
        ++live_;
        return HandleBits{index, slot.generation}.pack<Handle>();
    }

    T* find(Handle handle) noexcept {
        HandleBits bits;
        if (!HandleBits::unpack(handle, bits) || bits.index >= slots_.size()) {
            return nullptr;
        }
        Slot& slot = slots_[bits.index];
        return slot.value && slot.generation == bits.generation ? &*slot.value : nullptr;
    }

    HandleState state(Handle handle) noexcept {
        if (find(handle) != nullptr) {
            return HandleState::Live;
        }
        HandleBits bits;
        const bool known = HandleBits::unpack(handle, bits) && bits.index < slots_.size() &&
                           bits.generation <= slots_[bits.index].generation;
        return known ? HandleState::Dead : HandleState::Unknown;
    }

    /// False when there is no such value.
    bool remove(Handle handle) noexcept {
        if (find(handle) == nullptr) {
            return false;
        }
        HandleBits bits;
        HandleBits::unpack(handle, bits);
        Slot& slot = slots_[bits.index];
        slot.value.reset();
        slot.generation = (slot.generation + 1) & HandleBits::generationMask;
        free_.push_back(bits.index);
        --live_;
        return true;
    }

    std::size_t size() const noexcept { return live_; }

    /// Calls visit(handle, value) for every value, in no particular order. `visit` may remove.
    template <typename Visit>
    void forEach(Visit visit) {
        for (std::size_t index = 0; index < slots_.size(); ++index) {
            if (slots_[index].value) {
                visit(HandleBits{index, slots_[index].generation}.template pack<Handle>(),
                      *slots_[index].value);
            }
        }
    }

private:
    struct Slot {
        std::optional<T> value;
        std::uint32_t generation = 0;
    };
    std::deque<Slot> slots_;
    std::vector<std::size_t> free_;
    std::size_t live_ = 0;
};

} // namespace host
