// SPDX-License-Identifier: MIT
// What a crash left behind, and the late touch that is due after every change.
#include "manager/activation/activation.h"
#include "manager/activation/desktopfonts.h"
#include "manager/library/error.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace manager {

void Activation::recover(const std::function<void(const std::string&)>& report) {
    const FileLock held = lock();
    bool changed = folders_.staging().clear();
    beginChange();
    std::vector<ContainerId> ids = setsOnDisk();
    const std::vector<ContainerId> leaving = folders_.staging().takenRecords();
    ids.insert(ids.end(), leaving.begin(), leaving.end());
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    for (const ContainerId id : ids) {
        try {
            folders_.recover(id, [&](const std::string& text) {
                changed = true;
                report(text);
            });
        } catch (const Error& error) {
            report(error.what());
        }
    }
    endChange(changed);
    // Also after a crash between a change and its reload.
    reloadDesktopFonts();
}

// The mark is there before the first change, so that a process killed after it is found out.
void Activation::beginChange() {
    folders_.staging().markUnsettled();
}

void Activation::endChange(bool changed) {
    unsettled_ = unsettled_ || changed;
    if (!unsettled_) {
        folders_.staging().unmarkUnsettled();
    }
}

void Activation::settle() {
    const auto touch = [](const std::string& folder) {
        // A folder that went meanwhile needs no touch.
        utimensat(AT_FDCWD, folder.c_str(), nullptr, 0);
    };
    touch(folders_.root());
    std::for_each(changedFolders_.begin(), changedFolders_.end(), touch);
    changedFolders_.clear();
    unsettled_ = false;
    folders_.staging().unmarkUnsettled();
    reloadDesktopFonts(); // the touch has outdated the caches: write them once more for everybody
}

} // namespace manager
