// SPDX-License-Identifier: MIT
// Taking back what was switched.
#include "manager/activation/successors.h"
#include "manager/cli/activationops.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/reasonchanges.h"
#include "manager/cli/switching.h"
#include "manager/view/texts.h"

#include <utility>

namespace manager {

namespace {

/// What changes of reasons come to.
struct Restoration {
    std::vector<ContainerId> leaving;
    std::vector<Told> toldOfLeaving;
    std::vector<ContainerFonts> staying; ///< or coming back
    std::vector<Told> toldOfStaying;
    bool endsByItself = false; ///< what some of them stay for
};

void planChange(const Container& container, const ReasonChange& change, Library& library,
                Activation& activation, Tally& tally, Restoration& plan) {
    std::vector<Reason> added = change.added;
    // A program that has it open keeps it anyway.
    std::erase_if(added, [](const Reason& reason) {
        return !stands(reason) || reason.kind == Reason::Kind::InUse;
    });
    const auto set = activation.setOf(container);
    if (!set && added.empty() && !change.added.empty()) {
        tally.remark(called(container) + ": " + translated("what it was active for has ended"));
    }
    if (!set && (added.empty() || !canBecomeActive(container, tally))) {
        return;
    }
    const auto kept = set ? changeOf(set->reasons, change.removed).removed : std::vector<Reason>();
    if (added.empty() && kept.empty()) {
        plan.leaving.push_back(container.id);
        plan.toldOfLeaving.push_back({"deactivated " + called(container), toJson(container)});
        return;
    }
    plan.endsByItself =
        plan.endsByItself || std::any_of(added.begin(), added.end(), [](const Reason& reason) {
            return reason != Reason::byHand();
        });
    plan.staying.push_back(
        wholeOf(container, std::move(added), library, activation,
                [&]() -> const DesktopFaces& { return activation.desktopNow(); }));
    plan.staying.back().ended = change.removed;
    plan.staying.back().reasonsOnly = set.has_value();
    plan.toldOfStaying.push_back(
        {(set ? "kept active " : "activated ") + called(container), toJson(container)});
}

std::vector<ContainerId> idsOf(std::span<const ContainerFonts> containers) {
    std::vector<ContainerId> ids;
    std::transform(containers.begin(), containers.end(), std::back_inserter(ids),
                   [](const ContainerFonts& fonts) { return fonts.id; });
    return ids;
}

} // namespace

int restoreCommand(const Places& places, bool json) {
    const std::vector<ContainerChange> changes = readChanges(readInput());
    const CancelBySignals cancel;
    Tally tally(json, "restored");
    Activation activation(places);
    const auto library = openScanned(places);
    Restoration plan;
    for (const ContainerChange& change : changes) {
        checkCancelled();
        if (const auto container = library->container(change.id)) {
            planChange(*container, change.reasons, *library, activation, tally, plan);
        } else {
            tally.fail("container " + toText(change.id) + ": " + translated("not in the library"));
        }
    }
    auto outcomes = doInBatches(plan.leaving, deactivatedAtOnce, Work::Deactivate, tally,
                                [&](auto batch) { return activation.deactivate(batch); });
    tell(places, outcomes, plan.toldOfLeaving, tally);
    tellOthers(activation, plan.leaving, outcomes);
    const bool isLeavingLater = isAnyPostponed(outcomes);
    outcomes = doInBatches(plan.staying, activatedAtOnce, Work::Activate, tally,
                           [&](auto batch) { return activation.activate(batch); });
    tell(places, outcomes, plan.toldOfStaying, tally);
    tellOthers(activation, idsOf(plan.staying), outcomes);
    if (isLeavingLater || plan.endsByItself) {
        needServer(tally);
    }
    return tally.finish();
}

} // namespace manager
