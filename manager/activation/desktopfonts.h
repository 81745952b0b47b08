// SPDX-License-Identifier: MIT
// fontconfig as the desktop's programs use it.
#pragma once

#include <set>
#include <string>

namespace manager {

/// [main-thread] Reads the font folders anew. New and changed folders are scanned here once; the
/// caches written thereby are what all other programs read.
void reloadDesktopFonts();

/// The paths of the files below `root` whose fonts every program gets, as of the last reload; those
/// that the desktop's settings reject are not among them.
std::set<std::string> visibleFontFiles(const std::string& root);

/// Whether fontconfig looks into a folder at all, as of the last reload.
bool isFontFolder(const std::string& folder);

} // namespace manager
