// SPDX-License-Identifier: MIT
// Desktop entries: finding one by identifier, and the command that starts its application.
#pragma once

#include "glibhandles.h"

#include <gio/gdesktopappinfo.h>

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// The entry in the file; null when it is unreadable, no application, hidden, or its program is not
/// installed.
[[nodiscard]] ObjectHandle<GDesktopAppInfo> loadDesktopEntry(const std::string& path);

/// The path of `<identifier>.desktop` in the applications folders that XDG_DATA_HOME and
/// XDG_DATA_DIRS name now, the first of that name deciding; empty when there is none or it cannot
/// be loaded. GIO's own look-up is not used: it keeps the folders' lists for the whole process.
[[nodiscard]] std::string findDesktopEntry(std::string_view identifier);

/// The words of the entry's Exec line with its field codes replaced, no file being opened; empty
/// when the line is malformed.
[[nodiscard]] std::vector<std::string> commandOf(GDesktopAppInfo& entry);

} // namespace platform
