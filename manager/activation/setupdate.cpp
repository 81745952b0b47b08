// SPDX-License-Identifier: MIT
// The steps on disk of bringing a set that is in place up to date.
#include "manager/activation/filesteps.h"
#include "manager/activation/setfolder.h"
#include "manager/library/error.h"

#include <cerrno>
#include <cstdio>
#include <utility>

namespace manager {

namespace {

bool isIn(const std::string& place, const SetFile& file) {
    return exists(place + "/" + file.name);
}

/// What lies between two records of a set.
struct Transition {
    SetRecord both;                    ///< what may be there until all is done
    std::vector<std::string> obsolete; ///< names of files that are to go
    bool replaces = false;             ///< whether a file takes the place of another version
};

Transition transitionOf(const SetRecord& current, const SetRecord& wanted,
                        const std::string& place) {
    Transition transition{wanted, {}, false};
    const FilesByName known(current);
    for (SetFile& file : transition.both.files) {
        const SetFile* before = known.find(file.name);
        if (before != nullptr && *before != file && isIn(place, file)) {
            file.stamp = {}; // until it is moved nobody knows which of the two lies there
            transition.replaces = true;
        }
    }
    const FilesByName stays(wanted);
    for (const SetFile& file : current.files) {
        if (stays.find(file.name) == nullptr) {
            transition.both.files.push_back(file);
            transition.both.files.back().leaving = true;
            transition.obsolete.push_back(file.name);
        }
    }
    return transition;
}

} // namespace

std::vector<std::string> SetFolders::stageChanged(const SetRecord& current, SetRecord& wanted,
                                                  std::vector<LostFile>& lost) {
    const std::string place = folder(wanted.id);
    const FilesByName known(current);
    std::vector<SetFile> files;
    std::vector<std::string> staged;
    for (SetFile& file : wanted.files) {
        const SetFile* before = known.find(file.name);
        const bool isThere = isIn(place, file);
        if (before != nullptr && *before == file && isThere) {
            files.push_back(std::move(file));
            continue;
        }
        try {
            if (before == nullptr && isThere) {
                throw Error(place + "/" + file.name + ": is in the way and not this program's");
            }
            if (staged.empty()) {
                step("make staging folder");
                staging_.makeFolder(wanted.id);
            }
            stage(file, staging_.folder(wanted.id));
            staged.push_back(file.name);
            files.push_back(std::move(file));
        } catch (const Error& error) {
            lost.push_back({file.name, error.what()});
            if (before != nullptr && isIn(place, file)) { // asked again: others may take it away
                files.push_back(*before);                 // an older copy is better than none
                files.back().leaving = false;
            }
            for (const std::string& name : file.predecessors) {
                if (const SetFile* older = known.find(name); older != nullptr) {
                    files.push_back(*older);
                }
            }
        }
    }
    wanted.files = std::move(files);
    return staged;
}

void SetFolders::moveIntoPlace(ContainerId id, const std::vector<std::string>& staged) {
    for (const std::string& name : staged) {
        step("move file into place");
        const std::string source = staging_.folder(id).append("/").append(name);
        const std::string target = folder(id).append("/").append(name);
        if (rename(source.c_str(), target.c_str()) != 0) {
            throw systemError(target, "cannot be put in place", errno);
        }
    }
}

SetFolders::Progress SetFolders::update(const SetRecord& current, SetRecord& wanted,
                                        std::vector<LostFile>& lost) {
    const std::vector<std::string> staged = stageChanged(current, wanted, lost);
    if (wanted.files.empty()) {
        wanted.files = current.files;
        return Progress::Unchanged;
    }
    const std::string place = folder(wanted.id);
    const Transition transition = transitionOf(current, wanted, place);
    if (staged.empty() && transition.obsolete.empty() && current.name == wanted.name &&
        current.files == wanted.files) {
        if (current.reasons != wanted.reasons) {
            step("write record");
            staging_.replaceRecord(place, wanted);
        }
        return Progress::Unchanged;
    }
    for (const std::string& name : staged) {
        syncFile(staging_.folder(wanted.id).append("/").append(name));
    }
    // From here on a crash is mended forwards: the record tells what is to be there.
    step("write record");
    staging_.replaceRecord(place, transition.both);
    moveIntoPlace(wanted.id, staged);
    for (const std::string& name : transition.obsolete) {
        step("remove obsolete file");
        removeFile(std::string(place).append("/").append(name));
    }
    if (transition.replaces || !transition.obsolete.empty()) {
        step("write record");
        staging_.replaceRecord(place, wanted);
    }
    step("sync");
    syncFolder(place);
    discard(wanted.id);
    return Progress::Updated;
}

} // namespace manager
