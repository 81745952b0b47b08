// SPDX-License-Identifier: MIT
// What came of commands and by itself: written into the history, and told to others.
#include "manager/cli/announce.h"
#include "manager/cli/report.h"
#include "manager/cli/server.h"
#include "manager/cli/settling.h"

#include <utility>

namespace manager {

namespace {

// Processes come and go; those that asked longest ago are forgotten first.
constexpr std::size_t maximumTargets = 1024;

} // namespace

void Server::takeNews() {
    ActivatorNews news = activator_.take();
    if (news.desktop) {
        activation_.desktop() = std::move(*news.desktop);
        desktopAwaited_ = false;
    }
    Entries entries;
    for (Activated& done : news.activated) {
        takeOutcome(std::move(done), entries);
    }
    for (const std::string& text : news.mended) {
        take(entries, Deed::Done, text);
    }
    for (const std::string& text : news.problems) {
        take(entries, Deed::Failed, text);
    }
    for (const auto& [id, name, why, outcome] : news.withdrawn) {
        changed_ = changed_ || outcome.changed;
        if (outcome.changed) {
            entries.push_back({Deed::Done, "deactivated " + name + " (container " + toText(id) +
                                               ")" + (why.empty() ? "" : ": " + why)});
        }
        for (const std::string& problem : outcome.problems) {
            take(entries, outcome.success ? Deed::Undecided : Deed::Failed, problem);
        }
    }
    if (!entries.empty()) {
        recordDeeds(places_, entries);
    }
    if (news.ending) {
        ending_ = std::move(news.ending);
    }
}

void Server::takeOutcome(Activated done, Entries& entries) {
    const auto caller = callers_.find(done.call);
    if (caller != callers_.end() && caller->second->awaited.erase({done.call, done.id}) != 0) {
        Pending& pending = *caller->second;
        pending.run.tell(done.id, std::move(done.outcome));
        // When all are there, there may be others to be tried in place of those that failed.
        pending.isLookedUp = pending.isLookedUp && !pending.awaited.empty();
        return;
    }
    // Nobody waits for it.
    changed_ = changed_ || done.outcome.changed;
    const std::string called = done.name + " (container " + toText(done.id) + ")";
    if (done.outcome.changed && done.onlyIfActive) {
        const std::string& versions = done.outcome.versions;
        take(entries, Deed::Done,
             "updated " + called + (versions.empty() ? "" : ": version " + versions));
    } else if (done.outcome.changed) {
        entries.push_back({Deed::Done, "activated " + called});
    }
    for (const std::string& problem : done.outcome.problems) {
        take(entries, done.outcome.postponed ? Deed::Undecided : Deed::Failed, problem);
    }
}

void Server::take(Entries& entries, Deed deed, const std::string& text) {
    warn(text);
    entries.push_back({deed, text});
}

void Server::noteQuestion(Pending& pending) {
    const Answer& answer = pending.answer;
    const std::string asked =
        answer.fonts == 0
            ? answer.word + " without fonts" // how the protocol's version is asked for
            : answer.word + ": " + counted(answer.fonts, "font");
    if (verbose_) {
        warn(asked + (answer.target ? ", from process " + std::to_string(answer.target->processId)
                                    : std::string()));
    }
    recordDeed(places_, Deed::Asked, asked);
    pending.isNoted = true;
    if (answer.target) {
        std::erase_if(targets_, [&](const ChangeTarget& known) {
            return known.processId == answer.target->processId;
        });
        targets_.push_back(*answer.target);
        if (targets_.size() > maximumTargets) {
            targets_.erase(targets_.begin());
        }
    }
}

void Server::noteOutcome(const Answer& answer) {
    std::vector<HistoryEntry> entries;
    const auto takeAll = [&](Deed deed, const std::vector<std::string>& texts, bool aloud) {
        for (const std::string& text : texts) {
            entries.push_back({deed, text});
            if (aloud) {
                warn(text);
            }
        }
    };
    takeAll(Deed::Done, answer.done, verbose_);
    takeAll(Deed::Undecided, answer.undecided, verbose_);
    takeAll(Deed::Failed, answer.problems, true);
    if (!entries.empty()) {
        recordDeeds(places_, entries);
    }
    changed_ = changed_ || answer.changed;
}

void Server::tellOthers() {
    if (!changed_) {
        return;
    }
    changed_ = false;
    postLibraryChanged();
    tellDisplay();
    std::erase_if(targets_, [](const ChangeTarget& target) { return !sendLibraryChanged(target); });
}

} // namespace manager
