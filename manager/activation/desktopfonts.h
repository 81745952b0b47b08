// SPDX-License-Identifier: MIT
// fontconfig as the desktop's programs use it.
#pragma once

#include <set>
#include <string>

namespace manager {

/// Reads the font folders anew. New and changed folders are scanned here once; the caches written
/// thereby are what all other programs read. Main thread only.
void reloadDesktopFonts();

/// The names of the files in `folder` in which fontconfig sees fonts, as of the last reload.
/// Empty when it does not look at the folder at all.
std::set<std::string> visibleFontFiles(const std::string& folder);

} // namespace manager
