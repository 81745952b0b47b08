// SPDX-License-Identifier: MIT
// Reads the records of all sets.
#include "manager/cli/knownsets.h"

#include "manager/activation/setrecord.h"
#include "manager/library/error.h"

#include <filesystem>

namespace manager {

namespace {

KnownContainer containerOf(ContainerId id, const SetRecord& record) {
    if (record.files.empty()) {
        return {id, {}, {}, {}};
    }
    const SetFile& first = record.files.front();
    // Collections are called by their file.
    const bool collection = record.files.size() == 1 && record.name == nameOf(first.source);
    return {id, record.name, libraryFolder(record), collection ? record.name : std::string()};
}

} // namespace

std::vector<KnownContainer> containersOnDisk(const Places& places) {
    std::vector<KnownContainer> known;
    std::error_code code;
    for (std::filesystem::directory_iterator entry(places.fonts(), code), end;
         !code && entry != end; entry.increment(code)) {
        const auto id = toContainerId(entry->path().filename().string());
        if (!id) {
            continue;
        }
        try {
            if (const auto record = readSetRecord(entry->path().string())) {
                known.push_back(containerOf(*id, *record));
            }
        } catch (const Error&) {
            known.push_back({*id, {}, {}, {}});
        }
    }
    return known;
}

} // namespace manager
