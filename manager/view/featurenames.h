// SPDX-License-Identifier: MIT
// What people call an OpenType feature or an axis.
#pragma once

#include <string>

namespace manager {

/// [main-thread] "Small capitals (smcp)" in the user's language; the tag where nobody named it.
[[nodiscard]] std::string featureName(const std::string& tag);
/// [main-thread] "Weight (wght)"; `own` is what the font calls an axis that is not registered.
[[nodiscard]] std::string axisName(const std::string& tag, const std::string& own);
/// Whether text is laid out with a feature unless it is switched off.
[[nodiscard]] bool isOnByItself(const std::string& tag);
/// Whether a feature is a matter of taste, not one that the script needs to be read at all.
[[nodiscard]] bool isChoice(const std::string& tag);

} // namespace manager
