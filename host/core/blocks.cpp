// SPDX-License-Identifier: MIT
// A table of blocks by address.
#include "host/core/blocks.h"

namespace host {

void* Blocks::allocate(std::size_t size, PluginNumber owner) {
    auto bytes = std::make_unique_for_overwrite<std::byte[]>(size == 0 ? 1 : size);
    void* const address = bytes.get();
    const std::lock_guard lock(mutex_);
    blocks_.emplace(address, Block{std::move(bytes), size, owner});
    return address;
}

bool Blocks::free(void* block) noexcept {
    const std::lock_guard lock(mutex_);
    return blocks_.erase(block) != 0;
}

Blocks::Sum Blocks::freeAllOf(PluginNumber owner) noexcept {
    const std::lock_guard lock(mutex_);
    Sum sum;
    std::erase_if(blocks_, [&](const auto& entry) {
        if (entry.second.owner != owner) {
            return false;
        }
        ++sum.blocks;
        sum.bytes += entry.second.size;
        return true;
    });
    return sum;
}

} // namespace host
