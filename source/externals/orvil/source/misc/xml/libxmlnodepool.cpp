// SPDX-License-Identifier: MIT
// The memory of a document's nodes.
#include "misc/xml/libxmlnodepool.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <sys/mman.h>

namespace Orvil {

namespace {

constexpr std::size_t largePage = std::size_t{2} << 20U;

} // namespace

void LibXmlNodePool::BlockDeleter::operator()(void* block) const noexcept {
    if (mappedSize != 0) {
        munmap(block, mappedSize);
    } else {
        std::free(block);
    }
}

LibXmlNodePool::Block LibXmlNodePool::makeBlock(std::size_t size) {
    Block block(std::aligned_alloc(slotSize, size), {});
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

/// Maps twice the size and gives back what lies before and behind the aligned part.
LibXmlNodePool::Block LibXmlNodePool::mapLargePage() {
    void* const mapped =
        mmap(nullptr, 2 * largePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) {
        throw std::bad_alloc();
    }
    auto* const begin = static_cast<std::byte*>(mapped);
    const std::size_t before = (0 - reinterpret_cast<std::uintptr_t>(mapped)) % largePage;
    std::byte* const block = begin + before;
    if (before != 0) {
        munmap(begin, before);
    }
    munmap(block + largePage, largePage - before);
    madvise(block, largePage, MADV_HUGEPAGE); // a wish: without large pages it is only slower
    return {block, {largePage}};
}

void LibXmlNodePool::addBlock() {
    // Small documents are the rule. The blocks of large ones are whole large pages: with pages of
    // the usual size the kernel's work for each would cost more than the nodes in it.
    constexpr std::size_t smallest = std::size_t{16} * slotSize;
    constexpr std::size_t largestOfHeap = std::size_t{64} << 10U; // what the heap does not map
    const bool isLarge = total_ >= largePage / 2;
    const std::size_t size = isLarge ? largePage : std::clamp(total_, smallest, largestOfHeap);
    blocks_.push_back(isLarge ? mapLargePage() : makeBlock(size));
    total_ += size;
    next_ = static_cast<Slot*>(blocks_.back().get());
    end_ = next_ + size / slotSize;
}

void LibXmlNodePool::clear() noexcept {
    blocks_.clear();
    total_ = 0;
    next_ = nullptr;
    end_ = nullptr;
}

} // namespace Orvil
