// SPDX-License-Identifier: MIT
// The memory of a document's nodes.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace Orvil {

/// Room for objects of one size that all go at once; no destructor is run. A walk makes hundreds of
/// thousands of nodes, one after the other: taking each by itself from the heap, and giving it
/// back, costs more than all else that the walk does. Throws: std::bad_alloc. Threads: one at a
/// time.
class LibXmlNodePool {
public:
    /// Room for one object of up to `slotSize` bytes, uninitialised. Owned by the pool.
    void* allocate() {
        if (next_ == end_) {
            addBlock();
        }
        return next_++;
    }
    void clear() noexcept;

    /// In bytes: a line of the cache, so that no node lies on two.
    static constexpr std::size_t slotSize = 64;

private:
    struct alignas(slotSize) Slot {
        std::byte bytes[slotSize];
    };
    /// Gives a block back to where it came from.
    struct BlockDeleter {
        std::size_t mappedSize = 0; // 0 for a block of the heap
        void operator()(void* block) const noexcept;
    };
    using Block = std::unique_ptr<void, BlockDeleter>;

    static Block makeBlock(std::size_t size);
    static Block mapLargePage();

    void addBlock();

    std::vector<Block> blocks_;
    std::size_t total_ = 0; // of the blocks, in bytes
    Slot* next_ = nullptr;
    Slot* end_ = nullptr;
};

} // namespace Orvil
