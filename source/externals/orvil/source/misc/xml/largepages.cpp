// SPDX-License-Identifier: MIT
// Memory in large pages.
#include "misc/xml/largepages.h"

#include <cstdlib>
#include <new>
#include <sys/mman.h>

namespace Orvil {

namespace {

constexpr std::size_t largePage = std::size_t{2} << 20U;

} // namespace

void* LargePages::do_allocate(std::size_t size, std::size_t alignment) {
    if (size < largePage) {
        return std::pmr::new_delete_resource()->allocate(size, alignment);
    }
    const std::size_t whole = (size + largePage - 1) / largePage * largePage;
    void* const block = std::aligned_alloc(largePage, whole);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    madvise(block, whole, MADV_HUGEPAGE); // only a hint: without large pages it is only slower
    return block;
}

void LargePages::do_deallocate(void* block, std::size_t size, std::size_t alignment) {
    if (size < largePage) {
        std::pmr::new_delete_resource()->deallocate(block, size, alignment);
    } else {
        std::free(block);
    }
}

bool LargePages::do_is_equal(const memory_resource& other) const noexcept {
    return dynamic_cast<const LargePages*>(&other) != nullptr;
}

} // namespace Orvil
