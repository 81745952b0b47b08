// SPDX-License-Identifier: MIT
// Ticks and the clock against the standard library's clocks.
#include "platform/timing.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

TEST(ADelay, LastsAtLeastItsTicks) {
    const std::uint32_t before = TickCount();
    std::uint32_t after = 0;
    Delay(3, &after);
    EXPECT_GE(after - before, 3U);
    EXPECT_GE(TickCount(), after);
    Delay(0, nullptr);
}

TEST(TheClock, CountsFromTheYear2001) {
    using namespace std::chrono;
    const auto sinceEpoch = [] {
        return duration<double>(system_clock::now() - sys_days(year{2001} / January / 1)).count();
    };
    const double before = sinceEpoch();
    const double told = CFAbsoluteTimeGetCurrent();
    const double after = sinceEpoch();
    constexpr double rounding = 1e-5;
    EXPECT_GE(told, before - rounding);
    EXPECT_LE(told, after + rounding);
}

} // namespace
