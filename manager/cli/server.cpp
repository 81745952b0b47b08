// SPDX-License-Identifier: MIT
// Answers, and the library that they come from.
#include "manager/cli/server.h"

#include "manager/cli/libraryops.h"
#include "manager/cli/onewindow.h"
#include "manager/cli/report.h"
#include "manager/exchange/commandtext.h"
#include "manager/library/error.h"
#include "manager/library/folders.h"
#include "system/displays.h"

#include <algorithm>
#include <exception>
#include <iterator>

namespace manager {

namespace {

// What is not done by then is answered as it stands: whoever asks waits a second. Machines that are
// too slow for it may be given longer.
constexpr std::chrono::milliseconds usualReplyTime{750};
constexpr std::chrono::milliseconds spareTime{150};
// Then others have their turn.
constexpr std::chrono::milliseconds longestWork{100};

/// Of a command that could not be looked at; empty: it cannot be read.
std::string wordOf(std::string_view command) {
    try {
        return parseCommand(command).word;
    } catch (const MalformedCommand& malformed) {
        return malformed.word();
    }
}

/// What is to be opened for a command: "show", "buy" or nothing. Asked for no font, the former is
/// how the protocol's version is asked for.
const char* openedFor(std::string_view text) {
    if (text.find("showRequest") == std::string_view::npos &&
        text.find("buyRequest") == std::string_view::npos) {
        return nullptr; // of most nothing is read twice
    }
    try {
        const Command command = parseCommand(text);
        return command.fonts.empty()                      ? nullptr
               : command.kind == CommandKind::ShowRequest ? "show"
               : command.kind == CommandKind::BuyRequest  ? "buy"
                                                          : nullptr;
    } catch (const MalformedCommand&) {
        return nullptr;
    }
}

} // namespace

Server::Server(const Places& places, bool verbose)
    : places_(places), verbose_(verbose), activation_(places), activator_(places),
      replyTime_(timeOr("GLYPHORA_REPLY_TIME", usualReplyTime)) {
    try {
        openLibrary();
    } catch (const DamagedDatabase&) { // NOLINT(bugprone-empty-catch): told and mended by a scan
    } catch (const Locked&) {          // NOLINT(bugprone-empty-catch): tried again for each command
    }
}

void Server::openLibrary() {
    library_.reset(); // its files may be those of an index that was moved aside
    standIns_ = {};
    followed_.reset();
    watched_.reset();
    library_ = openToAnswer(places_);
    scanNeeded_ = scanNeeded_ || library_->isScanOwed();
}

std::string Server::takeFailure(const std::exception& error) {
    std::string text = error.what();
    if (dynamic_cast<const DamagedDatabase*>(&error) != nullptr) {
        library_.reset();
        scanNeeded_ = true; // which mends it
        text += "; it is made anew from the recorded folders";
    }
    return text;
}

void Server::letOthersOpen() {
    if (library_ && library_->database().isWithoutSpace()) {
        library_.reset(); // open, it would lock them out
    }
}

std::optional<std::string> Server::answer(std::string command, std::optional<std::int32_t> sender,
                                          Receiver later) {
    Pending& pending = pending_.emplace_back();
    pending.run.setLookUpTime(
        std::max(replyTime_ / 2, longestWork)); // two rounds come before a reply
    pending.command = std::move(command);
    pending.sender = sender;
    pending.begun = Clock::now();
    pending.opens = openedFor(pending.command);
    const bool isShow = pending.opens != nullptr && pending.opens == std::string_view("show");
    if (pending.opens != nullptr && !sys::namesDisplay() && !(isShow && isWindowOpen())) {
        pending.run.setRemark(isShow ? "there is no display to show fonts on"
                                     : "there is no display to open pages on");
        pending.opens = nullptr;
    }
    // What the desktop shows is asked once for all that wait for it.
    if (!desktopAwaited_ && activation_.desktop().isOutdated()) {
        desktopAwaited_ = true;
        activator_.readDesktop();
    }
    // Also when it has to wait for that: there is something to be said then when its time is up.
    const bool isDone = finish(pending);
    if (!isDone && pending_.size() <= maximumPending) {
        pending.receiver = std::move(later);
        return std::nullopt;
    }
    if (!isDone) {
        noteQuestion(pending);
        noteOutcome(pending);
    }
    std::string reply = std::move(pending.answer.reply);
    forgetCalls(pending);
    pending_.pop_back();
    return reply;
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
        std::vector<ContainerId> ids;
        std::transform(wanted.begin(), wanted.end(), std::back_inserter(ids),
                       [](const ContainerFonts& container) { return container.id; });
        if (!wanted.empty()) {
            const std::uint64_t call = activator_.activate(std::move(wanted));
            pending.calls.push_back(call);
            callers_[call] = &pending;
            for (const ContainerId id : ids) {
                pending.awaited.emplace(call, id);
            }
        }
    } catch (const std::exception& error) {
        const std::string text = takeFailure(error);
        pending.awaited.clear();
        pending.answer = {};
        pending.answer.problems.push_back(text);
        pending.answer.reply = failureReply(wordOf(pending.command), text);
    }
    letOthersOpen();
    pending.roundTime = Clock::now() - begun;
}

bool Server::finish(Pending& pending) {
    if (!pending.isLookedUp) {
        round(pending);
    }
    if (!pending.isLookedUp || !pending.awaited.empty()) {
        return false;
    }
    activator_.activate(pending.run.takeUsed());
    if (!pending.isNoted) {
        noteQuestion(pending);
    }
    noteOutcome(pending);
    return true;
}

Server::Clock::time_point Server::deadlineOf(const Pending& pending) const {
    return pending.begun + replyTime_ - pending.roundTime;
}

void Server::answerAsItStands(Pending& pending) {
    const std::string lock = places_.fonts() + "/.lock";
    if (const std::string holder = lockHolder(lock); !holder.empty()) {
        pending.run.setRemark(lock + ": is locked" + holder + "; the rest is done when it is free");
    }
    // Once more with what is done by now, unless others have taken the time for it.
    if (hasTimeForRound(pending)) {
        round(pending);
    }
    pending.run.setRemark({});
    noteQuestion(pending);
    std::exchange(pending.receiver, {})(pending.answer.reply);
    noteProgress(pending);
}

bool Server::canGoOn(const Pending& pending) const {
    return pending.isLookedUp ? pending.awaited.empty() : !desktopAwaited_;
}

bool Server::hasTimeForRound(const Pending& pending) const {
    return Clock::now() <= deadlineOf(pending) + spareTime;
}

void Server::goOn() {
    takeNews();
    const auto end = Clock::now() + longestWork;
    isMoreToDo_ = false;
    for (auto pending = pending_.begin(); pending != pending_.end();) {
        const bool isDue = pending->receiver && deadlineOf(*pending) <= Clock::now();
        const bool isTime = Clock::now() < end && (!isDue || hasTimeForRound(*pending));
        if (isTime && canGoOn(*pending) && finish(*pending)) {
            if (pending->receiver) {
                pending->receiver(pending->answer.reply);
            }
            forgetCalls(*pending);
            pending = pending_.erase(pending);
            continue;
        }
        if (isDue) {
            answerAsItStands(*pending);
        }
        isMoreToDo_ = isMoreToDo_ || canGoOn(*pending);
        ++pending;
    }
}

void Server::forgetCalls(const Pending& pending) {
    for (const std::uint64_t call : pending.calls) {
        callers_.erase(call);
    }
}

std::optional<Server::Clock::time_point> Server::nextDeadline() const {
    std::optional<Clock::time_point> next = kick_.due();
    if (isMoreToDo_) {
        next = Clock::now();
    }
    for (const Pending& pending : pending_) {
        if (pending.receiver && (!next || deadlineOf(pending) < *next)) {
            next = deadlineOf(pending);
        }
    }
    return next;
}

void Server::followFiles() {
    try {
        if (!library_ || library_->isReplaced()) {
            openLibrary();
        }
        const Library::Generation now = library_->generation();
        // Where there is no space, the index is open to one at a time, and no copy can be made.
        if (followed_ != now && !library_->database().isWithoutSpace()) {
            activator_.follow(openToAnswer(places_));
            followed_ = now;
        }
    } catch (const Error& error) {
        warn(takeFailure(error));
    }
}

bool Server::watchFolders(FolderWatch& watch) {
    bool isDone = false;
    try {
        if (!library_ || library_->isReplaced()) {
            openLibrary();
        }
        const Library::Generation now = library_->generation();
        if (!watch.isAsSet() || watched_ != now) {
            watch.begin(library_->directories(), readFolders(places_));
            watched_ = now;
        }
        isDone = true;
    } catch (const Error& error) {
        warn(takeFailure(error));
    }
    letOthersOpen();
    return isDone;
}

void Server::noteUnwatched(std::size_t folders) {
    if (std::exchange(unwatched_, folders) != folders && folders != 0) {
        warn(counted(folders, "folder") +
             " cannot be watched; changes there are found within a minute or so");
    }
}

} // namespace manager
