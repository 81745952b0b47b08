// SPDX-License-Identifier: MIT
// The elements of a font, from what was asked and what was found.
#include "manager/exchange/replyfont.h"

#include <algorithm>
#include <optional>
#include <string>

namespace manager {

void writeNames(ReplyText& reply, const CommandFont& asked, const std::vector<Candidate>& found) {
    if (asked.syncId) {
        reply.element("syncID", *asked.syncId);
    }
    // Of a font that nobody holds the type is not known, unless the command told it.
    const std::optional<FontType> type =
        found.empty() ? asked.type : std::optional(found.front().face.type);
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

void writeFontRequestFont(ReplyText& reply, const CommandFont& asked,
                          const std::vector<Candidate>& found, const ActivationBatch& batch) {
    const auto isActive = [&](const Candidate& candidate) {
        return batch.holds(candidate.container.id)
                   ? batch.succeeded(candidate.container.id, candidate.face.fileName)
                   : candidate.active;
    };
    const auto active = std::find_if(found.begin(), found.end(), isActive);
    const auto matching = std::find_if(found.begin(), found.end(),
                                       [](const Candidate& one) { return one.typeMatches; });
    const bool matchingActive = std::any_of(found.begin(), found.end(), [&](const Candidate& one) {
        return one.typeMatches && isActive(one);
    });
    reply.beginFont();
    writeNames(reply, asked, found);
    reply.flag("isActive", active != found.end());
    reply.element("typeMatchingCount",
                  std::count_if(found.begin(), found.end(),
                                [](const Candidate& one) { return one.typeMatches; }));
    reply.flag("isTypeMatchingActive", matchingActive);
    if (matching != found.end()) {
        reply.element("typeMatchingContainerID", toText(matching->container.id));
    }
    if (!found.empty()) {
        reply.element("containerID", toText(found.front().container.id));
    }
    if (found.size() == 1) {
        reply.flag("activationSuccessfull", active != found.end());
    }
    for (const Candidate& candidate : found) {
        reply.fontInfo(toText(candidate.container.id), CandidateFinder::describe(candidate));
    }
    reply.endFont();
}

} // namespace manager
