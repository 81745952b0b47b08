// SPDX-License-Identifier: MIT
#include "manager/exchange/findings.h"

#include <algorithm>
#include <utility>

namespace manager {

Found findOne(CandidateFinder& finder, const CommandFont& font) {
    Finding held = finder.find(font);
    auto shown = finder.shown(font, held.exact);
    return {std::move(held), std::move(shown)};
}

std::vector<Found> findAll(Library& library, CandidateFinder& finder, StandIns& standIns,
                           std::span<const CommandFont> fonts,
                           const std::function<bool()>& isLate) {
    std::vector<Found> found;
    found.reserve(fonts.size());
    std::vector<Absent> absent;
    for (const CommandFont& font : fonts) {
        if (isLate && isLate()) {
            break;
        }
        auto& [held, shown] = found.emplace_back(findOne(finder, font));
        if (held.exact.empty() && shown.empty()) {
            absent.push_back({font, held});
        }
    }
    standIns.add(library, finder, absent);
    return found;
}

void preferNamed(std::vector<Candidate>& found, const CommandFont& asked) {
    const auto id = toContainerId(asked.containerId.value_or(""));
    const auto named = std::find_if(found.begin(), found.end(), [&](const Candidate& candidate) {
        return id == candidate.container.id;
    });
    if (named != found.end()) {
        std::rotate(found.begin(), named, named + 1);
    }
}

} // namespace manager
