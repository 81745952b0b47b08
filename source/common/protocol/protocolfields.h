// SPDX-License-Identifier: MIT
// The names of the elements inside a font element, found by one hash look-up whatever their order.
#pragma once

#include "protocol.h"

#include <string>
#include <string_view>

namespace Protocol {

enum class FontField {
    Unknown,
    Type,
    SyncID,
    PsName,
    StyleName,
    FamilyName,
    Count,
    IsActive,
    TypeMatchingCount,
    IsTypeMatchingActive,
    TypeMatchingContainerID,
    FontInfo,
    FontInfos,
    ContainerID,
    ActivationSuccessful, ///< "activationSuccessfull" on the wire
};

/// FontField::Unknown for every name that is none of them.
[[nodiscard]] FontField findFontField(std::string_view name);

/// Sets a field that is a name, an identifier or a truth value, as every reply has it in the same
/// way. False, and nothing is set, for the other fields: syncID, type, the counts, and fontInfos.
[[nodiscard]] bool setPlainField(Font& font, FontField field, std::string&& text);

} // namespace Protocol
