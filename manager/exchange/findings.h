// SPDX-License-Identifier: MIT
// What there is for the fonts of a command.
#pragma once

#include "manager/exchange/candidates.h"
#include "manager/exchange/commandtext.h"
#include "manager/exchange/standins.h"

#include <functional>
#include <span>
#include <vector>

namespace manager {

/// What was found of a font asked for: in the library, and on the desktop beside it.
struct Found {
    Finding held;
    std::vector<DesktopFace> shown;
};

/// Throws Error when the index cannot be read.
[[nodiscard]] Found findOne(CandidateFinder& finder, const CommandFont& font);

/// Of each font, in order; of those that nobody has what may stand in for them, too. Ends before
/// the first font at which `isLate` is true. Throws Error when the index cannot be read.
[[nodiscard]] std::vector<Found> findAll(Library& library, CandidateFinder& finder,
                                         StandIns& standIns, std::span<const CommandFont> fonts,
                                         const std::function<bool()>& isLate = {});

/// Puts the candidate of the container that the command names first.
void preferNamed(std::vector<Candidate>& found, const CommandFont& asked);

} // namespace manager
