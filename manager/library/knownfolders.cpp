// SPDX-License-Identifier: MIT
#include "manager/library/knownfolders.h"

#include "manager/library/places.h"

#include <algorithm>
#include <unordered_map>

namespace manager {

namespace {

bool wereFilesUnder(const KnownFolders& known, const std::string& path) {
    const auto hasFiles = [](const auto& folder) { return !folder.second.files.empty(); };
    const char afterSlash = '/' + 1;
    return hasFiles(*known.find(path)) ||
           std::any_of(known.lower_bound(path + '/'), known.lower_bound(path + afterSlash),
                       hasFiles);
}

} // namespace

KnownFolders knownFolders(Database& database) {
    KnownFolders known;
    std::unordered_map<std::int64_t, KnownFolder*> byId;
    Statement folders(database, "SELECT path, id, device, away, shown FROM directory");
    while (folders.step()) {
        KnownFolder& folder = known[folders.text(0)];
        folder.id = folders.number(1);
        folder.device = folders.number(2);
        folder.away = folders.number(3) != 0;
        folder.shown = folders.number(4) != 0;
        byId[folder.id] = &folder;
    }
    // Files of a folder were written one after the other, so that most follow the one before.
    std::int64_t last = 0;
    KnownFolder* folder = nullptr;
    Statement files(database, "SELECT directory, id, name, size, changed, inode, problem "
                              "FROM file");
    while (files.step()) {
        if (files.number(0) != last || folder == nullptr) {
            last = files.number(0);
            folder = byId.at(last);
        }
        folder->files.push_back({files.number(1),
                                 files.text(2),
                                 {files.number(3), files.number(4), files.number(5)},
                                 files.text(6)});
    }
    const auto byName = [](const KnownFile& a, const KnownFile& b) { return a.name < b.name; };
    for (auto& [path, entry] : known) {
        if (!std::is_sorted(entry.files.begin(), entry.files.end(), byName)) {
            std::sort(entry.files.begin(), entry.files.end(), byName);
        }
    }
    return known;
}

std::set<std::string> readWalkProblems(Database& database) {
    std::set<std::string> problems;
    Statement read(database, "SELECT problem FROM walk_problem");
    while (read.step()) {
        problems.insert(read.text(0));
    }
    return problems;
}

// A disk's number may change from mount to mount, but then it does for all folders on it.
bool lacksItsDisk(const KnownFolders& known, const FoundFolder& folder) {
    const auto before = known.find(folder.path);
    if (before == known.end() || (!before->second.away && before->second.device == folder.device)) {
        return false;
    }
    const auto above = known.find(folderOf(folder.path));
    return (above == known.end() || above->second.device != before->second.device) &&
           wereFilesUnder(known, folder.path);
}

} // namespace manager
