// SPDX-License-Identifier: MIT
// What the index has of folders and files, for a scan to compare with.
#pragma once

#include "manager/library/database.h"
#include "manager/library/walk.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace manager {

struct KnownFile {
    std::int64_t id = 0;
    std::string name;
    FileStamp stamp;
    std::string problem; ///< empty: it holds fonts
    bool found = false;
};

struct KnownFolder {
    std::int64_t id = 0;
    std::int64_t device = 0;
    bool away = false;
    bool shown = false;
    bool met = false;
    std::vector<KnownFile> files; ///< by name
};

/// By path.
using KnownFolders = std::map<std::string, KnownFolder>;

/// Reads them all. Throws Error.
[[nodiscard]] KnownFolders knownFolders(Database& database);
/// What the last scan could not look at. Throws Error.
[[nodiscard]] std::set<std::string> readWalkProblems(Database& database);
/// Whether a disk with fonts was mounted at the folder, which is empty, and is not now.
[[nodiscard]] bool lacksItsDisk(const KnownFolders& known, const FoundFolder& folder);

} // namespace manager
