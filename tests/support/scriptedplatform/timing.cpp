// SPDX-License-Identifier: MIT
// Virtual time.
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include "platform/application.h"
#include "platform/timing.h"

using scripted::Platform;

namespace {

constexpr double ticksPerSecond = 60;

void (*beforeDelay)() = nullptr;

} // namespace

void PLBeforeDelay(void (*routine)()) {
    beforeDelay = routine;
}

void Delay(std::uint32_t ticks, std::uint32_t* /*finalTicks*/) {
    if (beforeDelay != nullptr) {
        beforeDelay();
    }
    Platform::current()->delays.push_back(ticks);
    Platform::current()->now += ticks / ticksPerSecond;
}

double CFAbsoluteTimeGetCurrent() {
    return Platform::current()->now += Platform::current()->clockStep;
}
