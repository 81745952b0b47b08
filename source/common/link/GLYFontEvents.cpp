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

/// The first record of each name or identifier. The keys are the records' own texts.
using RecordIndex = std::unordered_map<std::string_view, GLYFontInfo*>;

RecordIndex indexBy(std::string Protocol::Font::*key, const Records& records) {
    RecordIndex index;
    index.reserve(records.size());
    for (const auto& record : records) {
        index.try_emplace(record->font.*key, record.get());
    }
    return index;
}

/// The record of the font element whose child `element` holds the key; null if there is none.
GLYFontInfo* findRecord(const RecordIndex& index, const Orvil::IXmlNode& font,
                        const std::string& element) {
    const Orvil::IXmlNode* const key = font.getFirstChild(element);
    if (key == nullptr) {
        return nullptr;
    }
    const auto found = index.find(key->getContent());
    return found == index.end() ? nullptr : found->second;
}

template <typename Visit>
void forEachFont(const Orvil::IXmlNode& root, Visit visit) {
    for (const Orvil::IXmlNode* child = root.getFirstChild(); child != nullptr;
         child = child->getNextNode()) {
        if (child->getName() == "font") {
            visit(*child);
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

// The answers are looked at and nothing is taken from them: only another request tells what is
// active. The result is null for that reason, even of a perfect reply.
Orvil::IXmlNode* GLYFontActivateEvent::parseResult() {
    constexpr const char* context = "GLYController-GLYFontActivateEvent::parseResult";
    const Orvil::IXmlNode* const root = GLYEvent::parseResult();
    Logger::log("starting parsing message", context, 0);
    if (root == nullptr) {
        return nullptr;
    }
    const RecordIndex index = indexBy(&Protocol::Font::containerID, fonts);
    forEachFont(*root, [&index](const Orvil::IXmlNode& font) {
        if (findRecord(index, font, "containerID") == nullptr) {
            return;
        }
        for (const Orvil::IXmlNode* child = font.getFirstChild(); child != nullptr;
             child = child->getNextNode()) {
            static_cast<void>(child->getName());
            static_cast<void>(child->getContent());
        }
    });
    Logger::log("end parsing message", context, 0);
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
    const RecordIndex index = indexBy(&Protocol::Font::psName, fonts);
    forEachFont(*root, [&index](const Orvil::IXmlNode& font) {
        GLYFontInfo* const record = findRecord(index, font, "psName");
        if (record == nullptr) {
            return;
        }
        for (const Orvil::IXmlNode* child = font.getFirstChild(); child != nullptr;
             child = child->getNextNode()) {
            const std::string name = child->getName();
            if (name == "type") {
                record->font.type = GLYFontInfo::typeStringToEnum(child->getContent());
            } else if (name == "count") {
                record->font.count = static_cast<std::uint32_t>(parse<int>(child->getContent()));
            }
        }
    });
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
