// SPDX-License-Identifier: MIT
// Finds the font files under folders.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace manager {

/// What tells whether a file is still the one that was read.
struct FileStamp {
    std::int64_t size = 0;
    std::int64_t changed = 0; ///< modification time, nanoseconds since 1970
    std::int64_t inode = 0;
    bool operator==(const FileStamp&) const = default;
};

/// The stamp of a regular file, links followed. Throws Error.
[[nodiscard]] FileStamp stampOf(const std::string& path);

struct FoundFile {
    std::string name;
    FileStamp stamp;
};

struct FoundFolder {
    std::string path;
    std::int64_t device = 0;
    std::vector<FoundFile> files; ///< those named like fonts, by name
    bool isEmpty = false;         ///< but for hidden entries, as where a disk is not
};

struct FoundFiles {
    std::vector<FoundFolder> folders;     ///< all that were looked at, by path
    std::vector<std::string> problems;    ///< "PATH: ..." of what could not be looked at
    std::vector<std::string> unread;      ///< folders, whole or in part, and links among that
    std::vector<std::string> unreadRoots; ///< roots among them that are not there at all
};

/// Walks the folders. Links are followed, but each folder is visited once, so that loops end;
/// hidden entries are passed over, so are file systems of the kernel's own (proc, sysfs, ...), and
/// so is what lies in `passedOver`, by whatever way it is reached. Problems are gathered, not
/// thrown; Cancelled is (see checkCancelled).
[[nodiscard]] FoundFiles findFontFiles(std::span<const std::string> roots,
                                       const std::string& passedOver = {});

} // namespace manager
