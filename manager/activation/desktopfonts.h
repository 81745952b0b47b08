// SPDX-License-Identifier: MIT
// The desktop's fonts, as programs get them from fontconfig. fontconfig is asked in a process
// apart, so that no font that it reads can harm or hold up this one.
#pragma once

#include "faces/face.h"

#include <cstdint>
#include <filesystem>
#include <set>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace manager {

/// A face that the desktop shows.
struct DesktopFace {
    std::string file;
    faces::Technology type = faces::Technology::TrueType;
};
/// With its PostScript name, which may be empty.
using NamedFace = std::pair<std::string, DesktopFace>;

/// The desktop's faces by PostScript name, whoever put them there. A plain value.
class DesktopFaces {
public:
    /// None for an empty name. Valid until the next change.
    [[nodiscard]] const std::vector<DesktopFace>& find(const std::string& postScriptName) const;
    /// The PostScript names of the faces that it shows of a file.
    [[nodiscard]] std::set<std::string> namesIn(const std::string& file) const;
    /// Takes these in place of what the folders had.
    void replaceFolders(std::span<const std::string> folders, std::span<const NamedFace> faces);

    /// Remembers a folder or file whose change means that the faces are others; `changed` in
    /// nanoseconds since 1970, 0: there is none of this name.
    void watch(const std::string& path, std::int64_t changed) { watched_[path] = changed; }
    /// Whether a folder is still as it was when it was remembered.
    [[nodiscard]] bool isAsWatched(const std::string& path) const;
    /// Whether one of those has changed, or nothing was ever read.
    [[nodiscard]] bool isOutdated() const;

private:
    std::unordered_map<std::string, std::vector<DesktopFace>> faces_;
    std::unordered_map<std::string, std::vector<std::string>> names_; ///< by folder
    std::unordered_map<std::string, std::int64_t> watched_;
};

/// When a folder or file was last changed, as DesktopFaces::watch takes it.
[[nodiscard]] std::int64_t changeTime(const std::string& path);

/// Where `glyphora-desktop` stands, seen from the running program: beside it, or where it is
/// installed.
[[nodiscard]] std::filesystem::path desktopProgram();

/// What came of having fontconfig read folders.
struct FolderReading {
    std::vector<NamedFace> faces;  ///< those that programs get
    bool isLookedAt = false;       ///< whether fontconfig looks below the root at all
    std::set<std::string> endless; ///< files that it did not come to an end with
    /// Folders of which it is not known what programs get, with a line that says why.
    std::unordered_map<std::string, std::string> unread;
};

/// Has fontconfig read these folders in `root`, which writes the caches that all programs read.
/// Costs what they hold, however many others there are. [any-thread]
[[nodiscard]] FolderReading readFolders(const std::filesystem::path& program,
                                        const std::string& root,
                                        std::span<const std::string> folders);

/// Has fontconfig read everything. Of the folders in `root` only the root is watched: its owner
/// changes it with them. Throws Error. [any-thread]
[[nodiscard]] DesktopFaces readDesktop(const std::filesystem::path& program,
                                       const std::string& root);

/// The files of faces that have a family, a full name or a PostScript name like `name`; case and
/// blanks do not count. Throws Error. [any-thread]
[[nodiscard]] std::vector<std::string> findDesktopFiles(const std::filesystem::path& program,
                                                        const std::string& name);

} // namespace manager
