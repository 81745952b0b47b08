// SPDX-License-Identifier: MIT
// Batches of activations and deactivations.
#include "manager/activation/activation.h"

#include "manager/activation/desktopfonts.h"
#include "manager/library/error.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace manager {

namespace {

constexpr const char* endlessText = ": fontconfig does not come to an end with it";

/// Tells what is wrong with files of a container, each a line; of one that is lost whole the first
/// file's line stands for all.
void tell(std::vector<std::string> problems, std::size_t files, ActivationOutcome& outcome) {
    if (problems.size() == files && files > 1) {
        problems.resize(1);
        problems.front() +=
            "; none of the container's " + std::to_string(files) + " files is shown";
    }
    std::move(problems.begin(), problems.end(), std::back_inserter(outcome.problems));
}

/// The names of the files of a set that the desktop does not see, and what is to be told of them.
std::set<std::string> findInvisible(const SetRecord& record, const std::string& folder,
                                    const FolderReading& reading,
                                    const std::set<std::string>& visible,
                                    std::vector<std::string>& problems) {
    std::set<std::string> invisible;
    for (const SetFile& file : record.files) {
        const std::string path = folder + "/" + file.name;
        if (visible.contains(path)) {
            continue;
        }
        invisible.insert(file.name);
        problems.push_back(path +
                           (reading.endless.contains(path) ? endlessText
                            : reading.isLookedAt
                                ? ": was in place, but fontconfig shows no font of it"
                                : ": was in place, but fontconfig does not look at this folder"));
    }
    return invisible;
}

void fail(ActivationOutcome& outcome, const SetRecord& wanted, const std::string& problem) {
    outcome.problems.push_back(problem);
    for (const SetFile& file : wanted.files) {
        outcome.lost.insert(file.name);
    }
}

std::string joined(const std::set<std::string>& texts) {
    std::string text;
    for (const std::string& part : texts) {
        text += (text.empty() ? "" : ", ") + part;
    }
    return text;
}

std::string versionsOfReplaced(const std::vector<SetFile>& before,
                               const std::vector<SetFile>& now) {
    std::set<std::string> older;
    std::set<std::string> newer;
    const FilesByName known(before);
    for (const SetFile& file : now) {
        std::vector<std::string> names = file.predecessors;
        names.push_back(file.name);
        for (const std::string& name : names) {
            const SetFile* replaced = known.find(name);
            if (replaced != nullptr && *replaced != file) {
                older.insert(replaced->version);
                newer.insert(file.version);
            }
        }
    }
    const bool isTold = older != newer && !older.contains({}) && !newer.contains({});
    return isTold ? joined(older) + " -> " + joined(newer) : std::string();
}

} // namespace

SetRecord recordOf(const ContainerFonts& container) {
    SetRecord record{container.id, container.name, {}, container.reasons};
    std::set<std::string> names;
    for (const LibraryFile& file : container.files) {
        // Files of a container share a folder, so their names differ.
        if (names.insert(nameOf(file.path)).second) {
            record.files.push_back({nameOf(file.path), file.path, file.stamp, false, file.version});
        }
    }
    return record;
}

ActivationOutcome failureOf(const ContainerFonts& container, const std::string& problem) {
    ActivationOutcome outcome;
    fail(outcome, recordOf(container), problem);
    return outcome;
}

Activation::Activation(const Places& places, StepObserver observer, std::filesystem::path desktop,
                       std::chrono::milliseconds patience)
    : folders_(places.fonts(), std::move(observer)), program_(std::move(desktop)),
      patience_(patience) {
    makeFolders(folders_.staging().path());
}

FileLock Activation::lock() const {
    makeFolders(folders_.staging().path()); // a person may have tidied up
    return FileLock(folders_.root() + "/.lock", patience_);
}

void Activation::putOnDisk(std::span<const ContainerFonts> containers, std::span<SetRecord> records,
                           std::span<ActivationOutcome> outcomes) {
    std::vector<std::size_t> prepared;
    std::vector<ContainerId> ids;
    std::optional<Mappers> mappers; // to be read when they are asked for
    for (std::size_t i = 0; i < records.size(); ++i) {
        ActivationOutcome& outcome = outcomes[i];
        if (!joinWithActive(containers[i], mappers, records[i], outcome)) {
            continue;
        }
        if (records[i].files.empty()) {
            fail(outcome, records[i], "container " + toText(records[i].id) + ": has no fonts");
            continue;
        }
        const std::size_t files = records[i].files.size();
        try {
            std::vector<LostFile> lost;
            std::vector<std::string> problems;
            std::erase_if(records[i].files, [&](const SetFile& file) {
                const auto known = endless_.find(file.source);
                const bool bad = known != endless_.end() && known->second == file.stamp;
                if (bad) {
                    lost.push_back({file.name, file.source + endlessText});
                }
                return bad;
            });
            const SetFolders::Progress progress =
                folders_.begin(records[i], lost, containers[i].ended);
            for (LostFile& file : lost) {
                outcome.lost.insert(std::move(file.name));
                problems.push_back(std::move(file.problem));
            }
            tell(std::move(problems), files, outcome);
            outcome.changed = progress == SetFolders::Progress::Updated;
            if (outcome.changed) { // a new one is noticed by the root
                changedFolders_.push_back(folders_.folder(records[i].id));
            }
            if (progress == SetFolders::Progress::Prepared) {
                prepared.push_back(i);
                ids.push_back(records[i].id);
            }
        } catch (const Error& error) {
            fail(outcome, records[i], error.what());
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
            fail(outcomes[i], records[i], error.what());
            folders_.discard(records[i].id);
        }
    }
    folders_.syncPlaced();
}

std::vector<ActivationOutcome> Activation::activate(std::span<const ContainerFonts> containers) {
    std::vector<ActivationOutcome> outcomes(containers.size());
    if (containers.empty()) {
        return outcomes;
    }
    const FileLock held = lock();
    beginChange();
    std::vector<SetRecord> records(containers.size());
    std::transform(containers.begin(), containers.end(), records.begin(), recordOf);
    std::vector<SetRecord> before(containers.size());
    std::transform(records.begin(), records.end(), before.begin(), [this](const SetRecord& record) {
        return recordInPlace(record.id).value_or(SetRecord{});
    });
    putOnDisk(containers, records, outcomes);

    const auto isChanged = [](const ActivationOutcome& outcome) { return outcome.changed; };
    const bool changed = std::any_of(outcomes.begin(), outcomes.end(), isChanged);
    endChange(changed);
    std::vector<std::string> reduced;
    if (changed) {
        std::vector<std::string> folders;
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (outcomes[i].changed) {
                folders.push_back(folders_.folder(records[i].id));
            }
        }
        const FolderReading reading = showChanges(folders);
        std::set<std::string> visible;
        for (const auto& [name, face] : reading.faces) {
            visible.insert(face.file);
        }
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (!outcomes[i].changed) {
                continue;
            }
            const std::string folder = folders_.folder(records[i].id);
            if (const auto unread = reading.unread.find(folder); unread != reading.unread.end()) {
                outcomes[i].problems.push_back(unread->second + "; what is in place stays");
                continue; // programs may well see it
            }
            std::vector<std::string> problems;
            const auto invisible = findInvisible(records[i], folder, reading, visible, problems);
            tell(std::move(problems), records[i].files.size(), outcomes[i]);
            for (const SetFile& file : records[i].files) {
                if (reading.endless.contains(folder + "/" + file.name)) {
                    endless_[file.source] = file.stamp;
                }
            }
            if (!invisible.empty()) {
                takeAway(invisible, records[i], outcomes[i]);
                outcomes[i].changed = filesInPlace(records[i].id) != before[i].files;
                reduced.push_back(folder);
                changedFolders_.push_back(folder);
            }
        }
    }
    if (!reduced.empty()) {
        showChanges(reduced);
    }
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        outcomes[i].success = outcomes[i].problems.size() == (outcomes[i].postponed ? 1U : 0U);
        if (outcomes[i].changed) {
            outcomes[i].versions = versionsOfReplaced(before[i].files, records[i].files);
        }
        outcomes[i].change =
            changeOf(before[i], recordInPlace(records[i].id).value_or(SetRecord{}));
        if (outcomes[i].success && !records[i].reasons.empty()) {
            known_.learn(records[i].id, records[i].reasons); // while its processes have names
        }
    }
    return outcomes;
}

void Activation::takeAway(const std::set<std::string>& names, SetRecord& record,
                          ActivationOutcome& outcome) {
    outcome.lost.insert(names.begin(), names.end());
    std::erase_if(record.files, [&](const SetFile& file) { return names.contains(file.name); });
    try {
        if (record.files.empty()) {
            if (const auto whole = folders_.recordOfLeaving(record.id)) {
                static_cast<void>(folders_.remove(*whole));
                folders_.syncRemoved(std::span(&record.id, 1));
                folders_.sweep(1);
            }
        } else {
            std::vector<LostFile> lost; // nothing more: the rest is in place
            folders_.begin(record, lost);
        }
    } catch (const Error& error) {
        outcome.problems.emplace_back(error.what());
    }
}

} // namespace manager
