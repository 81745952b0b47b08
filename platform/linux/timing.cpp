// SPDX-License-Identifier: MIT
// Ticks, pauses and the clock of timing.h over the POSIX clocks.
#include "platform/timing.h"

#include "platform/application.h"

#include <cerrno>
#include <ctime>

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t ticksPerSecond = 60;
/// From 1970-01-01 to 2001-01-01, both 00:00:00 UTC.
constexpr double secondsBefore2001 = 978'307'200.0;

thread_local void (*beforeDelay)() = nullptr;

} // namespace

std::uint32_t TickCount() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint32_t>(now.tv_sec * ticksPerSecond +
                                      now.tv_nsec * ticksPerSecond / nanosecondsPerSecond);
}

void PLBeforeDelay(void (*routine)()) {
    beforeDelay = routine;
}

void Delay(std::uint32_t ticks, std::uint32_t* finalTicks) {
    if (beforeDelay != nullptr) {
        beforeDelay();
    }
    timespec until{};
    clock_gettime(CLOCK_MONOTONIC, &until);
    // Rounded up, so that the tick count has advanced by `ticks` at least.
    const std::int64_t nanoseconds =
        until.tv_nsec + (ticks * nanosecondsPerSecond + ticksPerSecond - 1) / ticksPerSecond;
    until.tv_sec += nanoseconds / nanosecondsPerSecond;
    until.tv_nsec = nanoseconds % nanosecondsPerSecond;
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
    }
    if (finalTicks != nullptr) {
        *finalTicks = TickCount();
    }
}

double CFAbsoluteTimeGetCurrent() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<double>(now.tv_sec) - secondsBefore2001 +
           static_cast<double>(now.tv_nsec) / static_cast<double>(nanosecondsPerSecond);
}
