// SPDX-License-Identifier: MIT
// Changes of single sets, made together.
#pragma once

#include "manager/activation/activation.h"
#include "manager/cli/setchanges.h"
#include "manager/cli/switching.h"
#include "manager/library/library.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace manager {

/// [one-thread] What changes of sets come to. All that is given is to outlive it.
class ChangePlan {
public:
    ChangePlan(Library& library, Activation& activation, Tally& tally)
        : library_(library), activation_(activation), tally_(tally) {}

    /// Why it cannot be so is told.
    void add(const Container& container, const WantedChange& wanted);
    /// What has become of which set, as changesOf() has it.
    nlohmann::ordered_json carryOut(const Places& places);

private:
    void leave(const Container& container);
    [[nodiscard]] ContainerFonts fontsOf(const Container& container, const WantedChange& wanted);

    Library& library_;
    Activation& activation_;
    Tally& tally_;
    std::vector<ContainerId> leaving_;
    std::vector<Told> toldOfLeaving_;
    std::vector<ContainerFonts> staying_; ///< or coming
    std::vector<Told> toldOfStaying_;
    bool endsByItself_ = false; ///< what some of them stay for
};

} // namespace manager
