// SPDX-License-Identifier: MIT
// Which displays that the environment names are there at all.
#pragma once

namespace host {

/// [main-thread] Takes those names out of the environment behind which nobody answers a greeting
/// within `milliseconds`: a toolkit would wait for them for ever. Displays of other machines stay,
/// whose tunnels may complain about a guest that only asks.
void forgetDeadDisplays(int milliseconds);

} // namespace host
