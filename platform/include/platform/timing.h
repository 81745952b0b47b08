// SPDX-License-Identifier: MIT
// Ticks and the clock.
#pragma once

#include <cstdint>

/// [any-thread] Sixtieths of a second since some start of the system; never runs backwards.
[[nodiscard]] std::uint32_t TickCount();
/// [any-thread] Sleeps that many ticks; `finalTicks` (may be null) gets the tick count afterwards.
void Delay(std::uint32_t ticks, std::uint32_t* finalTicks);
/// [any-thread] Seconds, with fraction, since 2001-01-01 00:00:00 UTC.
[[nodiscard]] double CFAbsoluteTimeGetCurrent();
