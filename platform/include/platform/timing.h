// SPDX-License-Identifier: MIT
// Ticks and the clock. Any thread.
#pragma once

#include <cstdint>

/// Sixtieths of a second since some start of the system; never runs backwards.
std::uint32_t TickCount();
/// Sleeps that many ticks; `finalTicks` (may be null) gets the tick count afterwards.
void Delay(std::uint32_t ticks, std::uint32_t* finalTicks);
/// Seconds, with fraction, since 2001-01-01 00:00:00 UTC.
double CFAbsoluteTimeGetCurrent();
