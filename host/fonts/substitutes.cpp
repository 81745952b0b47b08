// SPDX-License-Identifier: MIT
// Asking fontconfig as the desktop's programs do: the whole family list at once.
#include "host/fonts/substitutes.h"

#include "faces/namekey.h"

#include <algorithm>
#include <set>

namespace host {

namespace {

std::string textOf(const FcPattern& pattern, const char* object) {
    FcChar8* text = nullptr;
    return FcPatternGetString(&pattern, object, 0, &text) == FcResultMatch
               ? reinterpret_cast<const char*>(text)
               : std::string();
}

/// What substitution adds behind a family and binds as strongly is told by the settings; what any
/// family falls back to is bound weakly.
std::set<std::string> familiesBoundTo(const std::string& family, FcConfig* config) {
    const FontconfigHandle<FcPattern> pattern(FcPatternCreate());
    FcPatternAddString(pattern.get(), FC_FAMILY, bytesOf(family));
    FcConfigSubstitute(config, pattern.get(), FcMatchPattern);
    std::set<std::string> keys;
    FcValue value{};
    FcValueBinding binding{};
    for (int i = 0;
         FcPatternGetWithBinding(pattern.get(), FC_FAMILY, i, &value, &binding) == FcResultMatch;
         ++i) {
        if (value.type == FcTypeString && binding != FcValueBindingWeak) {
            keys.insert(faces::nameKey(reinterpret_cast<const char*>(value.u.s)));
        }
    }
    return keys;
}

} // namespace

Substitutes::Substitutes() : config_(FcInitLoadConfigAndFonts()) {}

std::optional<Substitute> Substitutes::of(const Face& face,
                                          std::span<const std::string> later) const {
    const FontconfigHandle<FcPattern> wanted = patternOf(face);
    for (const std::string& family : later) {
        FcPatternAddString(wanted.get(), FC_FAMILY, bytesOf(family));
    }
    const FontconfigHandle<FcPattern> found = bestMatch(*config_, *wanted);
    const std::optional<FaceFile> file = found ? fileOf(*found) : std::nullopt;
    if (!file) {
        return std::nullopt;
    }
    Substitute substitute{*file, textOf(*found, FC_FAMILY), false, false};
    const std::string key = faces::nameKey(substitute.family);
    substitute.listed = std::any_of(later.begin(), later.end(), [&](const std::string& family) {
        return faces::nameKey(family) == key;
    });
    substitute.sameMetrics = familiesBoundTo(face.family, config_.get()).contains(key);
    return substitute;
}

bool Substitutes::canDraw(char32_t character) {
    if (!characters_) {
        characters_.reset(FcCharSetCreate());
        const FcFontSet* const fonts = FcConfigGetFonts(config_.get(), FcSetSystem);
        for (int i = 0; fonts != nullptr && i < fonts->nfont; ++i) {
            FcCharSet* of = nullptr;
            if (FcPatternGetCharSet(fonts->fonts[i], FC_CHARSET, 0, &of) == FcResultMatch) {
                FcCharSetMerge(characters_.get(), of, nullptr);
            }
        }
    }
    return FcCharSetHasChar(characters_.get(), character) == FcTrue;
}

} // namespace host
