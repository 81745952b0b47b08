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

FontReply::FontReply(bool showWindow_, const FontList& fonts_)
    : FontReply(showWindow_, FontList(fonts_)) {}

FontReply::FontReply(bool showWindow_, FontList&& fonts_)
    : showWindow(showWindow_), fonts(std::move(fonts_)) {
    checkAll(fonts, checkFontReplyFont);
}

FontList& FontReply::setFontList(const FontList& newFonts) {
    return replaceFonts(fonts, newFonts, checkFontReplyFont);
}

FontRequest::FontRequest(bool mustMatchFontType_, const FontList& fonts_,
                         const std::string& targetApp_, const std::string& targetClass_)
    : mustMatchFontType(mustMatchFontType_), fonts(fonts_), targetApp(targetApp_),
      targetClass(targetClass_) {
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

ShowReply::ShowReply(const FontList& fonts_) : ShowReply(FontList(fonts_)) {}

ShowReply::ShowReply(FontList&& fonts_) : fonts(std::move(fonts_)) {
    checkAll(fonts, checkShowReplyFont);
}

FontList& ShowReply::setFontList(const FontList& newFonts) {
    return replaceFonts(fonts, newFonts, checkShowReplyFont);
}

ShowRequest::ShowRequest(bool mustMatchFontType_, const FontList& fonts_)
    : mustMatchFontType(mustMatchFontType_), fonts(fonts_) {
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

ActivationReply::ActivationReply(const FontList& fonts_) : ActivationReply(FontList(fonts_)) {}

ActivationReply::ActivationReply(FontList&& fonts_) : fonts(std::move(fonts_)) {
    checkAll(fonts, checkActivationReplyFont);
}

FontList& ActivationReply::setFontList(const FontList& newFonts) {
    return replaceFonts(fonts, newFonts, checkActivationReplyFont);
}

ActivationRequest::ActivationRequest(const FontList& fonts_) : fonts(fonts_) {
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

BuyReply::BuyReply(const Font& font_) : font(font_) {}

Font& BuyReply::setFont(const Font& newFont) {
    font = newFont;
    return font;
}

BuyRequest::BuyRequest(const Font& font_) : font(font_) {
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
