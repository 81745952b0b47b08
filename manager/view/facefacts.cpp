// SPDX-License-Identifier: MIT
#include "manager/view/facefacts.h"

#include "manager/view/texts.h"
#include "system/cuttext.h"

#include <algorithm>
#include <utility>

namespace manager {

namespace {

constexpr std::size_t longest = 160; // bytes of a text, about two lines of a window

std::string shortLine(std::string words) {
    if (words.size() > longest) {
        words = std::string(sys::cutText(words, longest)) + "…";
    }
    std::replace_if(
        words.begin(), words.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; },
        ' ');
    return words;
}

} // namespace

std::string nameForPeople(const faces::Face& face) {
    if (face.names.empty() || face.names.front().family.empty()) {
        return face.postScriptName;
    }
    const faces::Name& name = face.names.front();
    return name.style.empty() ? name.family : name.family + " " + name.style;
}

std::string embeddingWords(std::optional<std::uint16_t> flags) {
    if (!flags) {
        return translated("the font does not tell");
    }
    // The least restrictive of several bits holds.
    std::string words =
        (*flags & 8U) != 0   ? translated("allowed, also in documents that are edited")
        : (*flags & 4U) != 0 ? translated("allowed to view and print documents only")
        : (*flags & 2U) != 0 ? translated("not without permission of the owner")
                             : translated("allowed, and it may be installed from there");
    if ((*flags & 0x100U) != 0) {
        words += translated("; only as a whole");
    }
    if ((*flags & 0x200U) != 0) {
        words += translated("; only its bitmaps");
    }
    return words;
}

std::vector<FaceFact> factsOf(const faces::Face& face) {
    std::vector<FaceFact> facts;
    const auto add = [&](std::string title, const std::string& words) {
        if (!words.empty()) {
            facts.push_back({std::move(title), words});
        }
    };
    const bool isLicensed = !face.licence.empty() || !face.licenceLink.empty();
    add(translated("PostScript name:"), face.postScriptName);
    add(translated("Version:"), face.version);
    add(translated("Foundry:"), face.foundry);
    add(translated("Copyright:"), face.copyright);
    add(translated("Licence:"), isLicensed ? face.licence : translated("the file names none"));
    add(translated("Licence at:"), face.licenceLink);
    add(translated("Embedding:"), embeddingWords(face.embedding));
    return facts;
}

std::vector<std::string> shortFactsOf(const faces::Face& face) {
    std::vector<std::string> lines;
    for (const FaceFact& fact : factsOf(face)) {
        lines.push_back(fact.title + " " + shortLine(fact.words));
    }
    return lines;
}

} // namespace manager
