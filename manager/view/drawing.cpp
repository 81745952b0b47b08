// SPDX-License-Identifier: MIT
#include "manager/view/drawing.h"

#include "manager/exchange/findings.h"

namespace manager {

namespace {

std::string nameOf(const CommandFont& font) {
    const std::string family = font.familyName.value_or("");
    if (family.empty()) {
        return font.postScriptName.value_or("");
    }
    const std::string style = font.styleName.value_or("");
    return style.empty() ? family : family + " " + style;
}

} // namespace

std::vector<AskedFont> readDrawing(Library& library, Activation& activation,
                                   std::span<const CommandFont> fonts) {
    activation.refreshDesktop();
    const Reading together = library.reading();
    CandidateFinder finder(library, activation);
    StandIns standIns;
    std::vector<Found> found = findAll(library, finder, standIns, fonts);
    std::vector<AskedFont> drawing;
    for (std::size_t i = 0; i < found.size(); ++i) {
        AskedFont& asked = drawing.emplace_back();
        asked.name = nameOf(fonts[i]);
        asked.isShown = !found[i].shown.empty();
        preferNamed(found[i].held.exact, fonts[i]);
        for (const Candidate& candidate : found[i].held.exact) {
            asked.choices.push_back({candidate.face.id, candidate.container.id, true, {}});
        }
        for (const Candidate& candidate : found[i].held.near) {
            asked.choices.push_back(
                {candidate.face.id, candidate.container.id, false, candidate.reason});
        }
    }
    return drawing;
}

} // namespace manager
