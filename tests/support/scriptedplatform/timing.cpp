// SPDX-License-Identifier: MIT
// Virtual time.
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include "platform/timing.h"

using scripted::Platform;

namespace {

constexpr double ticksPerSecond = 60;

} // namespace

void Delay(std::uint32_t ticks, std::uint32_t* /*finalTicks*/) {
    Platform::current()->delays.push_back(ticks);
    Platform::current()->now += ticks / ticksPerSecond;
}

double CFAbsoluteTimeGetCurrent() {
    return Platform::current()->now += Platform::current()->clockStep;
}
