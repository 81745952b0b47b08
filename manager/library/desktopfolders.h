// SPDX-License-Identifier: MIT
// The folders whose fonts the desktop shows by itself.
#pragma once

#include <string>
#include <vector>

namespace manager {

/// Those that fontconfig is set up to look in, with all that lies under them; canonical paths.
[[nodiscard]] std::vector<std::string> desktopFolders();

} // namespace manager
