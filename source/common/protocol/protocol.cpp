// SPDX-License-Identifier: MIT
// The type keywords, the consistency rules, and the index of a font list.
#include "protocol.h"

#include "protocolfailure.h"

#include <algorithm>
#include <array>

namespace Protocol {

namespace {

// By Font::Type.
constexpr std::array<std::string_view, 5> typeTexts{"T1", "TT", "OT_T1", "OT_TT", "all"};

void checkRequestFont(const Font& font) {
    checkPsName(font.psName);
    checkSyncID(font.syncID);
}

} // namespace

std::string Font::typeToString(Type type) {
    const bool isKnown = type >= T1 && type <= all;
    return isKnown ? std::string(typeTexts[static_cast<std::size_t>(type)]) : "error";
}

Font::Type Font::stringToType(const std::string& text) {
    const auto* const found = std::find(typeTexts.begin(), typeTexts.end(), text);
    if (found == typeTexts.end()) {
        throw failure("could not parse <font><type>" + text + "</type>...", 72);
    }
    return static_cast<Type>(found - typeTexts.begin());
}

void checkSyncID(const std::string& syncID) {
    if (syncID.empty()) {
        throw failure("syncID must contain at least one character", 566);
    }
}

void checkPsName(const std::string& psName) {
    if (psName.empty()) {
        throw failure("psName must contain at least one character", 572);
    }
}

void checkReplyType(Font::Type type) {
    if (type == Font::all) {
        throw failure("type of font must not be 'all' in Replies", 578);
    }
}

void checkFontRequestFont(const Font& font) {
    checkRequestFont(font);
}

void checkShowRequestFont(const Font& font) {
    checkRequestFont(font);
}

void checkActivationRequestFont(const Font& font) {
    checkRequestFont(font);
}

void checkBuyRequestFont(const Font& font) {
    checkRequestFont(font);
}

void checkShowReplyFont(const Font& font) {
    checkReplyType(font.type);
    checkPsName(font.psName);
    checkSyncID(font.syncID);
}

void checkFontReplyFont(const Font& font) {
    checkReplyType(font.type);
    checkPsName(font.psName);
    if (font.fontInfos.empty()) {
        throw failure("fontInfos must contain at least fontInfo", 584);
    }
    checkSyncID(font.syncID);
}

void checkActivationReplyFont(const Font& font) {
    checkSyncID(font.syncID);
}

void getIterMap(const FontList& fonts, FontIterMap& out) {
    out.clear();
    for (auto font = fonts.begin(); font != fonts.end(); ++font) {
        if (!out.try_emplace(font->syncID, font).second) {
            throw failure("got FontList with duplicate syncID", 666);
        }
    }
}

} // namespace Protocol
