// SPDX-License-Identifier: MIT
// Memory that plug-ins get from the host.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace host {

/// Which plug-in something belongs to: its number in order of loading.
using PluginNumber = std::uint32_t;
inline constexpr PluginNumber noPlugin = 0xFFFFFFFFU;

/// [any-thread] Owns every block that is not freed yet.
class Blocks {
public:
    /// Aligned for every type, also when of size 0. Throws std::bad_alloc.
    [[nodiscard]] void* allocate(std::size_t size, PluginNumber owner);
    /// False when it is not a live block.
    [[nodiscard]] bool free(void* block) noexcept;

    struct Sum {
        std::size_t blocks = 0;
        std::size_t bytes = 0;
    };
    /// Frees all blocks of a plug-in and says what they came to.
    Sum freeAllOf(PluginNumber owner) noexcept;

private:
    struct Block {
        std::unique_ptr<std::byte[]> bytes;
        std::size_t size;
        PluginNumber owner;
    };
    std::mutex mutex_;
    std::unordered_map<void*, Block> blocks_;
};

} // namespace host
