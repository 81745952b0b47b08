// SPDX-License-Identifier: MIT
// Activation by hand, through the same folders on disk that the server uses.
#include "manager/cli/activationops.h"

#include "manager/activation/activation.h"
#include "manager/activation/successors.h"
#include "manager/cli/containernames.h"
#include "manager/cli/fontfiles.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/report.h"
#include "manager/cli/setchanges.h"
#include "manager/cli/switching.h"

#include <algorithm>
#include <map>
#include <set>
#include <span>
#include <utility>

namespace manager {

namespace {

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
        if (!activation.isActive(container) && !canBecomeActive(container, tally)) {
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
    tally.set("changes", changesOf(ids, outcomes));
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
    tally.set("changes", changesOf(ids, outcomes));
    tellOthers(activation, ids, outcomes);
    if (isAnyPostponed(outcomes)) {
        needServer(tally);
    }
    return tally.finish(ids.empty() ? "nothing is active" : nullptr);
}

} // namespace manager
