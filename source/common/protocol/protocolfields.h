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

/// Returns FontField::Unknown for any other name.
[[nodiscard]] FontField findFontField(std::string_view name);

/// Sets a name, an identifier or a truth value, which all replies write alike. Returns false, and
/// sets nothing, for the other fields: syncID, type, the counts, and fontInfos.
[[nodiscard]] bool setPlainField(Font& font, FontField field, std::string&& text);

} // namespace Protocol
