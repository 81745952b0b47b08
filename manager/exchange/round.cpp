// SPDX-License-Identifier: MIT
#include "manager/exchange/round.h"

namespace manager {

bool Round::isShown(const Found& found) {
    return !found.shown.empty() || (!found.held.exact.empty() && found.held.exact.front().active);
}

void Round::keepShown(const Found& found) {
    for (const DesktopFace& face : found.shown) {
        if (const auto set = activation.setWith(face.file)) {
            run.use(*set);
        }
    }
    if (found.shown.empty() && finder.setOf(found.held.exact.front().container)) {
        run.use(found.held.exact.front().container, library);
    }
}

bool Round::passOver() {
    const bool isBehind = late != 0 || isLate();
    late += isBehind ? 1 : 0;
    return isBehind;
}

std::string Round::fileIn(ContainerId id, const CommandFont& font,
                          const std::vector<Candidate>& candidates) const {
    for (const Candidate& candidate : candidates) {
        if (candidate.container.id == id) {
            return candidate.face.fileName;
        }
    }
    if (!candidates.empty()) { // one that holds the same file as another is not among them
        for (const FaceDetails& face : library.faces(id)) {
            if (face.match.postScriptName == font.postScriptName) {
                return face.match.fileName;
            }
        }
    }
    return {};
}

} // namespace manager
