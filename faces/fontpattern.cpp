// SPDX-License-Identifier: MIT
// Reading fontconfig's patterns.
#include "faces/fontpattern.h"

namespace faces {

std::string textOf(const FcPattern* pattern, const char* object, int position) {
    FcChar8* text = nullptr;
    if (FcPatternGetString(pattern, object, position, &text) != FcResultMatch) {
        return {};
    }
    return reinterpret_cast<const char*>(text);
}

std::optional<Technology> technologyOf(const FcPattern* pattern) {
    const std::string format = textOf(pattern, FC_FONTFORMAT, 0);
    if (format == "TrueType") {
        // Layout tables make the difference between plain TrueType and OpenType.
        const bool layout =
            textOf(pattern, FC_CAPABILITY, 0).find("otlayout:") != std::string::npos;
        return layout ? Technology::OpenTypeTrueType : Technology::TrueType;
    }
    if (format == "CFF") {
        return Technology::OpenTypePostScript;
    }
    if (format == "Type 1" || format == "CID Type 1") {
        return Technology::Type1;
    }
    return std::nullopt;
}

} // namespace faces
