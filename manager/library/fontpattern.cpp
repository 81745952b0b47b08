// SPDX-License-Identifier: MIT
// Reading fontconfig's patterns.
#include "manager/library/fontpattern.h"

namespace manager {

std::string textOf(const FcPattern* pattern, const char* object, int position) {
    FcChar8* text = nullptr;
    if (FcPatternGetString(pattern, object, position, &text) != FcResultMatch) {
        return {};
    }
    return reinterpret_cast<const char*>(text);
}

std::optional<FontType> typeOf(const FcPattern* pattern) {
    const std::string format = textOf(pattern, FC_FONTFORMAT, 0);
    if (format == "TrueType") {
        // Layout tables make the difference between plain TrueType and OpenType.
        const bool layout =
            textOf(pattern, FC_CAPABILITY, 0).find("otlayout:") != std::string::npos;
        return layout ? FontType::OpenTypeTrueType : FontType::TrueType;
    }
    if (format == "CFF") {
        return FontType::OpenTypePostScript;
    }
    if (format == "Type 1" || format == "CID Type 1") {
        return FontType::Type1;
    }
    return std::nullopt;
}

} // namespace manager
