// SPDX-License-Identifier: MIT
// Reads the records of all sets.
#include "manager/cli/knownsets.h"

#include "manager/activation/setrecord.h"
#include "manager/library/error.h"
#include "manager/library/fontformat.h"

namespace manager {

namespace {

// The files of a set are all of one format, and a copy of each lies in its folder.
KnownContainer containerOf(ContainerId id, const SetRecord& record, const std::string& folder) {
    if (record.files.empty()) {
        return {id, {}, {}, {}, {}};
    }
    const SetFile& first = record.files.front();
    // Collections are called by their file.
    const bool collection = record.files.size() == 1 && record.name == nameOf(first.source);
    return {id, record.name, libraryFolder(record), collection ? record.name : std::string(),
            formatOfFile(folder + "/" + first.name)};
}

} // namespace

std::vector<KnownContainer> containersOnDisk(const Places& places) {
    std::vector<KnownContainer> known;
    try {
        for (const ContainerId id : setsIn(places.fonts())) {
            try {
                const std::string folder = places.fonts() + "/" + toText(id);
                if (const auto record = readSetRecord(folder)) {
                    known.push_back(containerOf(id, *record, folder));
                }
            } catch (const Error&) {
                known.push_back({id, {}, {}, {}, {}});
            }
        }
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): there is no folder to be read
    }
    return known;
}

} // namespace manager
