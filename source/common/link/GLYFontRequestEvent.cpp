// SPDX-License-Identifier: MIT
// Asking what the font manager knows of the fonts.
#include "GLYEvent.h"
#include "Logger.h"
#include "commandtext.h"
#include "misc/exception.h"
#include "misc/text/numbers.h"
#include "protocolfields.h"
#include "protocolhandler.h"
#include "textutils.h"

#include <string_view>
#include <unordered_map>
#include <utility>

namespace GLY {

namespace {

/// The protocol's version that a request announces.
constexpr std::string_view versionNumber = "1.00";

Orvil::Exception failure(const std::string& message, std::uint32_t line) {
    return {message, "source/common/GLYController", line, ""};
}

std::uint32_t parseCount(const Orvil::IXmlNode& node, const std::string& name) {
    const std::string text = node.getContent();
    bool ok = false;
    const unsigned value = Orvil::safeParse<unsigned>(text, ok);
    if (!ok) {
        throw failure("could not parse <" + name + "> '" + text + "'", __LINE__);
    }
    return value;
}

void parseFontChild(Orvil::IXmlNode& child, Protocol::Font& font) {
    using Protocol::FontField;
    const std::string name = child.getName();
    const FontField field = Protocol::findFontField(name);
    switch (field) {
    case FontField::Type:
        font.type = GLYFontInfo::typeStringToEnum(child.getContent());
        break;
    case FontField::SyncID:
        font.syncID = child.getContent();
        break;
    case FontField::Count:
        font.count = parseCount(child, name);
        break;
    case FontField::TypeMatchingCount:
        font.typeMatchingCount = parseCount(child, name);
        break;
    case FontField::FontInfo:
        font.fontInfos.push_back(Protocol::HandlerHelpers::parseFontInfo(&child));
        break;
    default:
        if (!Protocol::setPlainField(font, field, child.getContent())) {
            throw failure("could not parse node in <font> '" + name + "'", __LINE__);
        }
    }
}

/// Passes over texts, so that a reply may be indented.
void parseFont(const Orvil::IXmlNode& node, Protocol::Font& font) {
    for (Orvil::IXmlNode* child = node.getFirstTagChild(); child != nullptr;
         child = child->getNextTagNode()) {
        parseFontChild(*child, font);
    }
}

/// Gives each record the first reply font of its syncID.
void match(const Protocol::FontList& replyFonts,
           const std::vector<Orvil::SmartPointer<GLYFontInfo>>& records) {
    std::unordered_map<std::string_view, const Protocol::Font*> bySyncID;
    bySyncID.reserve(replyFonts.size());
    for (const Protocol::Font& font : replyFonts) {
        bySyncID.try_emplace(font.syncID, &font);
    }
    for (const auto& record : records) {
        const auto found = bySyncID.find(record->font.syncID);
        if (found != bySyncID.end()) {
            record->font = *found->second;
            record->installed = record->font.count == 0 ? 0 : 1;
        }
    }
}

} // namespace

void GLYFontRequestEvent::build() {
    CommandText text("fontRequest", fonts.size());
    text.lines(getApplicationInfo());
    text.element("protocolVersion", versionNumber);
    for (const auto& record : fonts) {
        const Protocol::Font& font = record->font;
        text.beginFont();
        text.element("syncID", font.syncID);
        text.element("psName", font.psName);
        text.type(*record);
        if (!font.familyName.empty()) {
            text.element("familyName", font.familyName);
        }
        if (!font.styleName.empty()) {
            text.element("styleName", font.styleName);
        }
        text.endFont();
    }
    command = text.finish();
}

Orvil::IXmlNode* GLYFontRequestEvent::parseResult() {
    constexpr const char* context = "GLYController-GLYFontRequestEvent::parseResult";
    Orvil::IXmlNode* const root = GLYEvent::parseResult();
    Logger::log("starting parsing message", context, 0);
    if (root == nullptr) {
        return nullptr;
    }
    Protocol::FontList replyFonts;
    // The command word, a text, is of no use; elements that are not known are skipped.
    for (const Orvil::IXmlNode* child = root->getFirstChild(); child != nullptr;
         child = child->getNextNode()) {
        const std::string name = child->getName();
        if (name == "font") {
            parseFont(*child, replyFonts.emplace_back());
        } else if (name == "showWindow") {
            showWindow = parse<bool>(child->getContent()) ? 1 : 0;
        }
    }
    Logger::log("end parsing message", context, 0);
    match(replyFonts, fonts);
    return root;
}

} // namespace GLY
