// SPDX-License-Identifier: MIT
// The steps on disk of putting and removing a set.
#include "manager/activation/setfolder.h"

#include "manager/library/error.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace manager {

namespace {

bool exists(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

void removeTree(const std::string& path) {
    std::error_code code;
    std::filesystem::remove_all(path, code);
    if (code) {
        throw systemError(path, "cannot be removed", code.value());
    }
}

void copyFile(const std::string& source, const std::string& target) {
    const Descriptor from(open(source.c_str(), O_RDONLY | O_CLOEXEC));
    if (!from) {
        throw systemError(source, "cannot be read", errno);
    }
    const Descriptor to(open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    if (!to) {
        throw systemError(target, "cannot be written", errno);
    }
    char block[65536];
    for (;;) {
        const ssize_t count = read(from.get(), block, sizeof block);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw systemError(source, "cannot be read", errno);
        }
        if (count == 0) {
            break;
        }
        for (ssize_t done = 0; done < count;) {
            const ssize_t written =
                write(to.get(), block + done, static_cast<std::size_t>(count - done));
            if (written < 0 && errno != EINTR) {
                throw systemError(target, "cannot be written", errno);
            }
            done += std::max<ssize_t>(written, 0);
        }
    }
    if (fsync(to.get()) != 0) {
        throw systemError(target, "cannot be written", errno);
    }
}

// Takes the place `target` without replacing what may have come there meanwhile.
bool renameToFree(const std::string& source, const std::string& target) {
    if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    // Not every file system knows how not to replace.
    return (errno == EINVAL || errno == ENOSYS) && !exists(target) &&
           rename(source.c_str(), target.c_str()) == 0;
}

const SetFile* find(const SetRecord& record, const std::string& name) {
    const auto position = std::find_if(record.files.begin(), record.files.end(),
                                       [&](const SetFile& file) { return file.name == name; });
    return position == record.files.end() ? nullptr : &*position;
}

void removeFile(const std::string& path) {
    if (unlink(path.c_str()) != 0 && errno != ENOENT) {
        throw systemError(path, "cannot be removed", errno);
    }
}

} // namespace

// Linked where the file system allows: no second copy on disk, and nothing to sync. A link to the
// file itself, never a symbolic one: those stay listed after their target went.
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
    const std::string target = folder + "/" + file.name;
    removeFile(target);
    if (linkat(AT_FDCWD, file.source.c_str(), AT_FDCWD, target.c_str(), AT_SYMLINK_FOLLOW) != 0) {
        copyFile(file.source, target);
    }
}

void SetFolders::prepare(const SetRecord& wanted) {
    const std::string prepared = staging(wanted.id);
    step("make staging folder");
    removeTree(prepared);
    makeFolders(prepared);
    try {
        for (const SetFile& file : wanted.files) {
            stage(file, prepared);
        }
        step("write record");
        writeSetRecord(prepared, wanted);
    } catch (const Error&) {
        discard(wanted.id);
        throw;
    }
}

void SetFolders::syncPrepared(std::span<const ContainerId> sets) const {
    step("sync prepared");
    // Each sync of its own waits for the disk; beyond a few, one of the whole file system is
    // quicker.
    constexpr std::size_t few = 8;
    if (sets.size() > few) {
        const Descriptor root(open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!root || syncfs(root.get()) != 0) {
            throw systemError(root_, "cannot be synced", errno);
        }
        return;
    }
    for (const ContainerId id : sets) {
        syncFile(staging(id) + "/" + setRecordName);
        syncFolder(staging(id));
    }
}

void SetFolders::place(ContainerId id) {
    step("move into place");
    if (!renameToFree(staging(id), folder(id))) {
        throw systemError(folder(id), "cannot be put in place", errno);
    }
}

void SetFolders::discard(ContainerId id) noexcept {
    std::error_code ignored;
    std::filesystem::remove_all(staging(id), ignored);
}

void SetFolders::syncPlaced() const {
    step("sync");
    syncFolder(root_);
}

bool SetFolders::update(const SetRecord& current, const SetRecord& wanted) {
    const std::string place = folder(wanted.id);
    std::vector<SetFile> missing;
    for (const SetFile& file : wanted.files) {
        const SetFile* known = find(current, file.name);
        if (known == nullptr || *known != file || !exists(place + "/" + file.name)) {
            missing.push_back(file);
        }
    }
    SetRecord both = wanted;
    std::vector<std::string> obsolete;
    for (const SetFile& file : current.files) {
        if (find(wanted, file.name) == nullptr) {
            both.files.push_back(file);
            both.files.back().leaving = true;
            obsolete.push_back(file.name);
        }
    }
    if (missing.empty() && obsolete.empty() && current == wanted) {
        return false;
    }

    const std::string prepared = staging(wanted.id);
    step("make staging folder");
    removeTree(prepared);
    makeFolders(prepared);
    for (const SetFile& file : missing) {
        if (find(current, file.name) == nullptr && exists(place + "/" + file.name)) {
            throw Error(place + "/" + file.name + ": is in the way and not this program's");
        }
        stage(file, prepared);
    }
    // From here on a crash is mended forwards: the record tells what is to be there.
    step("write record");
    replaceSetRecord(place, both);
    for (const SetFile& file : missing) {
        step("move file into place");
        const std::string target = place + "/" + file.name;
        if (rename((prepared + "/" + file.name).c_str(), target.c_str()) != 0) {
            throw systemError(target, "cannot be put in place", errno);
        }
    }
    for (const std::string& name : obsolete) {
        step("remove obsolete file");
        removeFile(std::string(place).append("/").append(name));
    }
    if (!obsolete.empty()) {
        step("write record");
        replaceSetRecord(place, wanted);
    }
    step("sync");
    syncFolder(place);
    removeTree(prepared);
    return true;
}

SetFolders::Progress SetFolders::begin(const SetRecord& wanted) {
    const std::string place = folder(wanted.id);
    if (const auto current = readSetRecord(place)) {
        return update(*current, wanted) ? Progress::updated : Progress::unchanged;
    }
    if (exists(place) && rmdir(place.c_str()) != 0) {
        throw Error(place + ": is in the way and not this program's");
    }
    prepare(wanted);
    return Progress::prepared;
}

bool SetFolders::remove(ContainerId id, bool* leftBehind) {
    const std::string place = folder(id);
    auto record = readSetRecord(place);
    if (!record) {
        return false;
    }
    step("mark as leaving");
    record->state = SetState::leaving;
    replaceSetRecord(place, *record);
    for (const SetFile& file : record->files) {
        step("remove file");
        removeFile(place + "/" + file.name);
    }
    step("remove record");
    removeFile(place + "/" + setRecordName);
    step("remove folder");
    *leftBehind = rmdir(place.c_str()) != 0 && errno != ENOENT;
    step("sync");
    syncFolder(root_);
    return true;
}

void SetFolders::recover(ContainerId id, const std::function<void(const std::string&)>& report) {
    const std::string place = folder(id);
    const auto record = readSetRecord(place);
    if (!record) {
        rmdir(place.c_str()); // an empty one is what a removal left; any other is not ours
        return;
    }
    bool leftBehind = false;
    if (record->state == SetState::leaving) {
        remove(id, &leftBehind);
        report(place + ": removed, as was begun");
        return;
    }
    SetRecord wanted = *record;
    std::erase_if(wanted.files, [&](const SetFile& file) {
        if (file.leaving) {
            return true;
        }
        if (exists(place + "/" + file.name)) {
            return false;
        }
        try {
            return stampOf(file.source) != file.stamp;
        } catch (const Error&) {
            return true;
        }
    });
    if (wanted.files.empty()) {
        remove(id, &leftBehind);
        report(place + ": removed, its fonts are gone");
    } else if (update(*record, wanted)) {
        report(place + ": completed, as was begun");
    }
}

void SetFolders::clearStaging() {
    removeTree(root_ + "/.staging");
}

} // namespace manager
