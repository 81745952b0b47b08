// SPDX-License-Identifier: MIT
#pragma once
#pragma GCC system_header

// GoogleTest as clang-tidy reads it: a path through a test ends where an expectation fails. A test
// that goes on would double its paths at each expectation, and the analysis would give up, its
// budget spent, long before the end of the test.

#include_next <gtest/gtest.h>

namespace testing {
[[noreturn]] void endOfPath();
}

#undef GTEST_NONFATAL_FAILURE_
#define GTEST_NONFATAL_FAILURE_(message)                                                           \
    ::testing::endOfPath(), GTEST_MESSAGE_(message, ::testing::TestPartResult::kNonFatalFailure)
#undef GTEST_FATAL_FAILURE_
#define GTEST_FATAL_FAILURE_(message)                                                              \
    return ::testing::endOfPath(), GTEST_MESSAGE_(message, ::testing::TestPartResult::kFatalFailure)
