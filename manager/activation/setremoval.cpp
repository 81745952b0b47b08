// SPDX-License-Identifier: MIT
// The steps on disk of taking a set away, and what a crash in any step is mended by.
#include "manager/activation/filesteps.h"
#include "manager/activation/setfolder.h"
#include "manager/library/error.h"

#include <cerrno>
#include <cstdio>
#include <unistd.h>
#include <vector>

namespace manager {

bool SetFolders::remove(ContainerId id, bool* leftBehind) {
    const std::string place = folder(id);
    const std::string inPlace = place + "/" + setRecordName;
    const std::string taken = staging_.takenRecord(id);
    auto record = readSetRecord(place);
    if (record) {
        // A rename needs no space. From here on a crash is mended by going on, and to everybody
        // the set is no longer active.
        step("take record");
        if (rename(inPlace.c_str(), taken.c_str()) != 0) {
            throw systemError(place, "cannot be taken away", errno);
        }
    } else if (!(record = readSetRecordFile(taken))) {
        return false;
    }
    try {
        for (const SetFile& file : record->files) {
            step("remove file");
            removeFile(place + "/" + file.name);
        }
    } catch (const Error&) {
        rename(taken.c_str(), inPlace.c_str());
        throw;
    }
    step("remove folder");
    *leftBehind = rmdir(place.c_str()) != 0 && errno != ENOENT;
    if (*leftBehind) {
        syncFolder(place);
    }
    return true;
}

// The taken records go last: until the rest is on the disk, they tell what is to go.
void SetFolders::syncRemoved(std::span<const ContainerId> sets) const {
    step("sync");
    syncFolder(root_);
    for (const ContainerId id : sets) {
        step("forget record");
        removeFile(staging_.takenRecord(id));
    }
}

bool SetFolders::removeWhole(ContainerId id, bool* leftBehind) {
    const bool removed = remove(id, leftBehind);
    if (removed) {
        syncRemoved(std::span(&id, 1));
    }
    return removed;
}

void SetFolders::recover(ContainerId id, const std::function<void(const std::string&)>& report) {
    const std::string place = folder(id);
    const auto record = readSetRecord(place);
    bool leftBehind = false;
    if (!record) {
        if (removeWhole(id, &leftBehind)) {
            report(place + ": removed, as was begun");
        } else if (isFolder(place)) {
            rmdir(place.c_str()); // an empty one is what a removal left; any other is not ours
        }
        return;
    }
    removeFile(staging_.takenRecord(id)); // outdated: the set was put there since
    SetRecord wanted = *record;
    std::erase_if(wanted.files, [&](SetFile& file) {
        if (file.leaving) {
            return true;
        }
        const bool isThere = exists(place + "/" + file.name);
        if (isThere && file.stamp != FileStamp{}) {
            return false;
        }
        try {
            const FileStamp stamp = stampOf(file.source);
            if (isThere) {
                file.stamp = stamp; // it was about to be replaced
            }
            return stamp != file.stamp;
        } catch (const Error&) {
            return !isThere;
        }
    });
    std::vector<LostFile> lost;
    if (wanted.files.empty()) {
        removeWhole(id, &leftBehind);
        report(place + ": removed, its fonts are gone");
    } else if (update(*record, wanted, lost) == Progress::Updated) {
        report(place + ": completed, as was begun");
    }
    for (const LostFile& file : lost) {
        report(file.problem);
    }
}

} // namespace manager
