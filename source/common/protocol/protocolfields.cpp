// SPDX-License-Identifier: MIT
// The elements inside a font element.
#include "protocolfields.h"

#include "protocolhandler.h"

#include <unordered_map>
#include <utility>

namespace Protocol {

FontField findFontField(std::string_view name) {
    static const std::unordered_map<std::string_view, FontField> fields{
        {"type", FontField::type},
        {"syncID", FontField::syncID},
        {"psName", FontField::psName},
        {"styleName", FontField::styleName},
        {"familyName", FontField::familyName},
        {"count", FontField::count},
        {"isActive", FontField::isActive},
        {"typeMatchingCount", FontField::typeMatchingCount},
        {"isTypeMatchingActive", FontField::isTypeMatchingActive},
        {"typeMatchingContainerID", FontField::typeMatchingContainerID},
        {"fontInfo", FontField::fontInfo},
        {"fontInfos", FontField::fontInfos},
        {"containerID", FontField::containerID},
        {"activationSuccessfull", FontField::activationSuccessful},
    };
    const auto found = fields.find(name);
    return found == fields.end() ? FontField::unknown : found->second;
}

bool setPlainField(Font& font, FontField field, std::string&& text) {
    switch (field) {
    case FontField::psName:
        font.psName = std::move(text);
        return true;
    case FontField::styleName:
        font.styleName = std::move(text);
        return true;
    case FontField::familyName:
        font.familyName = std::move(text);
        return true;
    case FontField::typeMatchingContainerID:
        font.typeMatchingContainerID = std::move(text);
        return true;
    case FontField::containerID:
        font.containerID = std::move(text);
        return true;
    case FontField::isActive:
        font.isActive = HandlerHelpers::parseBoolean(text);
        return true;
    case FontField::isTypeMatchingActive:
        font.isTypeMatchingActive = HandlerHelpers::parseBoolean(text);
        return true;
    case FontField::activationSuccessful:
        font.activationSuccessful = HandlerHelpers::parseBoolean(text);
        return true;
    default:
        return false;
    }
}

} // namespace Protocol
