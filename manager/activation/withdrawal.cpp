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

std::string inUseText(ContainerId id, const std::vector<Reason>& users) {
    std::string text = "container " + toText(id) + ": ";
    for (const Reason& user : users) {
        text += (&user == &users.front() ? "" : ", ") + describe(user);
    }
    return text + "; it leaves when " + (users.size() == 1 ? "that ends" : "those end");
}

/// Why the folder of a set that is gone is still there; another attempt tells.
std::string leftText(const std::string& folder) {
    if (rmdir(folder.c_str()) != 0 && errno != ENOTEMPTY) {
        return systemError(folder, "cannot be removed", errno).what();
    }
    return folder + ": kept, it holds files that are not this program's";
}

} // namespace

void Activation::takeAll(std::span<const ContainerId> containers,
                         std::span<ActivationOutcome> outcomes) {
    const auto mappers = mappersOfFilesBelow(folders_.root());
    std::vector<ContainerId> removed;
    std::vector<std::string> kept;
    for (std::size_t i = 0; i < containers.size(); ++i) {
        const std::string folder = folders_.folder(containers[i]);
        ActivationOutcome& outcome = outcomes[i];
        try {
            if (const auto users = mappers.find(folder); users != mappers.end()) {
                std::vector<Reason> reasons;
                std::transform(users->second.begin(), users->second.end(),
                               std::back_inserter(reasons), Reason::inUseBy);
                if (folders_.changeReasons(containers[i], reasons)) {
                    outcome.success = true;
                    outcome.postponed = true;
                    outcome.problems.push_back(inUseText(containers[i], reasons));
                    continue;
                }
            }
            bool leftBehind = false;
            outcome.changed = folders_.remove(containers[i], &leftBehind);
            outcome.success = outcome.changed;
            if (!outcome.changed) {
                outcome.problems.push_back("container " + toText(containers[i]) +
                                           ": is not active");
                continue;
            }
            removed.push_back(containers[i]);
            desktop_.replaceFolders(std::span(&folder, 1), {});
            if (leftBehind) {
                outcome.problems.push_back(leftText(folder));
                kept.push_back(folder);
            }
        } catch (const Error& error) {
            outcome.problems.emplace_back(error.what());
        }
    }
    endChange(!removed.empty());
    if (removed.empty()) {
        return;
    }
    try {
        folders_.syncRemoved(removed);
    } catch (const Error& error) {
        for (ActivationOutcome& outcome : outcomes) {
            if (outcome.changed) {
                outcome.success = false;
                outcome.problems.emplace_back(error.what());
            }
        }
    }
    changedFolders_.insert(changedFolders_.end(), kept.begin(), kept.end());
    showChanges(kept);
}

std::vector<ActivationOutcome> Activation::deactivate(std::span<const ContainerId> containers) {
    std::vector<ActivationOutcome> outcomes(containers.size());
    const FileLock held = lock();
    beginChange();
    takeAll(containers, outcomes);
    return outcomes;
}

std::vector<Withdrawal> Activation::withdrawDue() {
    const FileLock held = lock();
    beginChange();
    std::vector<ContainerId> due;
    std::vector<Withdrawal> withdrawals;
    for (const ContainerId id : setsIn(folders_.root())) {
        const auto record = recordInPlace(id);
        if (!record) {
            continue;
        }
        std::vector<Reason> reasons = record->reasons;
        removeEnded(reasons);
        if (reasons.empty()) {
            due.push_back(id);
            withdrawals.push_back({id, record->name, {}});
        } else if (reasons != record->reasons) {
            try {
                static_cast<void>(folders_.changeReasons(id, reasons));
            } catch (const Error&) { // NOLINT(bugprone-empty-catch): it is found out again
            }
        }
    }
    std::vector<ActivationOutcome> outcomes(due.size());
    if (due.empty()) {
        endChange(false);
    } else {
        takeAll(due, outcomes);
    }
    for (std::size_t i = 0; i < due.size(); ++i) {
        withdrawals[i].outcome = std::move(outcomes[i]);
    }
    return withdrawals;
}

std::vector<Reason> Activation::endingReasons() const {
    std::vector<Reason> ending;
    for (const ContainerId id : setsIn(folders_.root())) {
        const auto record = recordInPlace(id);
        for (const Reason& reason : record ? record->reasons : std::vector<Reason>()) {
            if (reason.kind != Reason::Kind::ByHand && stands(reason) &&
                std::find(ending.begin(), ending.end(), reason) == ending.end()) {
                ending.push_back(reason);
            }
        }
    }
    return ending;
}

} // namespace manager
