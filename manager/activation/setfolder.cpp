// SPDX-License-Identifier: MIT
// The steps on disk of putting a set in place.
#include "manager/activation/setfolder.h"

#include "manager/activation/filesteps.h"
#include "manager/library/error.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace manager {

namespace {

// A set that was put there when the number was another container's must not be changed into this.
void checkIsSetOf(const std::string& place, const SetRecord& current, const SetRecord& wanted) {
    if (isSetOf(current, wanted.name, libraryFolder(wanted))) {
        return;
    }
    const auto describe = [](const SetRecord& record) {
        return record.name + " (of " + libraryFolder(record) + ")";
    };
    const std::string number = toText(wanted.id);
    throw Error(place + ": holds " + describe(current) + ", but container " + number + " is " +
                describe(wanted) + "; run \"glyphora deactivate " + number + "\" first");
}

} // namespace

void SetFolders::stage(const SetFile& file, const std::string& folder) const {
    step("stage file");
    FileStamp stamp;
    try {
        stamp = stampOf(file.source);
    } catch (const Error& error) {
        throw Error(std::string(error.what()) + " (is its folder still there?)");
    }
    if (stamp != file.stamp) {
        throw Error(file.source + ": has changed since it was scanned; run \"glyphora scan\"");
    }
    cloneOrCopy(file.source, folder + "/" + file.name);
}

SetFolders::Progress SetFolders::prepare(SetRecord& wanted, std::vector<LostFile>& lost) {
    const std::string prepared = staging_.folder(wanted.id);
    step("make staging folder");
    staging_.makeFolder(wanted.id);
    std::erase_if(wanted.files, [&](const SetFile& file) {
        try {
            stage(file, prepared);
            return false;
        } catch (const Error& error) {
            lost.push_back({file.name, error.what()});
            return true;
        }
    });
    if (wanted.files.empty()) {
        discard(wanted.id);
        return Progress::Unchanged;
    }
    try {
        step("write record");
        writeFile(prepared + "/" + setRecordName, recordText(wanted));
    } catch (const Error&) {
        discard(wanted.id);
        throw;
    }
    return Progress::Prepared;
}

void SetFolders::syncPrepared(std::span<const ContainerId> sets) const {
    step("sync prepared");
    // Each sync of its own waits for the disk; beyond a few, one of the whole file system is
    // quicker.
    constexpr std::size_t few = 8;
    if (sets.size() > few) {
        const sys::Descriptor root(open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!root || syncfs(root.get()) != 0) {
            throw systemError(root_, "cannot be synced", errno);
        }
        return;
    }
    for (const ContainerId id : sets) {
        for (const auto& file : std::filesystem::directory_iterator(staging_.folder(id))) {
            syncFile(file.path());
        }
        syncFolder(staging_.folder(id));
    }
}

void SetFolders::place(ContainerId id) {
    step("move into place");
    if (!renameToFree(staging_.folder(id), folder(id))) {
        throw systemError(folder(id), "cannot be put in place", errno);
    }
}

void SetFolders::discard(ContainerId id) noexcept {
    std::error_code ignored;
    std::filesystem::remove_all(staging_.folder(id), ignored);
}

void SetFolders::syncPlaced() const {
    step("sync");
    syncFolder(root_);
}

SetFolders::Progress SetFolders::begin(SetRecord& wanted, std::vector<LostFile>& lost,
                                       std::span<const Reason> ended) {
    const std::string place = folder(wanted.id);
    if (const auto current = readSetRecord(place)) {
        checkIsSetOf(place, *current, wanted);
        std::vector<Reason> reasons = current->reasons;
        removeEnded(reasons);
        std::erase_if(reasons, [ended](const Reason& reason) {
            return std::find(ended.begin(), ended.end(), reason) != ended.end();
        });
        for (const Reason& reason : wanted.reasons) {
            // One by hand outlives documents.
            if (reason.kind != Reason::Kind::Document ||
                std::find(reasons.begin(), reasons.end(), Reason::byHand()) == reasons.end()) {
                addReason(reasons, reason);
            }
        }
        wanted.reasons = std::move(reasons);
        return update(*current, wanted, lost);
    }
    removeWhole(wanted.id); // when that was begun
    if (exists(place)) {
        if (!isFolder(place)) {
            throw Error(place + ": is in the way and not this program's");
        }
        if (rmdir(place.c_str()) != 0) { // files that are not the manager's lie there
            return update({wanted.id, wanted.name, {}, wanted.reasons}, wanted, lost);
        }
    }
    return prepare(wanted, lost);
}

void SetFolders::changeReasons(const SetRecord& record) {
    step("write record");
    staging_.replaceRecord(folder(record.id), record);
}

} // namespace manager
