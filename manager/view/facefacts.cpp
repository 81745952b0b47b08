// SPDX-License-Identifier: MIT
#include "manager/view/facefacts.h"

#include "manager/view/texts.h"
#include "system/cuttext.h"

#include <algorithm>
#include <optional>

namespace manager {

namespace {

constexpr std::size_t longest = 160; // bytes of a text, about two lines of a window

std::string embeddingWords(std::optional<std::uint16_t> flags) {
    if (!flags) {
        return translated("Embedding: the font does not tell");
    }
    // The least restrictive of several bits holds.
    std::string words =
        (*flags & 8U) != 0   ? translated("Embedding: allowed, also in documents that are edited")
        : (*flags & 4U) != 0 ? translated("Embedding: allowed to view and print documents only")
        : (*flags & 2U) != 0 ? translated("Embedding: not without permission of the owner")
                             : translated("Embedding: allowed, and it may be installed from there");
    if ((*flags & 0x100U) != 0) {
        words += translated("; only as a whole");
    }
    if ((*flags & 0x200U) != 0) {
        words += translated("; only its bitmaps");
    }
    return words;
}

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

std::vector<std::string> factsOf(const faces::Face& face) {
    std::vector<std::string> facts;
    const auto add = [&](const std::string& title, const std::string& words) {
        if (!words.empty()) {
            facts.push_back(title + " " + shortLine(words));
        }
    };
    add(translated("PostScript name:"), face.postScriptName);
    add(translated("Version:"), face.version);
    add(translated("Foundry:"), face.foundry);
    if (face.licence.empty() && face.licenceLink.empty()) {
        add(translated("Copyright:"), face.copyright);
    }
    add(translated("Licence:"), face.licence);
    add(translated("Licence at:"), face.licenceLink);
    facts.push_back(embeddingWords(face.embedding));
    return facts;
}

} // namespace manager
