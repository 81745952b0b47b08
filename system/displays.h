// SPDX-License-Identifier: MIT
// Which displays that the environment names are there at all.
#pragma once

#include <string>

namespace sys {

/// The toolkit's platform in memory.
constexpr const char* offscreenPlatform = "offscreen";

/// [main-thread] Whether the environment names a display of the user's, dead or alive.
[[nodiscard]] bool namesDisplay();

/// [main-thread] The toolkit's platforms to try in turn, as its option -platform takes them: those
/// that the user names by QT_QPA_PLATFORM, or those whose displays are named, and last the one that
/// needs none, so that a display which refuses does not end the program. A display behind which
/// nobody answers a greeting within `milliseconds` is left out: the toolkit would wait for it for
/// ever. Displays of other machines stay, whose tunnels may complain about a guest that only asks.
/// Empty where there is nothing to show windows on.
[[nodiscard]] std::string livingPlatforms(int milliseconds);

} // namespace sys
