// SPDX-License-Identifier: MIT
// Virtual time.
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include "platform/timing.h"

using scripted::Platform;

namespace {

constexpr double ticksPerSecond = 60;

double lookAtClock() {
    Platform* const platform = Platform::current();
    return platform == nullptr ? 0 : platform->now += platform->clockStep;
}

} // namespace

std::uint32_t TickCount() {
    return static_cast<std::uint32_t>(lookAtClock() * ticksPerSecond);
}

void Delay(std::uint32_t ticks, std::uint32_t* finalTicks) {
    if (Platform* const platform = Platform::current()) {
        platform->delays.push_back(ticks);
        platform->now += ticks / ticksPerSecond;
    }
    if (finalTicks != nullptr) {
        *finalTicks = TickCount();
    }
}

double CFAbsoluteTimeGetCurrent() {
    return lookAtClock();
}
