// SPDX-License-Identifier: MIT
// The steps on disk of taking a set away, and what a crash in any step is mended by.
#include "manager/activation/filesteps.h"
#include "manager/activation/setfolder.h"
#include "manager/library/error.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace manager {

namespace {

bool holdsNothingElse(const std::string& place, const SetRecord& record) {
    const FilesByName known(record);
    std::error_code code;
    for (std::filesystem::directory_iterator entry(place, code), end; !code && entry != end;
         entry.increment(code)) {
        const std::string name = entry->path().filename().string();
        if (name != setRecordName && known.find(name) == nullptr) {
            return false;
        }
    }
    return !code;
}

} // namespace

std::optional<SetRecord> SetFolders::recordOfLeaving(ContainerId id) const {
    auto record = readSetRecord(folder(id));
    if (!record) {
        record = readSetRecordFile(staging_.takenRecord(id));
    }
    if (record) {
        record->id = id; // whatever stands there
    }
    return record;
}

bool SetFolders::remove(const SetRecord& record) {
    const std::string place = folder(record.id);
    if (holdsNothingElse(place, record)) {
        std::string aside = staging_.asideFolder(record.id);
        step("take set");
        if (rename(place.c_str(), aside.c_str()) == 0) {
            aside_.push_back(std::move(aside));
            return true;
        }
    }
    const std::string inPlace = place + "/" + setRecordName;
    const std::string taken = staging_.takenRecord(record.id);
    // A rename needs no space. From here on a crash is mended by going on, and to everybody the set
    // is no longer active.
    step("take record");
    if (rename(inPlace.c_str(), taken.c_str()) != 0 && !exists(taken)) {
        throw systemError(place, "cannot be taken away", errno);
    }
    try {
        for (const SetFile& file : record.files) {
            step("remove file");
            removeFile(place + "/" + file.name);
        }
    } catch (const Error&) {
        rename(taken.c_str(), inPlace.c_str());
        throw;
    }
    step("remove folder");
    if (rmdir(place.c_str()) != 0 && errno != ENOENT) {
        syncFolder(place);
        return false;
    }
    return true;
}

std::string SetFolders::hide(ContainerId id) const {
    const std::string place = folder(id);
    for (int number = 1;; ++number) {
        std::string hidden = root_ + "/.damaged-" + toText(id) + "-" + std::to_string(number);
        if (renameToFree(place, hidden)) {
            return hidden;
        }
        if (const int code = errno; !exists(hidden)) {
            throw systemError(place, "cannot be taken away", code);
        }
    }
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

// The record goes last: what is there without one is not ours, came at the last moment and gets
// its place back.
void SetFolders::sweepFolder(const std::string& aside) const {
    if (const auto record = readSetRecord(aside)) {
        for (const SetFile& file : record->files) {
            step("remove file");
            removeFile(aside + "/" + file.name);
        }
        removeFile(aside + "/" + setRecordName);
    }
    step("remove folder");
    if (rmdir(aside.c_str()) != 0 && (errno == ENOTEMPTY || errno == EEXIST)) {
        const std::string name = nameOf(aside);
        const std::string place = root_ + "/" + name.substr(0, name.find('.'));
        static_cast<void>(renameToFree(aside, place)); // or it stays until that is free
    }
}

bool SetFolders::sweep(std::size_t most) noexcept {
    for (; most > 0 && !aside_.empty(); --most) {
        try {
            sweepFolder(aside_.back());
        } catch (const Error&) { // NOLINT(bugprone-empty-catch): whoever recovers next tries again
        }
        aside_.pop_back();
    }
    return !aside_.empty();
}

void SetFolders::sweepAll() {
    aside_ = staging_.asideFolders();
    sweep(aside_.size());
}

bool SetFolders::removeWhole(ContainerId id) {
    const auto record = recordOfLeaving(id);
    if (record) {
        static_cast<void>(remove(*record)); // what is not ours is left as it was found
        syncRemoved(std::span(&id, 1));
        sweep(1);
    }
    return record.has_value();
}

void SetFolders::recover(ContainerId id, const std::function<void(const std::string&)>& report) {
    const std::string place = folder(id);
    const auto record = readSetRecord(place);
    if (!record) {
        if (removeWhole(id)) {
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
        removeWhole(id);
        report(place + ": removed, its fonts are gone");
    } else if (update(*record, wanted, lost) == Progress::Updated) {
        report(place + ": completed, as was begun");
    }
    for (const LostFile& file : lost) {
        report(file.problem);
    }
}

} // namespace manager
