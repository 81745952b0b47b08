// SPDX-License-Identifier: MIT
// The replaced non-throwing allocation.
#include "tests/support/plugin/failingnew.h"

#include <new>

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    if (FailingNew::untilFailure > 0 && --FailingNew::untilFailure == 0) {
        return nullptr;
    }
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
