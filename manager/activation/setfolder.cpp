// SPDX-License-Identifier: MIT
// The steps on disk of putting a set in place and bringing it up to date.
#include "manager/activation/setfolder.h"

#include "manager/activation/filesteps.h"
#include "manager/library/error.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
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
    linkOrCopy(file.source, folder + "/" + file.name);
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
        writeSetRecordFile(prepared + "/" + setRecordName, wanted);
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
        syncFile(staging_.folder(id) + "/" + setRecordName);
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

SetFolders::Progress SetFolders::update(const SetRecord& current, SetRecord& wanted,
                                        std::vector<LostFile>& lost) {
    const std::string place = folder(wanted.id);
    const std::string prepared = staging_.folder(wanted.id);
    const FilesByName known(current);
    const auto isThere = [&](const SetFile& file) { return exists(place + "/" + file.name); };
    const auto isUpToDate = [&](const SetFile& file) {
        const SetFile* before = known.find(file.name);
        return before != nullptr && *before == file && isThere(file);
    };

    std::vector<SetFile> files;
    std::vector<std::string> staged;
    for (SetFile& file : wanted.files) {
        if (isUpToDate(file)) {
            files.push_back(std::move(file));
            continue;
        }
        const SetFile* before = known.find(file.name);
        try {
            if (before == nullptr && isThere(file)) {
                throw Error(place + "/" + file.name + ": is in the way and not this program's");
            }
            if (staged.empty()) {
                step("make staging folder");
                staging_.makeFolder(wanted.id);
            }
            stage(file, prepared);
            staged.push_back(file.name);
            files.push_back(std::move(file));
        } catch (const Error& error) {
            lost.push_back({file.name, error.what()});
            if (before != nullptr && isThere(file)) {
                files.push_back(*before); // an older copy is better than none
                files.back().leaving = false;
            }
        }
    }
    wanted.files = std::move(files);
    if (wanted.files.empty()) {
        wanted.files = current.files;
        return Progress::Unchanged;
    }

    SetRecord both = wanted;
    bool replaces = false;
    for (SetFile& file : both.files) {
        const SetFile* before = known.find(file.name);
        if (before != nullptr && *before != file && isThere(file)) {
            file.stamp = {}; // until it is moved nobody knows which of the two lies there
            replaces = true;
        }
    }
    std::vector<std::string> obsolete;
    const FilesByName stays(wanted);
    for (const SetFile& file : current.files) {
        if (stays.find(file.name) == nullptr) {
            both.files.push_back(file);
            both.files.back().leaving = true;
            obsolete.push_back(file.name);
        }
    }
    if (staged.empty() && obsolete.empty() && current == wanted) {
        return Progress::Unchanged;
    }
    // From here on a crash is mended forwards: the record tells what is to be there.
    step("write record");
    staging_.replaceRecord(place, both);
    for (const std::string& name : staged) {
        step("move file into place");
        const std::string source = std::string(prepared).append("/").append(name);
        const std::string target = std::string(place).append("/").append(name);
        if (rename(source.c_str(), target.c_str()) != 0) {
            throw systemError(target, "cannot be put in place", errno);
        }
    }
    for (const std::string& name : obsolete) {
        step("remove obsolete file");
        removeFile(std::string(place).append("/").append(name));
    }
    if (replaces || !obsolete.empty()) {
        step("write record");
        staging_.replaceRecord(place, wanted);
    }
    step("sync");
    syncFolder(place);
    discard(wanted.id);
    return Progress::Updated;
}

SetFolders::Progress SetFolders::begin(SetRecord& wanted, std::vector<LostFile>& lost) {
    const std::string place = folder(wanted.id);
    auto current = readSetRecord(place);
    if (current && current->state == SetState::Active) {
        checkIsSetOf(place, *current, wanted);
        return update(*current, wanted, lost);
    }
    bool leftBehind = false;
    removeWhole(wanted.id, &leftBehind); // when that was begun
    if (exists(place)) {
        if (!isFolder(place)) {
            throw Error(place + ": is in the way and not this program's");
        }
        removeLeftRecords(place);
        if (rmdir(place.c_str()) != 0) { // files that are not the manager's lie there
            return update({wanted.id, wanted.name, SetState::Active, {}}, wanted, lost);
        }
    }
    return prepare(wanted, lost);
}

} // namespace manager
