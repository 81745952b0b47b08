// SPDX-License-Identifier: MIT
// The elements inside a font element.
#include "protocolfields.h"

#include "protocolhandler.h"

#include <unordered_map>
#include <utility>

namespace Protocol {

FontField findFontField(std::string_view name) {
    static const std::unordered_map<std::string_view, FontField> fields{
        {"type", FontField::Type},
        {"syncID", FontField::SyncID},
        {"psName", FontField::PsName},
        {"styleName", FontField::StyleName},
        {"familyName", FontField::FamilyName},
        {"count", FontField::Count},
        {"isActive", FontField::IsActive},
        {"typeMatchingCount", FontField::TypeMatchingCount},
        {"isTypeMatchingActive", FontField::IsTypeMatchingActive},
        {"typeMatchingContainerID", FontField::TypeMatchingContainerID},
        {"fontInfo", FontField::FontInfo},
        {"fontInfos", FontField::FontInfos},
        {"containerID", FontField::ContainerID},
        {"activationSuccessfull", FontField::ActivationSuccessful},
    };
    const auto found = fields.find(name);
    return found == fields.end() ? FontField::Unknown : found->second;
}

bool setPlainField(Font& font, FontField field, std::string&& text) {
    switch (field) {
    case FontField::PsName:
        font.psName = std::move(text);
        return true;
    case FontField::StyleName:
        font.styleName = std::move(text);
        return true;
    case FontField::FamilyName:
        font.familyName = std::move(text);
        return true;
    case FontField::TypeMatchingContainerID:
        font.typeMatchingContainerID = std::move(text);
        return true;
    case FontField::ContainerID:
        font.containerID = std::move(text);
        return true;
    case FontField::IsActive:
        font.isActive = HandlerHelpers::parseBoolean(text);
        return true;
    case FontField::IsTypeMatchingActive:
        font.isTypeMatchingActive = HandlerHelpers::parseBoolean(text);
        return true;
    case FontField::ActivationSuccessful:
        font.activationSuccessful = HandlerHelpers::parseBoolean(text);
        return true;
    default:
        return false;
    }
}

} // namespace Protocol
