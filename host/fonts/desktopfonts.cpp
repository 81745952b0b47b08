// SPDX-License-Identifier: MIT
// Asking fontconfig for substitutes and for characters.
#include "host/fonts/desktopfonts.h"

#include "host/documents/utf8.h"

#include <array>

namespace host {

namespace {

std::uint32_t placeOf(int index) {
    // Fontconfig's mark of a variable font as a whole, where an instance would have its number.
    constexpr std::uint32_t whole = 0x8000;
    const auto place = static_cast<std::uint32_t>(index);
    return place >> 16U == whole ? place & 0xFFFFU : place;
}

FontconfigHandle<FcCharSet> charactersOf(std::string_view text) {
    FontconfigHandle<FcCharSet> characters(FcCharSetCreate());
    while (!text.empty()) {
        FcChar32 character = 0;
        const int length = FcUtf8ToUcs4(reinterpret_cast<const FcChar8*>(text.data()), &character,
                                        static_cast<int>(text.size()));
        if (length <= 0) {
            break;
        }
        if (g_unichar_isgraph(character) != 0) {
            FcCharSetAddChar(characters.get(), character);
        }
        text.remove_prefix(static_cast<std::size_t>(length));
    }
    return characters;
}

int slantOf(Slant slant) {
    constexpr std::array slants{FC_SLANT_ROMAN, FC_SLANT_ITALIC, FC_SLANT_OBLIQUE};
    return slants[static_cast<std::size_t>(slant)];
}

/// Up to `most` that leave a mark by themselves, from `first` on.
std::string charactersFrom(const FcCharSet& characters, std::uint32_t first, int most) {
    std::array<FcChar32, FC_CHARSET_MAP_SIZE> bits{};
    FcChar32 next = 0;
    std::string result;
    for (FcChar32 base = FcCharSetFirstPage(&characters, bits.data(), &next);
         base != FC_CHARSET_DONE && most > 0;
         base = FcCharSetNextPage(&characters, bits.data(), &next)) {
        for (FcChar32 i = 0; i < FC_CHARSET_MAP_SIZE * 32 && most > 0; ++i) {
            const FcChar32 character = base + i;
            if ((bits[i / 32] >> i % 32 & 1U) != 0 && character >= first &&
                g_unichar_isgraph(character) != 0 && g_unichar_ismark(character) == 0) {
                appendUtf8(result, character);
                --most;
            }
        }
    }
    return result;
}

} // namespace

FaceFile fileOf(const InstalledFace& face) {
    return {face.fullName, face.file, placeOf(face.index), face.symbol};
}

FontconfigHandle<FcPattern> patternOf(const Face& face) {
    FontconfigHandle<FcPattern> wanted(FcPatternCreate());
    FcPatternAddString(wanted.get(), FC_FAMILY, bytesOf(face.family));
    FcPatternAddDouble(wanted.get(), FC_WEIGHT, FcWeightFromOpenTypeDouble(face.weight));
    FcPatternAddDouble(wanted.get(), FC_WIDTH, face.stretch);
    FcPatternAddInteger(wanted.get(), FC_SLANT, slantOf(face.slant));
    FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
    return wanted;
}

FontconfigHandle<FcPattern> bestMatch(FcConfig& config, FcPattern& wanted) {
    FcConfigSubstitute(&config, &wanted, FcMatchPattern);
    FcDefaultSubstitute(&wanted);
    FcResult result = FcResultNoMatch;
    return FontconfigHandle<FcPattern>(FcFontMatch(&config, &wanted, &result));
}

std::optional<FaceFile> fileOf(const FcPattern& found) {
    FcChar8* file = nullptr;
    FcChar8* name = nullptr;
    int index = 0;
    if (FcPatternGetString(&found, FC_FILE, 0, &file) != FcResultMatch) {
        return std::nullopt;
    }
    FcPatternGetInteger(&found, FC_INDEX, 0, &index);
    if (FcPatternGetString(&found, FC_FULLNAME, 0, &name) != FcResultMatch) {
        FcPatternGetString(&found, FC_FAMILY, 0, &name);
    }
    return FaceFile{name != nullptr ? reinterpret_cast<const char*>(name) : "",
                    reinterpret_cast<const char*>(file), placeOf(index), false};
}

DesktopFonts::DesktopFonts() : config_(FcInitLoadConfigAndFonts()) {}

std::optional<FaceFile> DesktopFonts::standIn(const Face& face, std::string_view text) const {
    const FontconfigHandle<FcPattern> wanted = patternOf(face);
    FcPatternAddCharSet(wanted.get(), FC_CHARSET, charactersOf(text).get());
    const FontconfigHandle<FcPattern> found = bestMatch(*config_, *wanted);
    return found ? fileOf(*found) : std::nullopt;
}

std::string DesktopFonts::someCharacters(const FaceFile& face) const {
    constexpr int most = 12;
    constexpr std::uint32_t behindLatin = 0x250;
    const FontconfigHandle<FcPattern> wanted(FcPatternCreate());
    FcPatternAddString(wanted.get(), FC_FILE, reinterpret_cast<const FcChar8*>(face.file.c_str()));
    const FontconfigHandle<FcObjectSet> objects(FcObjectSetBuild(FC_INDEX, FC_CHARSET, nullptr));
    const FontconfigHandle<FcFontSet> found(FcFontList(config_.get(), wanted.get(), objects.get()));
    for (int i = 0; found && i < found->nfont; ++i) {
        FcCharSet* characters = nullptr;
        int index = 0;
        FcPatternGetInteger(found->fonts[i], FC_INDEX, 0, &index);
        if (placeOf(index) != face.index ||
            FcPatternGetCharSet(found->fonts[i], FC_CHARSET, 0, &characters) != FcResultMatch) {
            continue;
        }
        const std::string own = charactersFrom(*characters, behindLatin, most);
        return own.empty() ? charactersFrom(*characters, 0, most) : own;
    }
    return {};
}

} // namespace host
