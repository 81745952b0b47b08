// SPDX-License-Identifier: MIT
// What a crash left behind, and the late touch that is due after every change.
#include "manager/activation/activation.h"
#include "manager/activation/desktopfonts.h"
#include "manager/activation/filesteps.h"
#include "manager/library/error.h"

#include <algorithm>
#include <iterator>
#include <unistd.h>
#include <utility>

namespace manager {

bool Activation::recover(const std::function<void(const std::string&)>& report) {
    const FileLock held = lock();
    bool changed = folders_.staging().clear();
    folders_.sweepAll();
    beginChange();
    std::vector<ContainerId> ids = sets();
    const std::vector<ContainerId> leaving = folders_.staging().takenRecords();
    ids.insert(ids.end(), leaving.begin(), leaving.end());
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    for (const ContainerId id : ids) {
        try {
            folders_.recover(id, [&](const std::string& text) {
                changed = true;
                changedFolders_.push_back(folders_.folder(id));
                report(text);
            });
        } catch (const Error& error) {
            report(error.what());
        }
    }
    endChange(changed);
    if (changed) { // or a process was killed between a change and its reload
        showChanges(changedFolders_);
    }
    return changed;
}

// The mark is there before the first change, so that a process killed after it is found out.
void Activation::beginChange() {
    knowsRoot_ = desktop_.isAsWatched(folders_.root());
    folders_.staging().markUnsettled();
}

void Activation::endChange(bool changed) {
    unsettled_ = unsettled_ || changed;
    if (!unsettled_) {
        folders_.staging().unmarkUnsettled(getpid());
    }
}

void Activation::settle() {
    knowsRoot_ = desktop_.isAsWatched(folders_.root());
    const std::vector<std::string> folders = std::exchange(changedFolders_, {});
    unsettled_ = false;
    folders_.staging().unmarkUnsettled(getpid());
    showChanges(folders); // the touch has outdated the caches: writes them once more for everybody
}

void Activation::settleFor(pid_t process, std::span<const ContainerId> changed) {
    const FileLock held = lock();
    for (const ContainerId id : changed) {
        changedFolders_.push_back(folders_.folder(id));
    }
    folders_.staging().unmarkUnsettled(process);
    settle();
}

FolderReading Activation::showChanges(std::span<const std::string> folders) {
    touchFolder(folders_.root());
    std::for_each(folders.begin(), folders.end(), touchFolder);
    FolderReading reading = readFolders(program_, folders_.root(), folders);
    std::vector<std::string> read;
    std::copy_if(folders.begin(), folders.end(), std::back_inserter(read),
                 [&](const std::string& folder) { return !reading.unread.contains(folder); });
    desktop_.replaceFolders(read, reading.faces);
    if (knowsRoot_ && read.size() == folders.size()) { // these changes were ours
        desktop_.watch(folders_.root(), changeTime(folders_.root()));
    }
    return reading;
}

void Activation::refreshDesktop() {
    if (desktop_.isOutdated()) {
        desktop_ = readDesktop(program_, folders_.root());
    }
}

const DesktopFaces& Activation::desktopNow() {
    try {
        refreshDesktop();
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): whoever asks what is shown is told
    }
    return desktop_;
}

} // namespace manager
