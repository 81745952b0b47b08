// SPDX-License-Identifier: MIT
// Activates the containers of a command at one go.
#include "manager/exchange/activationbatch.h"

namespace manager {

void ActivationBatch::add(const Container& container) {
    if (positions_.emplace(static_cast<std::int32_t>(container.id), containers_.size()).second) {
        containers_.push_back(container);
    }
}

void ActivationBatch::run(Library& library, Activation& activation, Answer& answer) {
    std::vector<ContainerFonts> fonts;
    fonts.reserve(containers_.size());
    for (const Container& container : containers_) {
        fonts.push_back({container.id, container.name, library.files(container.id)});
    }
    outcomes_ = activation.activate(fonts);
    for (std::size_t i = 0; i < outcomes_.size(); ++i) {
        answer.changed = answer.changed || outcomes_[i].changed;
        const std::vector<std::string>& problems = outcomes_[i].problems;
        answer.problems.insert(answer.problems.end(), problems.begin(), problems.end());
        if (outcomes_[i].changed) {
            answer.done.push_back("activated " + containers_[i].name + " (container " +
                                  toText(containers_[i].id) + ", " + containers_[i].path() + ")");
        }
    }
}

bool ActivationBatch::succeeded(ContainerId id, const std::string& fileName) const {
    const ActivationOutcome& outcome = outcomes_[positions_.at(static_cast<std::int32_t>(id))];
    const bool partly = !outcome.lost.empty() && !fileName.empty();
    return outcome.success || (partly && !outcome.lost.contains(fileName));
}

} // namespace manager
