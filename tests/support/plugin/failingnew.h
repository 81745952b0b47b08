// SPDX-License-Identifier: MIT
// Allocations that do not throw can be made to fail in these tests.
#pragma once

/// While it lives, the `nth` non-throwing allocation (from 1) gives null.
class FailingNew {
public:
    explicit FailingNew(int nth) { untilFailure = nth; }
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;
    ~FailingNew() { untilFailure = 0; }

    static inline int untilFailure = 0; ///< 0: none fails
};
