// SPDX-License-Identifier: MIT
// Activation by hand, through the same folders on disk that the server uses.
#include "manager/cli/activationops.h"
#include "faces/namekey.h"

#include "manager/activation/activation.h"
#include "manager/activation/successors.h"
#include "manager/cli/announce.h"
#include "manager/cli/arguments.h"
#include "manager/cli/containernames.h"
#include "manager/cli/fontfiles.h"
#include "manager/cli/history.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/progress.h"
#include "manager/cli/report.h"
#include "manager/cli/settling.h"
#include "manager/cli/tally.h"
#include "manager/library/cancel.h"
#include "manager/library/error.h"
#include "manager/library/folders.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <span>
#include <utility>

namespace manager {

namespace {

using Json = nlohmann::ordered_json;

/// What is told of a container when it was dealt with.
struct Told {
    std::string text;
    Json item;
};

// Records and tells what came of each.
void tell(const Places& places, std::span<const ActivationOutcome> outcomes, std::span<Told> told,
          Tally& tally) {
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        const ActivationOutcome& outcome = outcomes[i];
        for (const std::string& problem : outcome.problems) {
            if (outcome.success) {
                tally.remark(problem);
            } else {
                tally.fail(problem);
            }
            if (!outcome.success || outcome.postponed) {
                recordDeed(places, outcome.success ? Deed::Undecided : Deed::Failed, problem);
            }
        }
        // Also what was done in part.
        if ((outcome.success && !outcome.postponed) || outcome.changed) {
            recordDeed(places, Deed::Done, told[i].text);
            tally.add(told[i].text, std::move(told[i].item));
        }
    }
}

std::vector<std::string> reasonTexts(const ActiveContainer& container) {
    if (container.reasons.empty()) {
        return {"leaving"}; // the server has not come to it yet, or none is running
    }
    std::vector<std::string> texts;
    std::transform(container.reasons.begin(), container.reasons.end(), std::back_inserter(texts),
                   describe);
    return texts;
}

/// Where the fonts of an active container are.
struct Origin {
    bool away = false;
    bool gone = false; ///< the library has none of them any more
};

Origin originOf(Library& library, ContainerId id) {
    const auto container = library.container(id);
    return {container && container->away, !container};
}

/// What was active when the command began, and has been taken away by the server meanwhile, is as
/// it was to be.
void excuseThoseThatLeft(const Activation& activation,
                         const std::map<ContainerId, std::string>& before,
                         std::span<const ContainerId> ids, std::span<ActivationOutcome> outcomes) {
    const auto failed = [](const ActivationOutcome& outcome) {
        return !outcome.success && !outcome.changed;
    };
    if (std::none_of(outcomes.begin(), outcomes.end(), failed)) {
        return;
    }
    std::set<ContainerId> staying;
    for (const ActiveContainer& container : activation.active(warn)) {
        staying.insert(container.id);
    }
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        if (failed(outcomes[i]) && before.contains(ids[i]) && !staying.contains(ids[i])) {
            outcomes[i].problems.clear();
        }
    }
}

// What ends by itself is ended by the server.
void needServer(Tally& tally) {
    if (!findServer() && !startServer()) {
        tally.remark("no server is running: what is due is taken back once one is, see "
                     "\"glyphora serve\"");
    }
}

bool isAnyPostponed(std::span<const ActivationOutcome> outcomes) {
    return std::any_of(outcomes.begin(), outcomes.end(),
                       [](const ActivationOutcome& outcome) { return outcome.postponed; });
}

// As many as are done in about half a second: in between it can be cancelled. Each batch has a
// price, which is higher for taking away: all processes are looked at.
constexpr std::size_t activatedAtOnce = 500;
constexpr std::size_t deactivatedAtOnce = 2500;

/// The outcomes of the first ones; of all, unless it is cancelled or fails in the midst, which is
/// told.
template <class Item, class Deed>
std::vector<ActivationOutcome> doInBatches(const std::vector<Item>& items, std::size_t batch,
                                           Work work, Tally& tally, const Deed& deed) {
    std::vector<ActivationOutcome> outcomes;
    try {
        while (outcomes.size() < items.size()) {
            checkCancelled();
            tellProgress(work, outcomes.size(), items.size());
            const auto rest = std::span(items).subspan(outcomes.size());
            auto done = deed(rest.first(std::min(batch, rest.size())));
            std::move(done.begin(), done.end(), std::back_inserter(outcomes));
        }
    } catch (const Cancelled&) {
        tally.fail("cancelled: " + std::to_string(outcomes.size()) + " of " +
                   counted(items.size(), "container") + " were dealt with");
    } catch (const Error& error) {
        tally.fail(error.what());
    }
    return outcomes;
}

// Lets others know, now and in a second.
void tellOthers(const Activation& activation, std::span<const ContainerId> ids,
                std::span<const ActivationOutcome> outcomes) {
    if (activation.isUnsettled()) { // also by what was put in place and taken away again
        settleLater(ids);
    }
    if (std::any_of(outcomes.begin(), outcomes.end(),
                    [](const ActivationOutcome& outcome) { return outcome.changed; })) {
        postLibraryChanged();
        tellDisplay();
    }
}

} // namespace

int activateCommand(const Places& places, const std::vector<std::string>& names,
                    const Reason& reason, bool json) {
    const CancelBySignals cancel;
    Tally tally(json, "activated");
    SessionCopies copies(places);
    const bool isForSession = reason.kind == Reason::Kind::UntilLogout;
    const std::vector<std::string> meant =
        containersOfFiles(places, names, isForSession ? &copies : nullptr, tally);
    Activation activation(places);
    ContainerNames finder(
        places, activation, [&] { return openScanned(places); }, tally);
    std::vector<ContainerFonts> fonts;
    std::vector<ContainerId> ids;
    std::vector<std::string> folders;
    std::vector<Told> told;
    for (const Container& container : finder.find(meant)) {
        checkCancelled();
        const bool active = activation.isActive(container);
        if (container.away && !active) {
            tally.fail(called(container) + ": " + translated("its folder is away"));
            continue;
        }
        if (container.shownByDesktop && !active) {
            tally.remark(called(container) + ": " +
                         translated("the desktop shows it without being activated"));
            continue;
        }
        fonts.push_back(wholeOf(container, {reason}, finder.library(), activation,
                                [&]() -> const DesktopFaces& { return activation.desktopNow(); }));
        ids.push_back(container.id);
        folders.push_back(container.folder);
        told.push_back({"activated " + called(container), toJson(container)});
    }
    const auto outcomes = doInBatches(fonts, activatedAtOnce, Work::Activate, tally,
                                      [&](auto batch) { return activation.activate(batch); });
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (activation.hasSet(ids[i])) {
            copies.keep(folders[i]);
        }
    }
    tell(places, outcomes, told, tally);
    tellOthers(activation, ids, outcomes);
    if ((reason != Reason::byHand() && !tally.isEmpty()) || isAnyPostponed(outcomes)) {
        needServer(tally);
    }
    return tally.finish();
}

int deactivateCommand(const Places& places, const std::vector<std::string>& names, bool all,
                      bool json) {
    const CancelBySignals cancel;
    Tally tally(json, "deactivated");
    Activation activation(places);
    ContainerNames finder(
        places, activation, [&] { return openScanned(places); }, tally);
    std::map<ContainerId, std::string> active;
    for (ActiveContainer& container : activation.active(warn)) {
        active.emplace(container.id, std::move(container.name));
    }
    std::vector<ContainerId> ids;
    if (all) {
        ids = activation.sets();
        std::erase_if(ids, [&](ContainerId id) { return !activation.hasSet(id); });
    } else {
        ids = finder.findActive(names);
    }
    std::vector<Told> told;
    told.reserve(ids.size());
    for (const ContainerId id : ids) {
        const auto known = active.find(id);
        const std::string name = known == active.end() ? std::string() : known->second;
        told.push_back({"deactivated " + name + " (container " + toText(id) + ")",
                        {{"id", static_cast<std::int32_t>(id)}, {"name", name}}});
    }
    auto outcomes = doInBatches(ids, deactivatedAtOnce, Work::Deactivate, tally,
                                [&](auto batch) { return activation.deactivate(batch); });
    excuseThoseThatLeft(activation, active, ids, outcomes);
    tell(places, outcomes, told, tally);
    tellOthers(activation, ids, outcomes);
    if (isAnyPostponed(outcomes)) {
        needServer(tally);
    }
    return tally.finish(ids.empty() ? "nothing is active" : nullptr);
}

int statusCommand(const Places& places, bool json) {
    const auto library = openScanned(places);
    const Activation activation(places);
    const auto server = findServer();
    const auto folders = readFolders(places);
    const LibraryCounts counts = library->counts("/");
    const auto active = activation.active(warn);
    if (json) {
        Json document = {{"server", server ? Json(*server) : Json(nullptr)},
                         {"folders", folders.size()}};
        document.update(toJson(counts));
        document["active"] = Json::array();
        for (const ActiveContainer& container : active) {
            const auto [away, gone] = originOf(*library, container.id);
            document["active"].push_back({{"id", static_cast<std::int32_t>(container.id)},
                                          {"name", container.name},
                                          {"files", container.files},
                                          {"reasons", reasonTexts(container)},
                                          {"away", away},
                                          {"gone", gone}});
        }
        printJson(document);
        return exitSuccess;
    }
    std::printf("server: %s\n",
                server ? ("running, process " + std::to_string(*server)).c_str() : "not running");
    std::printf("library: %s, %s\n", counted(folders.size(), "folder").c_str(),
                textOf(counts).c_str());
    std::printf("active: %s\n", counted(active.size(), "container").c_str());
    for (const ActiveContainer& container : active) {
        std::string line = container.name + ", " + counted(container.files, "file");
        for (const std::string& reason : reasonTexts(container)) {
            line += ", " + reason;
        }
        const auto [away, gone] = originOf(*library, container.id);
        line += away ? " (away)" : gone ? " (gone from the library)" : "";
        std::printf("%6s  %s\n", toText(container.id).c_str(), printable(line).c_str());
    }
    return exitSuccess;
}

int historyCommand(const Places& places, bool all, bool json) {
    const auto entries = readHistory(places, all);
    if (!json) {
        if (entries.empty()) {
            warn("nothing was done yet");
        }
        for (const PastDeed& entry : entries) {
            printLine(lineText(entry));
        }
        return exitSuccess;
    }
    Json document = Json::array();
    for (const auto& [seconds, deed, text] : entries) {
        document.push_back({{"time", isoTime(seconds)}, {"deed", deed}, {"text", text}});
    }
    printJson(document);
    return exitSuccess;
}

} // namespace manager
