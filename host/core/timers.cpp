// SPDX-License-Identifier: MIT
// When timers are due.
#include "host/core/timers.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

/// How far `due` lies ahead of `now`; 0 when it is past. Right over the wrap-around of the clock.
std::uint32_t ticksUntil(std::uint32_t due, std::uint32_t now) {
    const auto distance = static_cast<std::int32_t>(due - now);
    return distance > 0 ? static_cast<std::uint32_t>(distance) : 0;
}

} // namespace

Timers::Timers(Clock clock) : clock_(std::move(clock)) {}

AITimerHandle Timers::add(PluginNumber plugin, std::string name, std::uint32_t period) {
    order_.push_back(table_.add(Timer{plugin, std::move(name), period, true, clock_() + period}));
    return order_.back();
}

bool Timers::setActive(AITimerHandle handle, bool active) {
    Timer* const timer = table_.find(handle);
    if (timer == nullptr) {
        return false;
    }
    if (active && !timer->active) {
        timer->due = clock_() + timer->period;
    }
    timer->active = active;
    return true;
}

void Timers::removeAllOf(PluginNumber plugin) {
    std::erase_if(order_, [&](AITimerHandle handle) {
        return table_.find(handle)->plugin == plugin && table_.remove(handle);
    });
}

std::vector<AITimerHandle> Timers::takeDue() {
    const std::uint32_t now = clock_();
    std::vector<AITimerHandle> due;
    for (const AITimerHandle handle : order_) {
        Timer& timer = *table_.find(handle);
        if (timer.active && ticksUntil(timer.due, now) == 0) {
            timer.due = now + timer.period;
            due.push_back(handle);
        }
    }
    return due;
}

std::optional<std::uint32_t> Timers::ticksToNext() {
    std::optional<std::uint32_t> next;
    const std::uint32_t now = clock_();
    for (const AITimerHandle handle : order_) {
        const Timer& timer = *table_.find(handle);
        if (timer.active) {
            const std::uint32_t ticks = ticksUntil(timer.due, now);
            next = next ? std::min(*next, ticks) : ticks;
        }
    }
    return next;
}

} // namespace host
