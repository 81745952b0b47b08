// SPDX-License-Identifier: MIT
// The elements of a font, from what was asked and what was found.
#include "manager/exchange/replyfont.h"

#include <algorithm>
#include <optional>
#include <string>

namespace manager {

void writeNames(ReplyText& reply, const CommandFont& asked, const Finding& held) {
    const std::vector<Candidate>& found = held.exact;
    if (asked.syncId) {
        reply.element("syncID", *asked.syncId);
    }
    // Of a font that nobody holds the type is not known, unless the command told it. While it is
    // open which is meant, no type is told that not all have: the next request would ask for it.
    std::optional<faces::Technology> type = asked.type;
    if (!found.empty() &&
        (!held.isOpen(asked) || std::all_of(found.begin(), found.end(), [&](const Candidate& one) {
            return one.face.type == found.front().face.type;
        }))) {
        const Candidate* const decided = held.decided(asked);
        type = (decided != nullptr ? *decided : found.front()).face.type;
    }
    if (type) {
        reply.element("type", typeKeyword(*type));
    }
    if (found.empty()) {
        reply.element("psName", asked.postScriptName.value_or(""));
        reply.element("styleName", asked.styleName.value_or(""));
        reply.element("familyName", asked.familyName.value_or(""));
    } else {
        const FaceMatch& face = found.front().face;
        // The name in the request, by which the plug-in finds the font in the document, even when
        // the library has another.
        const std::string askedName = asked.postScriptName.value_or("");
        reply.element("psName", askedName.empty() ? face.postScriptName : askedName);
        reply.element("styleName", face.styleName);
        reply.element("familyName", face.familyName);
    }
    reply.element("count", found.size());
}

void writeFontRequestFont(ReplyText& reply, const CommandFont& asked, const Found& found,
                          const ActivationBatch& batch) {
    const auto& [held, shown] = found;
    const std::vector<Candidate>& candidates = held.exact;
    const auto isActive = [&](const Candidate& candidate) {
        return batch.holds(candidate.container.id)
                   ? batch.succeeded(candidate.container.id, candidate.face.fileName)
                   : candidate.active;
    };
    const bool active =
        !shown.empty() || std::any_of(candidates.begin(), candidates.end(), isActive);
    const auto isMatching = [](const Candidate& one) { return one.typeMatches; };
    const auto matching = std::find_if(candidates.begin(), candidates.end(), isMatching);
    const bool matchingActive = std::any_of(shown.begin(), shown.end(),
                                            [&](const DesktopFace& face) {
                                                return !asked.type || *asked.type == face.type;
                                            }) ||
                                std::any_of(matching, candidates.end(), [&](const Candidate& one) {
                                    return one.typeMatches && isActive(one);
                                });
    reply.beginFont();
    writeNames(reply, asked, held);
    reply.flag("isActive", active);
    reply.element("typeMatchingCount",
                  std::count_if(candidates.begin(), candidates.end(), isMatching));
    reply.flag("isTypeMatchingActive", matchingActive);
    if (matching != candidates.end()) {
        reply.element("typeMatchingContainerID", toText(matching->container.id));
    }
    if (!candidates.empty()) {
        reply.element("containerID", toText(candidates.front().container.id));
    }
    if (held.decided(asked) != nullptr) {
        reply.flag("activationSuccessfull", active);
    }
    for (const std::vector<Candidate>& listed : {candidates, held.near}) {
        const std::vector<std::string> lines = CandidateFinder::describe(listed);
        for (std::size_t i = 0; i < listed.size(); ++i) {
            reply.fontInfo(toText(listed[i].container.id), lines[i]);
        }
    }
    reply.endFont();
}

} // namespace manager
