// SPDX-License-Identifier: MIT
// What a command asks for, and what is known of it.
#include "manager/exchange/activationbatch.h"

#include "manager/activation/successors.h"
#include "manager/exchange/exchange.h"

#include <utility>

namespace manager {

const ActivationOutcome* ActivationRun::want(const Container& container, Library& library,
                                             const Activation& activation) {
    const auto [position, isNew] =
        byId_.try_emplace(static_cast<std::int32_t>(container.id), nullptr);
    if (isNew) {
        wanted_.push_back(wholeOf(container, reasons_, library, activation,
                                  [&]() -> const DesktopFaces& { return activation.desktop(); }));
        position->second = &all_.emplace_back(Wanted{container, false, {}});
    }
    return position->second->known ? &position->second->outcome : nullptr;
}

void ActivationRun::use(const Container& container, Library& library) {
    if (!isWanted(container.id) && inUse_.insert(container.id).second) {
        used_.push_back({container.id, container.name, library.files(container.id), reasons_});
        used_.back().reasonsOnly = true; // files are for one that leaves meanwhile
    }
}

void ActivationRun::use(ContainerId set) {
    if (!isWanted(set) && inUse_.insert(set).second) {
        used_.push_back({set, {}, {}, reasons_, true});
    }
}

void ActivationRun::giveUpWanted() {
    for (const ContainerFonts& container : std::exchange(wanted_, {})) {
        byId_.erase(static_cast<std::int32_t>(container.id));
        all_.pop_back(); // the last ones, in this order
    }
}

void ActivationRun::tell(ContainerId id, ActivationOutcome outcome) {
    const auto position = byId_.find(static_cast<std::int32_t>(id));
    if (position != byId_.end()) {
        position->second->outcome = std::move(outcome);
        position->second->known = true;
        new_.push_back(position->second);
    }
}

void ActivationRun::report(Answer& answer) const {
    if (!remark_.empty()) {
        answer.problems.push_back(remark_);
    }
    for (const Wanted& wanted : all_) {
        report(wanted, answer);
    }
}

void ActivationRun::reportNew(Answer& answer) {
    for (const Wanted* wanted : std::exchange(new_, {})) {
        report(*wanted, answer);
    }
}

void ActivationRun::report(const Wanted& wanted, Answer& answer) {
    const auto& [container, known, outcome] = wanted;
    answer.changed = answer.changed || outcome.changed;
    auto& told = outcome.success ? answer.undecided : answer.problems;
    told.insert(told.end(), outcome.problems.begin(), outcome.problems.end());
    if (outcome.changed) {
        answer.done.push_back("activated " + container.name + " (container " +
                              toText(container.id) + ", " + container.path() + ")");
    }
}

void ActivationBatch::add(const Container& container) {
    if (positions_.emplace(static_cast<std::int32_t>(container.id), containers_.size()).second) {
        containers_.push_back(container);
    }
}

void ActivationBatch::run(Library& library, const Activation& activation, ActivationRun& run) {
    for (const Container& container : containers_) {
        outcomes_.push_back(run.want(container, library, activation));
    }
}

bool ActivationBatch::succeeded(ContainerId id, const std::string& fileName) const {
    const ActivationOutcome* outcome = outcomes_[positions_.at(static_cast<std::int32_t>(id))];
    if (outcome == nullptr) {
        return false;
    }
    const bool partly = !outcome->lost.empty() && !fileName.empty();
    return outcome->success || (partly && !outcome->lost.contains(fileName));
}

bool ActivationBatch::failed(ContainerId id, const std::string& fileName) const {
    return outcomes_[positions_.at(static_cast<std::int32_t>(id))] != nullptr &&
           !succeeded(id, fileName);
}

} // namespace manager
