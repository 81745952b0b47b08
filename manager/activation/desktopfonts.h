// SPDX-License-Identifier: MIT
// fontconfig as the desktop's programs use it.
#pragma once

#include "faces/face.h"

#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace manager {

/// [main-thread] Reads the font folders anew. New and changed folders are scanned here once; the
/// caches written thereby are what all other programs read.
void reloadDesktopFonts();

/// The paths of the files below `root` whose fonts every program gets, as of the last reload; those
/// that the desktop's settings reject are not among them.
[[nodiscard]] std::set<std::string> visibleFontFiles(const std::string& root);

/// Whether fontconfig looks into a folder at all, as of the last reload.
[[nodiscard]] bool isFontFolder(const std::string& folder);

/// A face that the desktop shows.
struct DesktopFace {
    std::string file;
    faces::Technology type = faces::Technology::TrueType;
};

/// The desktop's faces by PostScript name, whoever put them there, as a program gets them that
/// starts when they are first asked for.
class DesktopFaces {
public:
    /// [main-thread] None for an empty name. Valid as long as this object.
    [[nodiscard]] const std::vector<DesktopFace>& find(const std::string& postScriptName);

private:
    void load();

    std::optional<std::unordered_map<std::string, std::vector<DesktopFace>>> faces_;
};

} // namespace manager
