// SPDX-License-Identifier: MIT
// Timers that fire while the host is idle.
#pragma once

#include "ai/types.h"
#include "host/core/registrations.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

inline constexpr std::uint32_t ticksPerSecond = 60;

struct Timer {
    PluginNumber plugin = noPlugin;
    std::string name;
    std::uint32_t period = 1; ///< ticks of 1/60 s, at least 1
    bool active = true;
    std::uint32_t due = 0; ///< tick of the next firing
};

/// [main-thread] Ticks may wrap around.
class Timers : public Registrations<Timer, AITimerHandle> {
public:
    /// [main-thread] Returns the current tick.
    using Clock = std::function<std::uint32_t()>;
    explicit Timers(Clock clock);

    AITimerHandle add(PluginNumber plugin, std::string name, std::uint32_t period);
    /// A timer that is made active fires one period later. False for an unknown handle.
    [[nodiscard]] bool setActive(AITimerHandle handle, bool active);

    /// The active timers that are due, each once however late it is, and sets them to one period
    /// from now.
    [[nodiscard]] std::vector<AITimerHandle> takeDue();
    /// Ticks until the next active timer is due (0: now); nothing when there is none.
    [[nodiscard]] std::optional<std::uint32_t> ticksToNext();

private:
    Clock clock_;
};

} // namespace host
