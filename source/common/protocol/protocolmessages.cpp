// SPDX-License-Identifier: MIT
// The messages: checked construction, and the merge of a reply into its request.
#include "protocol.h"

#include "protocolfailure.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace Protocol {

namespace {

using Rule = void (*)(const Font&);

void checkAll(const FontList& fonts, Rule rule) {
    std::for_each(fonts.begin(), fonts.end(), rule);
}

/// Checks the list that is there, not the one that comes.
FontList& replaceFonts(FontList& fonts, const FontList& newFonts, Rule rule) {
    checkAll(fonts, rule);
    fonts = newFonts;
    return fonts;
}

/// The lines that a merge's failures name.
struct MergeLines {
    std::uint32_t countMismatch;
    std::uint32_t missingSyncID;
};

/// Copies of the request's fonts by ascending syncID, each changed by `takeOver(copy, answer)`.
template <typename TakeOver>
FontList mergeFonts(const FontList& requested, const FontList& replied, MergeLines lines,
                    TakeOver takeOver) {
    FontIterMap requestFonts;
    getIterMap(requested, requestFonts);
    FontIterMap replyFonts;
    getIterMap(replied, replyFonts);
    if (requestFonts.size() != replyFonts.size()) {
        throw failure("number of fonts in reply does not match number of fonts in request",
                      lines.countMismatch);
    }
    FontList merged;
    for (const auto& [syncID, font] : requestFonts) {
        const auto answer = replyFonts.find(syncID);
        if (answer == replyFonts.end()) {
            throw failure("could not find syncID '" + syncID + "' from request in reply",
                          lines.missingSyncID);
        }
        takeOver(merged.emplace_back(*font), *answer->second);
    }
    return merged;
}

} // namespace

FontReply::FontReply(bool hasWindow, const FontList& newFonts)
    : FontReply(hasWindow, FontList(newFonts)) {}

FontReply::FontReply(bool hasWindow, FontList&& newFonts)
    : showWindow(hasWindow), fonts(std::move(newFonts)) {
    checkAll(fonts, checkFontReplyFont);
}

FontList& FontReply::setFontList(const FontList& newFonts) {
    return replaceFonts(fonts, newFonts, checkFontReplyFont);
}

FontRequest::FontRequest(bool mustMatchType, const FontList& newFonts, const std::string& app,
                         const std::string& appClass)
    : mustMatchFontType(mustMatchType), fonts(newFonts), targetApp(app), targetClass(appClass) {
    checkAll(fonts, checkFontRequestFont);
}

FontList& FontRequest::setFontList(const FontList& newFonts) {
    return replaceFonts(fonts, newFonts, checkFontRequestFont);
}

FontList FontRequest::mergeFontsInReply(const FontReply& reply) const {
    return mergeFonts(fonts, reply.fonts, {158, 173}, [](Font& font, const Font& answer) {
        font.containerID = answer.containerID;
        if (!font.fontInfos.empty()) {
            std::cerr << "warning: overwriting non-empty request fontInfos!\n";
        }
        font.fontInfos = answer.fontInfos;
        font.typeMatchingContainerID = answer.typeMatchingContainerID;
        font.count = answer.count;
        font.isActive = answer.isActive;
        font.typeMatchingCount = answer.typeMatchingCount;
        font.isTypeMatchingActive = answer.isTypeMatchingActive;
        font.familyName = answer.familyName;
        font.styleName = answer.styleName;
        font.psName = answer.psName;
        font.type = answer.type;
    });
}

ShowReply::ShowReply(const FontList& newFonts) : ShowReply(FontList(newFonts)) {}

ShowReply::ShowReply(FontList&& newFonts) : fonts(std::move(newFonts)) {
    checkAll(fonts, checkShowReplyFont);
}

FontList& ShowReply::setFontList(const FontList& newFonts) {
    return replaceFonts(fonts, newFonts, checkShowReplyFont);
}

ShowRequest::ShowRequest(bool mustMatchType, const FontList& newFonts)
    : mustMatchFontType(mustMatchType), fonts(newFonts) {
    checkAll(fonts, checkShowRequestFont);
}

FontList& ShowRequest::setFontList(const FontList& newFonts) {
    return replaceFonts(fonts, newFonts, checkShowRequestFont);
}

FontList ShowRequest::mergeFontsInReply(const ShowReply& reply) const {
    return mergeFonts(fonts, reply.fonts, {286, 301}, [](Font& font, const Font& answer) {
        font.count = answer.count;
        font.psName = answer.psName;
        font.type = answer.type;
    });
}

ActivationReply::ActivationReply(const FontList& newFonts) : ActivationReply(FontList(newFonts)) {}

ActivationReply::ActivationReply(FontList&& newFonts) : fonts(std::move(newFonts)) {
    checkAll(fonts, checkActivationReplyFont);
}

FontList& ActivationReply::setFontList(const FontList& newFonts) {
    return replaceFonts(fonts, newFonts, checkActivationReplyFont);
}

ActivationRequest::ActivationRequest(const FontList& newFonts) : fonts(newFonts) {
    checkAll(fonts, checkActivationRequestFont);
}

FontList& ActivationRequest::setFontList(const FontList& newFonts) {
    return replaceFonts(fonts, newFonts, checkActivationRequestFont);
}

FontList ActivationRequest::mergeFontsInReply(const ActivationReply& reply) const {
    return mergeFonts(fonts, reply.fonts, {478, 493}, [](Font& font, const Font& answer) {
        font.activationSuccessful = answer.activationSuccessful;
        font.containerID = answer.containerID;
    });
}

BuyReply::BuyReply(const Font& newFont) : font(newFont) {}

Font& BuyReply::setFont(const Font& newFont) {
    font = newFont;
    return font;
}

BuyRequest::BuyRequest(const Font& newFont) : font(newFont) {
    checkBuyRequestFont(font);
}

Font& BuyRequest::setFont(const Font& newFont) {
    checkBuyRequestFont(newFont);
    font = newFont;
    return font;
}

Font BuyRequest::mergeFontInReply(const BuyReply& reply) const {
    Font merged = font;
    merged.handled = reply.font.handled;
    return merged;
}

} // namespace Protocol
