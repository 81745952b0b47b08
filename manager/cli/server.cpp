// SPDX-License-Identifier: MIT
// Answers, and what follows from them.
#include "manager/cli/server.h"

#include "manager/cli/announce.h"
#include "manager/cli/history.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/settling.h"
#include "manager/library/error.h"
#include "manager/library/folders.h"

#include <algorithm>
#include <exception>

namespace manager {

namespace {

// Processes come and go; those that asked longest ago are forgotten first.
constexpr std::size_t maximumTargets = 16;

} // namespace

Server::Server(const Places& places, bool verbose)
    : places_(places), verbose_(verbose), activation_(places) {
    openLibrary();
    activation_.recover([this](const std::string& text) {
        warn(text);
        recordDeed(places_, Deed::Done, text);
    });
}

void Server::openLibrary() {
    library_.reset(); // its files may be those of an index that was moved aside
    library_ = openForUse(places_);
    scanNeeded_ = scanNeeded_ || library_->isScanOwed();
}

std::string Server::answer(std::string_view command) {
    try {
        if (!library_ || library_->isReplaced()) {
            openLibrary();
        }
        Answer answer = answerCommand(*library_, activation_, command);
        note(answer);
        return std::move(answer.reply);
    } catch (const DamagedDatabase& damage) {
        library_.reset(); // the next command opens, and so mends, it
        scanNeeded_ = true;
        warn(damage.what());
        return failureReply("", damage.what());
    } catch (const std::exception& error) {
        warn(error.what());
        recordDeed(places_, Deed::Failed, error.what());
        return failureReply("", error.what());
    }
}

void Server::note(const Answer& answer) {
    const std::string asked =
        answer.fonts == 0
            ? answer.word + " without fonts" // how the protocol's version is asked for
            : answer.word + ": " + counted(answer.fonts, "font");
    std::vector<HistoryEntry> entries{{Deed::Asked, asked}};
    if (verbose_) {
        warn(asked + (answer.target ? ", from process " + std::to_string(answer.target->processId)
                                    : std::string()));
    }
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
    recordDeeds(places_, entries);
    changed_ = changed_ || answer.changed;
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
