// SPDX-License-Identifier: MIT
// Answers, and what follows from them.
#include "manager/cli/server.h"

#include "manager/cli/announce.h"
#include "manager/cli/history.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/settling.h"
#include "manager/library/error.h"
#include "manager/library/fields.h"
#include "manager/library/folders.h"

#include <algorithm>
#include <cstdlib>
#include <exception>

namespace manager {

namespace {

// Processes come and go; those that asked longest ago are forgotten first.
constexpr std::size_t maximumTargets = 1024;
// What is not done by then is answered as it stands: whoever asks waits a second. Machines that are
// too slow for it may be given longer.
std::chrono::milliseconds replyTime() {
    constexpr std::chrono::milliseconds usual{750};
    const char* const told = std::getenv("GLYPHORA_REPLY_TIME");
    const auto time = toNumber<std::int32_t>(told != nullptr ? told : "");
    return time && *time > 0 ? std::chrono::milliseconds(*time) : usual;
}
constexpr std::chrono::milliseconds spareTime{150};

} // namespace

Server::Server(const Places& places, bool verbose)
    : places_(places), verbose_(verbose), activation_(places), activator_(places),
      replyTime_(replyTime()) {
    openLibrary();
}

void Server::openLibrary() {
    library_.reset(); // its files may be those of an index that was moved aside
    standIns_ = {};
    library_ = openForUse(places_);
    scanNeeded_ = scanNeeded_ || library_->isScanOwed();
}

std::optional<std::string> Server::answer(std::string command, std::optional<std::int32_t> sender,
                                          Receiver later) {
    Pending& pending = pending_.emplace_back();
    pending.command = std::move(command);
    pending.sender = sender;
    pending.begun = Clock::now();
    // What the desktop shows is asked once for all that wait for it.
    if (!desktopAwaited_ && activation_.desktop().isOutdated()) {
        desktopAwaited_ = true;
        activator_.readDesktop();
    }
    if (!desktopAwaited_ && finish(pending)) {
        std::string reply = std::move(pending.answer.reply);
        pending_.pop_back();
        return reply;
    }
    pending.receiver = std::move(later);
    return std::nullopt;
}

void Server::round(Pending& pending) {
    const auto begun = Clock::now();
    pending.isLookedUp = true;
    try {
        if (!library_ || library_->isReplaced()) {
            openLibrary();
        }
        pending.answer = answerCommand(*library_, activation_, standIns_, pending.command,
                                       pending.sender, pending.run);
        if (desktopAwaited_) { // may show them already
            pending.run.giveUpWanted();
            pending.isLookedUp = false;
        }
        std::vector<ContainerFonts> wanted = pending.run.takeWanted();
        for (const ContainerFonts& container : wanted) {
            pending.awaited.insert(static_cast<std::int32_t>(container.id));
        }
        activator_.activate(std::move(wanted));
    } catch (const std::exception& error) {
        if (dynamic_cast<const DamagedDatabase*>(&error) != nullptr) {
            library_.reset(); // the next command opens, and so mends, it
            scanNeeded_ = true;
        }
        pending.awaited.clear();
        pending.answer = {};
        pending.answer.problems.emplace_back(error.what());
        pending.answer.reply = failureReply("", error.what());
    }
    pending.roundTime = Clock::now() - begun;
}

bool Server::finish(Pending& pending) {
    if (!pending.isLookedUp) {
        round(pending);
    }
    if (!pending.awaited.empty()) {
        return false;
    }
    activator_.activate(pending.run.takeUsed());
    if (!pending.isNoted) {
        noteQuestion(pending);
    }
    noteOutcome(pending.answer);
    return true;
}

Server::Clock::time_point Server::deadlineOf(const Pending& pending) const {
    return pending.begun + replyTime_ - pending.roundTime;
}

void Server::answerAsItStands(Pending& pending) {
    const std::string lock = places_.fonts() + "/.lock";
    if (const std::string holder = lockHolder(lock); !holder.empty()) {
        pending.run.setRemark(lock + ": is locked" + holder +
                              "; the rest is done if it is free within " +
                              std::to_string(lockPatience.count()) + " s");
    }
    // Once more with what is done by now, unless the first round has taken the time for it.
    if (Clock::now() < deadlineOf(pending) + spareTime || !pending.isLookedUp) {
        round(pending);
    }
    pending.run.setRemark({});
    noteQuestion(pending);
    std::exchange(pending.receiver, {})(pending.answer.reply);
}

void Server::goOn() {
    takeNews();
    for (auto pending = pending_.begin(); pending != pending_.end();) {
        const bool isDue = pending->receiver && deadlineOf(*pending) <= Clock::now();
        if ((pending->isLookedUp || !desktopAwaited_) && finish(*pending)) {
            if (pending->receiver) {
                pending->receiver(pending->answer.reply);
            }
            pending = pending_.erase(pending);
            continue;
        }
        if (isDue) {
            answerAsItStands(*pending);
        }
        ++pending;
    }
}

std::optional<Server::Clock::time_point> Server::nextDeadline() const {
    std::optional<Clock::time_point> next;
    for (const Pending& pending : pending_) {
        if (pending.receiver && (!next || deadlineOf(pending) < *next)) {
            next = deadlineOf(pending);
        }
    }
    return next;
}

void Server::takeNews() {
    ActivatorNews news = activator_.take();
    if (news.desktop) {
        activation_.desktop() = std::move(*news.desktop);
        desktopAwaited_ = false;
    }
    for (Pending& pending : pending_) {
        const std::size_t before = pending.awaited.size();
        for (const auto& [id, outcome] : news.activated) {
            if (pending.awaited.erase(static_cast<std::int32_t>(id)) != 0) {
                pending.run.tell(id, outcome);
            }
        }
        // All are there: there may be others to be tried in place of those that failed.
        pending.isLookedUp = pending.isLookedUp && (before == 0 || !pending.awaited.empty());
    }
    std::vector<HistoryEntry> entries;
    const auto take = [&](Deed deed, const std::string& text) {
        warn(text);
        entries.push_back({deed, text});
    };
    for (const std::string& text : news.mended) {
        take(Deed::Done, text);
    }
    for (const std::string& text : news.problems) {
        take(Deed::Failed, text);
    }
    for (const auto& [id, name, outcome] : news.withdrawn) {
        changed_ = changed_ || outcome.changed;
        if (outcome.changed) {
            entries.push_back(
                {Deed::Done, "deactivated " + name + " (container " + toText(id) + ")"});
        }
        for (const std::string& problem : outcome.problems) {
            take(outcome.success ? Deed::Undecided : Deed::Failed, problem);
        }
    }
    if (!entries.empty()) {
        recordDeeds(places_, entries);
    }
    if (news.ending) {
        ending_ = std::move(news.ending);
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
    const auto take = [&](Deed deed, const std::vector<std::string>& texts, bool aloud) {
        for (const std::string& text : texts) {
            entries.push_back({deed, text});
            if (aloud) {
                warn(text);
            }
        }
    };
    take(Deed::Done, answer.done, verbose_);
    take(Deed::Undecided, answer.undecided, verbose_);
    take(Deed::Failed, answer.problems, true);
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

bool Server::watchFolders(FolderWatch& watch) {
    try {
        if (!library_ || library_->isReplaced()) {
            openLibrary();
        }
        const auto [added, missed] = watch.watch(library_->directories(), readFolders(places_));
        if (missed != 0) {
            warn(counted(missed, "folder") +
                 " cannot be watched; run \"glyphora scan\" after changes there");
        }
        return added != 0;
    } catch (const Error& error) {
        warn(error.what());
    }
    return false;
}

} // namespace manager
