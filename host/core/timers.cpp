// SPDX-License-Identifier: MIT
// When timers are due.
#include "host/core/timers.h"

#include <algorithm>
#include <utility>

namespace host {

Timers::Timers(Clock clock) : clock_(std::move(clock)) {}

AITimerHandle Timers::add(PluginNumber plugin, std::string name, std::uint32_t period) {
    return Registrations::add({plugin, std::move(name), period, true, clock_() + period});
}

bool Timers::setActive(AITimerHandle handle, bool active) {
    Timer* const timer = change(handle);
    if (timer == nullptr) {
        return false;
    }
    if (active && !timer->active) {
        timer->due = clock_() + timer->period;
    }
    timer->active = active;
    return true;
}

std::vector<AITimerHandle> Timers::takeDue() {
    const std::uint32_t now = clock_();
    std::vector<AITimerHandle> due;
    for (const AITimerHandle handle : all()) {
        Timer& timer = *change(handle);
        // The difference is right over the wrap-around of the clock.
        if (timer.active && static_cast<std::int32_t>(timer.due - now) <= 0) {
            timer.due = now + timer.period;
            due.push_back(handle);
        }
    }
    return due;
}

std::optional<std::uint32_t> Timers::ticksToNext() {
    const std::uint32_t now = clock_();
    std::optional<std::uint32_t> next;
    for (const AITimerHandle handle : all()) {
        const Timer& timer = *find(handle);
        if (timer.active) {
            const auto distance = static_cast<std::int32_t>(timer.due - now);
            const auto ticks = static_cast<std::uint32_t>(std::max(distance, 0));
            next = std::min(next.value_or(ticks), ticks);
        }
    }
    return next;
}

} // namespace host
