// SPDX-License-Identifier: MIT
// The replaced non-throwing allocation.
#include "tests/support/plugin/failingnew.h"

#include <new>

namespace {

int untilFailure = 0; // 0: none fails

} // namespace

FailingNew::FailingNew(int nth) {
    untilFailure = nth;
}

FailingNew::~FailingNew() {
    untilFailure = 0;
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    if (untilFailure > 0 && --untilFailure == 0) {
        return nullptr;
    }
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
