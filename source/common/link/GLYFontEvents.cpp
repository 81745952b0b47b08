// SPDX-License-Identifier: MIT
// Activating, showing and buying fonts.
#include "GLYEvent.h"
#include "Logger.h"
#include "commandtext.h"
#include "textutils.h"

#include <string_view>
#include <unordered_map>

namespace GLY {

namespace {

using Records = std::vector<Orvil::SmartPointer<GLYFontInfo>>;

/// The first record of each PostScript name. The keys are the records' own texts.
using RecordIndex = std::unordered_map<std::string_view, GLYFontInfo*>;

RecordIndex indexByPostScriptName(const Records& records) {
    RecordIndex index;
    index.reserve(records.size());
    for (const auto& record : records) {
        index.try_emplace(record->font.psName, record.get());
    }
    return index;
}

/// The record that a font element of a reply is about; null if there is none.
GLYFontInfo* findRecord(const RecordIndex& index, const Orvil::IXmlNode& font) {
    const Orvil::IXmlNode* const name = font.getFirstChild("psName");
    if (name == nullptr) {
        return nullptr;
    }
    const auto found = index.find(name->getContent());
    return found == index.end() ? nullptr : found->second;
}

/// Takes over what the answer to a show request tells of a font.
void takeTypeAndCount(const Orvil::IXmlNode& font, GLYFontInfo& record) {
    for (const Orvil::IXmlNode* child = font.getFirstChild(); child != nullptr;
         child = child->getNextNode()) {
        const std::string name = child->getName();
        if (name == "type") {
            record.font.type = GLYFontInfo::typeStringToEnum(child->getContent());
        } else if (name == "count") {
            record.font.count = static_cast<std::uint32_t>(parse<int>(child->getContent()));
        }
    }
}

} // namespace

void GLYFontActivateEvent::build() {
    CommandText text("activationRequest", fonts.size());
    for (const auto& record : fonts) {
        text.beginFont();
        text.element("containerID", hasChosenContainer(*record) ? record->chosenContainer
                                                                : record->font.containerID);
        text.element("psName", record->font.psName);
        text.endFont();
    }
    command = text.finish();
}

// Nothing is taken from the answer, and the result is null even of a perfect one: only another
// request tells what is active.
Orvil::IXmlNode* GLYFontActivateEvent::parseResult() {
    constexpr const char* context = "GLYController-GLYFontActivateEvent::parseResult";
    const Orvil::IXmlNode* const root = GLYEvent::parseResult();
    Logger::log("starting parsing message", context, 0);
    if (root != nullptr) {
        Logger::log("end parsing message", context, 0);
    }
    return nullptr;
}

void GLYFontInfoEvent::build() {
    CommandText text("showRequest", fonts.size());
    text.lines(getApplicationInfo());
    for (const auto& record : fonts) {
        text.beginFont();
        if (hasChosenContainer(*record)) {
            text.element("containerID", record->chosenContainer);
        }
        text.element("psName", record->font.psName);
        text.type(*record);
        text.endFont();
    }
    command = text.finish();
}

Orvil::IXmlNode* GLYFontInfoEvent::parseResult() {
    Orvil::IXmlNode* const root = GLYEvent::parseResult();
    if (root == nullptr) {
        return nullptr;
    }
    const RecordIndex index = indexByPostScriptName(fonts);
    for (const Orvil::IXmlNode* child = root->getFirstChild(); child != nullptr;
         child = child->getNextNode()) {
        GLYFontInfo* const record =
            child->getName() == "font" ? findRecord(index, *child) : nullptr;
        if (record != nullptr) {
            takeTypeAndCount(*child, *record);
        }
    }
    return root;
}

void GLYFontBuyEvent::build() {
    CommandText text("buyRequest", fonts.size());
    for (const auto& record : fonts) {
        text.beginFont();
        text.element("psName", record->font.psName);
        text.endFont();
    }
    command = text.finish();
}

Orvil::IXmlNode* GLYFontBuyEvent::parseResult() {
    return GLYEvent::parseResult();
}

} // namespace GLY
