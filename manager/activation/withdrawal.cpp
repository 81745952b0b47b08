// SPDX-License-Identifier: MIT
// Taking sets away: by hand, or because their last reason has ended. What a running program has
// mapped stays under it: it would find the file gone when it opens it again, to embed it into a
// document, say.
#include "manager/activation/activation.h"
#include "manager/activation/mappedfiles.h"
#include "manager/library/error.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace manager {

namespace {

/// Why the folder of a set that is gone is still there; another attempt tells.
std::string leftText(const std::string& folder) {
    if (rmdir(folder.c_str()) != 0 && errno != ENOTEMPTY) {
        return systemError(folder, "cannot be removed", errno).what();
    }
    return folder + ": kept, it holds files that are not this program's";
}

} // namespace

bool Activation::takeUnreadable(Leaving& set, const Mappers& mappers) {
    const std::string folder = folders_.folder(set.id);
    try {
        set.record = folders_.recordOfLeaving(set.id);
        return false;
    } catch (const Error& error) {
        set.outcome.problems.emplace_back(error.what());
    }
    if (const auto uses = usesIn(folder, mappers); !uses.empty()) {
        set.outcome.problems.push_back(inUseText(set.id, uses, "it can be taken away"));
        return true;
    }
    set.outcome.problems.push_back(folder + ": is kept as " + folders_.hide(set.id));
    set.outcome.changed = true;
    set.outcome.success = true;
    return true;
}

bool Activation::keepUnderPrograms(Leaving& set, const Mappers& mappers) {
    std::vector<Reason> uses = usesIn(folders_.folder(set.id), mappers);
    if (uses.empty()) {
        return false;
    }
    set.outcome.change.reasons = changeOf(set.record->reasons, uses);
    set.record->reasons = std::move(uses);
    folders_.changeReasons(*set.record);
    known_.learn(set.id, set.record->reasons);
    set.outcome.success = true;
    set.outcome.postponed = true;
    set.outcome.problems.push_back(inUseText(set.id, set.record->reasons, "it leaves"));
    return true;
}

void Activation::takeAll(std::span<Leaving> sets) {
    const Mappers mappers = mappersOfFilesBelow(folders_.root());
    std::vector<ContainerId> removed;
    std::vector<std::string> folders;
    std::vector<std::string> kept;
    for (Leaving& set : sets) {
        const std::string folder = folders_.folder(set.id);
        try {
            if (!set.record && takeUnreadable(set, mappers)) {
                if (set.outcome.changed) {
                    known_.forget(set.id);
                    removed.push_back(set.id);
                    folders.push_back(folder);
                }
                continue;
            }
            if (!set.record) {
                set.outcome.problems.push_back("container " + toText(set.id) + ": is not active");
                continue;
            }
            if (keepUnderPrograms(set, mappers)) {
                continue;
            }
            const bool leftBehind = !folders_.remove(*set.record);
            set.outcome.changed = true;
            set.outcome.success = true;
            set.outcome.change = changeOf(*set.record, {});
            known_.forget(set.id);
            removed.push_back(set.id);
            folders.push_back(folder);
            if (leftBehind) {
                set.outcome.problems.push_back(leftText(folder));
                kept.push_back(folder);
            }
        } catch (const Error& error) {
            set.outcome.problems.emplace_back(error.what());
        }
    }
    endChange(!removed.empty());
    if (removed.empty()) {
        return;
    }
    desktop_.replaceFolders(folders, {});
    try {
        folders_.syncRemoved(removed);
    } catch (const Error& error) {
        for (Leaving& set : sets) {
            if (set.outcome.changed) {
                set.outcome.success = false;
                set.outcome.problems.emplace_back(error.what());
            }
        }
    }
    changedFolders_.insert(changedFolders_.end(), kept.begin(), kept.end());
    showChanges(kept);
}

std::vector<ActivationOutcome> Activation::deactivate(std::span<const ContainerId> containers) {
    std::vector<Leaving> sets;
    std::transform(containers.begin(), containers.end(), std::back_inserter(sets),
                   [](ContainerId id) {
                       return Leaving{id, {}, {}};
                   });
    {
        const FileLock held = lock();
        beginChange();
        takeAll(sets);
    }
    sweep(sets.size());
    std::vector<ActivationOutcome> outcomes;
    std::transform(sets.begin(), sets.end(), std::back_inserter(outcomes),
                   [](Leaving& set) { return std::move(set.outcome); });
    return outcomes;
}

void Activation::lookAgain(const std::optional<std::vector<ContainerId>>& changed) {
    anyChanged_ = anyChanged_ || !changed;
    if (changed) {
        changed_.insert(changed->begin(), changed->end());
    }
}

void Activation::readChangedRecords() {
    if (std::exchange(anyChanged_, false)) {
        known_.clear();
        const std::vector<ContainerId> all = sets();
        changed_.insert(all.begin(), all.end());
    }
    for (const ContainerId id : std::exchange(changed_, {})) {
        if (const auto record = recordInPlace(id)) {
            known_.learn(id, record->reasons);
        } else {
            known_.forget(id);
        }
    }
    const std::vector<ContainerId> doubtful = known_.doubtful();
    doubtful_.assign(doubtful.begin(), doubtful.end());
}

std::vector<Withdrawal> Activation::withdrawDue(std::size_t most) {
    const FileLock held = lock();
    if (doubtful_.empty()) {
        readChangedRecords();
    }
    std::vector<Leaving> due;
    std::vector<Withdrawal> withdrawals;
    for (; most > 0 && !doubtful_.empty(); --most) {
        const ContainerId id = doubtful_.front();
        doubtful_.pop_front();
        auto record = recordInPlace(id);
        if (!record) {
            known_.forget(id);
            continue;
        }
        const std::vector<Reason> before = record->reasons;
        removeEnded(record->reasons);
        if (record->reasons.empty()) {
            withdrawals.push_back({id, record->name, endsOf(before), {}});
            due.push_back({id, std::move(record), {}});
        } else if (record->reasons != before) {
            try {
                folders_.changeReasons(*record);
            } catch (const Error&) { // NOLINT(bugprone-empty-catch): it is found out again
            }
            known_.learn(id, record->reasons);
        }
    }
    if (!due.empty()) {
        beginChange();
        takeAll(due);
    }
    for (std::size_t i = 0; i < due.size(); ++i) {
        withdrawals[i].outcome = std::move(due[i].outcome);
    }
    return withdrawals;
}

std::string Activation::endsOf(const std::vector<Reason>& reasons) const {
    std::string text;
    for (const Reason& reason : reasons) {
        text += (text.empty() ? "" : ", ") + known_.endOf(reason);
    }
    return text;
}

} // namespace manager
