// SPDX-License-Identifier: MIT
#include "manager/cli/changeplan.h"

#include "manager/activation/successors.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace manager {

namespace {

template <class Value>
bool isAmong(const std::vector<Value>& values, const Value& value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

// A program that has it open keeps it anyway.
std::vector<Reason> reasonsToAdd(const std::vector<Reason>& reasons) {
    std::vector<Reason> added = reasons;
    std::erase_if(added, [](const Reason& reason) {
        return !stands(reason) || reason.kind == Reason::Kind::InUse;
    });
    return added;
}

bool hasOtherReasons(const SetRecord& set, const ContainerFonts& fonts) {
    return std::any_of(set.reasons.begin(), set.reasons.end(), [&](const Reason& reason) {
        return stands(reason) && !isAmong(fonts.ended, reason);
    });
}

/// `fonts`: with `only`.
bool isNothingLeft(const SetRecord& set, const ContainerFonts& fonts) {
    const bool hasReasons = !fonts.reasons.empty() || hasOtherReasons(set, fonts);
    const bool hasFiles = !fonts.only->empty() ||
                          std::any_of(set.files.begin(), set.files.end(), [&](const auto& file) {
                              return !file.leaving && !fonts.without.contains(file.name);
                          });
    return !hasReasons || !hasFiles;
}

std::string deedText(const Container& container, const SetChange& change,
                     const ContainerFonts& fonts) {
    if (fonts.reasonsOnly) {
        return "kept active " + called(container);
    }
    const auto& names = change.addedFiles.empty() ? change.removedFiles : change.addedFiles;
    return (fonts.without.empty() ? "activated " : "deactivated ") + commaList(names) +
           (names.empty() ? "" : " of ") + called(container);
}

} // namespace

void ChangePlan::leave(const Container& container) {
    leaving_.push_back(container.id);
    toldOfLeaving_.push_back({"deactivated " + called(container), toJson(container)});
}

ContainerFonts ChangePlan::fontsOf(const Container& container, const WantedChange& wanted) {
    ContainerFonts fonts =
        wholeOf(container, {Reason::byHand()}, library_, activation_,
                [&]() -> const DesktopFaces& { return activation_.desktopNow(); });
    if (!wanted.active) {
        const SetChange& change = wanted.change;
        fonts.only = {change.addedFiles.begin(), change.addedFiles.end()};
        fonts.reasons = reasonsToAdd(change.reasons.added);
        fonts.ended = change.reasons.removed;
        fonts.without = {change.removedFiles.begin(), change.removedFiles.end()};
    }
    return fonts;
}

void ChangePlan::add(const Container& container, const WantedChange& wanted) {
    const auto set = activation_.setOf(container);
    if (wanted.active == false) {
        if (set) {
            leave(container);
        }
        return;
    }
    ContainerFonts fonts = fontsOf(container, wanted);
    if (!set && fonts.reasons.empty()) {
        if (!wanted.change.reasons.added.empty()) {
            tally_.remark(called(container) + ": " +
                          translated("what it was active for has ended"));
        }
        return;
    }
    if (!set && !canBecomeActive(container, tally_)) {
        return;
    }
    if (set && !wanted.active) {
        if (!fonts.ended.empty() && hasOtherReasons(*set, fonts)) {
            fonts.without.clear(); // somebody else needs them
        }
        if (isNothingLeft(*set, fonts)) {
            leave(container);
            return;
        }
        fonts.reasonsOnly = fonts.only->empty() && fonts.without.empty();
    }
    endsByItself_ = endsByItself_ ||
                    std::any_of(fonts.reasons.begin(), fonts.reasons.end(),
                                [](const Reason& reason) { return reason != Reason::byHand(); });
    toldOfStaying_.push_back({deedText(container, wanted.change, fonts), toJson(container)});
    staying_.push_back(std::move(fonts));
}

nlohmann::ordered_json ChangePlan::carryOut(const Places& places) {
    std::vector<ContainerId> ids = leaving_;
    std::transform(staying_.begin(), staying_.end(), std::back_inserter(ids),
                   [](const ContainerFonts& fonts) { return fonts.id; });
    auto outcomes = doInBatches(leaving_, deactivatedAtOnce, Work::Deactivate, tally_,
                                [&](auto batch) { return activation_.deactivate(batch); });
    tell(places, outcomes, toldOfLeaving_, tally_);
    if (outcomes.size() == leaving_.size()) { // else it was cancelled
        auto stayed = doInBatches(staying_, activatedAtOnce, Work::Activate, tally_,
                                  [&](auto batch) { return activation_.activate(batch); });
        tell(places, stayed, toldOfStaying_, tally_);
        std::move(stayed.begin(), stayed.end(), std::back_inserter(outcomes));
    }
    tellOthers(activation_, ids, outcomes);
    if (endsByItself_ || isAnyPostponed(outcomes)) {
        needServer(tally_);
    }
    return changesOf(ids, outcomes);
}

} // namespace manager
