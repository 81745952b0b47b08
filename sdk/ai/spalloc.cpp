// SPDX-License-Identifier: MIT
// The calls behind ai::SPAlloc.
#include "ai/spalloc.h"

#include "suitepointers.h"

namespace ai::detail {

void* allocateBlock(std::size_t size) {
    void* block = nullptr;
    if (sSPBasic == nullptr || sSPBasic->AllocateBlock(size, &block) != kNoErr ||
        block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void freeBlock(void* block) noexcept {
    if (sSPBasic != nullptr) {
        sSPBasic->FreeBlock(block);
    }
}

} // namespace ai::detail
