// SPDX-License-Identifier: MIT
// Memory in large pages, for what is filled once from front to back.
#pragma once

#include <memory_resource>

namespace Orvil {

/// Asks the kernel for large pages for every block that fills at least one: mapping ordinary pages
/// takes longer than making the nodes in them. Smaller blocks come from the heap. Throws
/// std::bad_alloc. [any-thread]
class LargePages : public std::pmr::memory_resource {
private:
    void* do_allocate(std::size_t size, std::size_t alignment) override;
    void do_deallocate(void* block, std::size_t size, std::size_t alignment) override;
    bool do_is_equal(const memory_resource& other) const noexcept override;
};

} // namespace Orvil
