// SPDX-License-Identifier: MIT
// Activation by hand, through the same folders on disk that the server uses.
#include "manager/cli/activationops.h"

#include "manager/activation/activation.h"
#include "manager/activation/successors.h"
#include "manager/cli/changeplan.h"
#include "manager/cli/containernames.h"
#include "manager/cli/fontfiles.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/report.h"
#include "manager/cli/setchanges.h"
#include "manager/cli/switching.h"
#include "manager/library/places.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <map>
#include <set>
#include <span>
#include <utility>

namespace manager {

namespace {

using Json = nlohmann::ordered_json;

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

std::string partText(const std::optional<std::set<std::string>>& files) {
    return files ? commaList(*files) + " of " : "";
}

/// Whether the library has any of the single files that are wanted; those that it lacks are told.
bool hasAny(const ContainerFonts& wanted, const Container& container, Tally& tally) {
    if (!wanted.only) {
        return true;
    }
    std::set<std::string> missing = *wanted.only;
    for (const LibraryFile& file : wanted.files) {
        missing.erase(nameOf(file.path));
    }
    for (const std::string& name : missing) {
        tally.fail(joinPath(container.folder, name) + ": " + translated("not in the library"));
    }
    return missing.size() < wanted.only->size();
}

/// Takes single files of sets away, and gives what has become of them.
Json takeFiles(const Places& places, ContainerNames& finder, Activation& activation,
               std::vector<ContainerId>& ids, Tally& tally) {
    ChangePlan plan(finder.library(), activation, tally);
    std::erase_if(ids, [&](ContainerId id) {
        const auto only = finder.onlyFiles(id);
        const auto container = only ? finder.library().container(id) : std::nullopt;
        const auto set = container ? activation.setOf(*container) : std::nullopt;
        if (set) {
            SetChange change;
            for (const auto& file : set->files) {
                if (!file.leaving && only->contains(file.name)) {
                    change.removedFiles.push_back(file.name);
                }
            }
            if (!change.isEmpty()) {
                plan.add(*container, {id, change});
            }
        }
        return container.has_value();
    });
    return plan.carryOut(places);
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
        ContainerFonts wanted =
            wholeOf(container, {reason}, finder.library(), activation,
                    [&]() -> const DesktopFaces& { return activation.desktopNow(); });
        wanted.only = finder.onlyFiles(container.id);
        if (!hasAny(wanted, container, tally)) {
            continue;
        }
        told.push_back(
            {"activated " + partText(wanted.only) + called(container), toJson(container)});
        fonts.push_back(std::move(wanted));
        ids.push_back(container.id);
        folders.push_back(container.folder);
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
    Json changes =
        finder.isAnyPartial() ? takeFiles(places, finder, activation, ids, tally) : Json::array();
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
    for (Json& change : changesOf(ids, outcomes)) {
        changes.push_back(std::move(change));
    }
    tally.set("changes", std::move(changes));
    tellOthers(activation, ids, outcomes);
    if (isAnyPostponed(outcomes)) {
        needServer(tally);
    }
    return tally.finish(ids.empty() ? "nothing is active" : nullptr);
}

} // namespace manager
