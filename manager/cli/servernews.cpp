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
    Occasion occasion;
    for (Activated& done : news.activated) {
        touched_.push_back(done.id);
        takeOutcome(std::move(done), occasion);
    }
    for (Pending& pending : pending_) {
        if (pending.isNoted) {
            noteProgress(pending);
        }
    }
    changed_ = changed_ || news.recovered;
    if (news.isIndexDamaged) { // though what was read before may still answer
        library_.reset();
        scanNeeded_ = true;
    }
    for (const std::string& text : news.mended) {
        occasion.add(Deed::Done, text, true);
    }
    for (const std::string& text : news.problems) {
        occasion.add(Deed::Failed, text, true);
    }
    for (const auto& [id, name, why, outcome] : news.withdrawn) {
        changed_ = changed_ || outcome.changed;
        if (outcome.changed) {
            occasion.add(Deed::Done,
                         "deactivated " + name + " (container " + toText(id) + ")" +
                             (why.empty() ? "" : ": " + why),
                         false);
        }
        for (const std::string& problem : outcome.problems) {
            occasion.add(outcome.success ? Deed::Undecided : Deed::Failed, problem, true);
        }
    }
    occasion.record(places_);
    if (news.ending) {
        ending_ = std::move(news.ending);
    }
}

void Server::takeOutcome(Activated done, Occasion& occasion) {
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
        occasion.add(Deed::Done,
                     "updated " + called + (versions.empty() ? "" : ": version " + versions), true);
    } else if (done.outcome.changed) {
        occasion.add(Deed::Done, "activated " + called, false);
    }
    for (const std::string& problem : done.outcome.problems) {
        occasion.add(done.outcome.postponed ? Deed::Undecided : Deed::Failed, problem, true);
    }
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
    if (pending.opens != nullptr) {
        toOpen_.emplace_back(pending.opens, pending.command);
    }
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

void Server::noteProgress(Pending& pending) {
    Answer news;
    pending.run.reportNew(news);
    changed_ = changed_ || news.changed;
    for (const std::string& text : news.done) {
        pending.occasion.add(Deed::Done, text, verbose_);
    }
    for (std::string& text : news.problems) {
        pending.occasion.add(Deed::Failed, text, true);
        pending.toldProblems.insert(std::move(text));
    }
    pending.occasion.write(places_);
}

void Server::noteOutcome(Pending& pending) {
    noteProgress(pending);
    for (const std::string& text : pending.answer.undecided) {
        pending.occasion.add(Deed::Undecided, text, verbose_);
    }
    for (const std::string& text : pending.answer.problems) {
        if (!pending.toldProblems.contains(text)) {
            pending.occasion.add(Deed::Failed, text, true);
        }
    }
    pending.occasion.record(places_);
}

void Server::end() {
    activator_.end();
    takeNews();
    for (Pending& pending : pending_) {
        if (!pending.isNoted) {
            noteQuestion(pending);
        }
        noteProgress(pending);
        pending.occasion.record(places_);
    }
    tellOthers();
    if (kick_.due()) { // nobody waits for its time
        tellDisplay();
    }
}

void Server::noteGuests() {
    Occasion occasion;
    for (const std::string& failure : guests_.takeFailures()) {
        occasion.add(Deed::Failed, failure, true);
    }
    occasion.record(places_);
}

void Server::tellOthers() {
    for (const auto& [what, command] : std::exchange(toOpen_, {})) {
        if (const std::string failure = guests_.start(what, command); !failure.empty()) {
            Occasion occasion;
            occasion.add(Deed::Failed, failure, true);
            occasion.record(places_);
        }
    }
    if (std::exchange(changed_, false)) {
        postLibraryChanged();
        kick_.want();
        std::erase_if(targets_,
                      [](const ChangeTarget& target) { return !sendLibraryChanged(target); });
    }
    if (kick_.take(Clock::now())) {
        tellDisplay();
    }
}

} // namespace manager
