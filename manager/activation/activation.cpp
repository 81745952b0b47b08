// SPDX-License-Identifier: MIT
// Batches of activations, recovery, and the late touch.
#include "manager/activation/activation.h"

#include "manager/activation/desktopfonts.h"
#include "manager/library/error.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace manager {

namespace {

SetRecord recordOf(const ContainerFonts& container) {
    SetRecord record{container.id, container.name, SetState::active, {}};
    std::set<std::string> names;
    for (const LibraryFile& file : container.files) {
        // Files of a container share a folder, so their names differ.
        if (names.insert(nameOf(file.path)).second) {
            record.files.push_back({nameOf(file.path), file.path, file.stamp, false});
        }
    }
    return record;
}

void findInvisible(const SetRecord& record, const std::string& folder,
                   const std::set<std::string>& visible, ActivationOutcome& outcome) {
    for (const SetFile& file : record.files) {
        const std::string path = folder + "/" + file.name;
        if (visible.contains(path)) {
            continue;
        }
        outcome.success = false;
        outcome.invisible.insert(file.name);
        if (outcome.problem.empty()) {
            outcome.problem =
                path + (isFontFolder(folder)
                            ? ": was in place, but fontconfig shows no font of it"
                            : ": was in place, but fontconfig does not look at this folder");
        }
    }
}

} // namespace

Activation::Activation(const Places& places, StepObserver observer)
    : folders_(places.fonts(), std::move(observer)) {
    makeFolders(places.fonts());
}

FileLock Activation::lock() const {
    return FileLock(folders_.root() + "/.lock");
}

bool Activation::isActive(ContainerId id, const std::string& fileName) const {
    return isActive(id) && access((folders_.folder(id) + "/" + fileName).c_str(), F_OK) == 0;
}

bool Activation::isActive(ContainerId id) const {
    return access((folders_.folder(id) + "/" + setRecordName).c_str(), F_OK) == 0;
}

std::vector<ContainerId> Activation::setsOnDisk() const {
    std::vector<ContainerId> ids;
    std::error_code code;
    for (std::filesystem::directory_iterator entry(folders_.root(), code), end;
         !code && entry != end; entry.increment(code)) {
        if (const auto id = toContainerId(entry->path().filename().string())) {
            ids.push_back(*id);
        }
    }
    if (code) {
        throw systemError(folders_.root(), "cannot be read", code.value());
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}

std::vector<ActiveContainer>
Activation::active(const std::function<void(const std::string&)>& report) const {
    std::vector<ActiveContainer> result;
    for (const ContainerId id : setsOnDisk()) {
        try {
            if (const auto record = readSetRecord(folders_.folder(id))) {
                result.push_back({id, record->name, record->files.size()});
            }
        } catch (const Error& error) {
            report(error.what());
        }
    }
    return result;
}

void Activation::putOnDisk(std::span<const SetRecord> records,
                           std::span<ActivationOutcome> outcomes) {
    std::vector<std::size_t> prepared;
    std::vector<ContainerId> ids;
    for (std::size_t i = 0; i < records.size(); ++i) {
        try {
            if (records[i].files.empty()) {
                throw Error("container " + toText(records[i].id) + ": has no fonts");
            }
            const SetFolders::Progress progress = folders_.begin(records[i]);
            outcomes[i].success = true;
            outcomes[i].changed = progress == SetFolders::Progress::updated;
            if (progress == SetFolders::Progress::prepared) {
                prepared.push_back(i);
                ids.push_back(records[i].id);
            }
        } catch (const Error& error) {
            outcomes[i].problem = error.what();
        }
    }
    if (prepared.empty()) {
        return;
    }
    std::string unsynced;
    try {
        folders_.syncPrepared(ids);
    } catch (const Error& error) {
        unsynced = error.what();
    }
    for (const std::size_t i : prepared) {
        try {
            if (!unsynced.empty()) {
                throw Error(unsynced);
            }
            folders_.place(records[i].id);
            outcomes[i].changed = true;
        } catch (const Error& error) {
            outcomes[i] = {false, false, {}, error.what()};
            folders_.discard(records[i].id);
        }
    }
    folders_.syncPlaced();
}

std::vector<SetFile> Activation::filesInPlace(ContainerId id) const {
    try {
        const auto record = readSetRecord(folders_.folder(id));
        return record ? record->files : std::vector<SetFile>();
    } catch (const Error&) {
        return {}; // told when something is done with the set
    }
}

std::vector<ActivationOutcome> Activation::activate(std::span<const ContainerFonts> containers) {
    std::vector<ActivationOutcome> outcomes(containers.size());
    if (containers.empty()) {
        return outcomes;
    }
    const FileLock held = lock();
    std::vector<SetRecord> records(containers.size());
    std::transform(containers.begin(), containers.end(), records.begin(), recordOf);
    std::vector<std::vector<SetFile>> before(containers.size());
    std::transform(records.begin(), records.end(), before.begin(),
                   [this](const SetRecord& record) { return filesInPlace(record.id); });
    putOnDisk(records, outcomes);

    const auto isChanged = [](const ActivationOutcome& outcome) { return outcome.changed; };
    if (std::none_of(outcomes.begin(), outcomes.end(), isChanged)) {
        return outcomes;
    }
    unsettled_ = true;
    reloadDesktopFonts();
    const std::set<std::string> visible = visibleFontFiles(folders_.root());
    bool tookAway = false;
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (!outcomes[i].changed) {
            continue;
        }
        const std::string folder = folders_.folder(records[i].id);
        changedFolders_.push_back(folder);
        findInvisible(records[i], folder, visible, outcomes[i]);
        if (!outcomes[i].success) {
            takeInvisibleAway(records[i], outcomes[i]);
            outcomes[i].changed = filesInPlace(records[i].id) != before[i];
            tookAway = true;
        }
    }
    if (tookAway) {
        reloadDesktopFonts();
    }
    return outcomes;
}

void Activation::takeInvisibleAway(SetRecord record, ActivationOutcome& outcome) {
    std::erase_if(record.files,
                  [&](const SetFile& file) { return outcome.invisible.contains(file.name); });
    try {
        if (record.files.empty()) {
            bool leftBehind = false;
            folders_.remove(record.id, &leftBehind);
        } else {
            folders_.begin(record);
        }
    } catch (const Error& error) {
        outcome.problem.append("; ").append(error.what());
    }
}

std::vector<ActivationOutcome> Activation::deactivate(std::span<const ContainerId> containers) {
    std::vector<ActivationOutcome> outcomes(containers.size());
    const FileLock held = lock();
    bool changed = false;
    for (std::size_t i = 0; i < containers.size(); ++i) {
        const std::string folder = folders_.folder(containers[i]);
        ActivationOutcome& outcome = outcomes[i];
        try {
            bool leftBehind = false;
            outcome.changed = folders_.remove(containers[i], &leftBehind);
            outcome.success = outcome.changed;
            if (!outcome.changed) {
                outcome.problem = "container " + toText(containers[i]) + ": is not active";
            } else if (leftBehind) {
                outcome.problem = folder + ": kept, it holds files that are not this program's";
                changedFolders_.push_back(folder);
            }
        } catch (const Error& error) {
            outcome.problem = error.what();
        }
        changed = changed || outcome.changed;
    }
    if (changed) {
        unsettled_ = true;
        reloadDesktopFonts();
    }
    return outcomes;
}

void Activation::recover(const std::function<void(const std::string&)>& report) {
    const FileLock held = lock();
    folders_.clearStaging();
    for (const ContainerId id : setsOnDisk()) {
        try {
            folders_.recover(id, [&](const std::string& text) {
                unsettled_ = true;
                report(text);
            });
        } catch (const Error& error) {
            report(error.what());
        }
    }
    // Also after a crash between a change and its reload.
    reloadDesktopFonts();
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
    reloadDesktopFonts(); // the touch has outdated the caches: write them once more for everybody
}

} // namespace manager
