// SPDX-License-Identifier: MIT
// Lists the desktop's faces through fontconfig.
#include "host/fonts/catalogue.h"
#include "host/fonts/fontconfighandle.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace host {
namespace {

/// Fontconfig counts widths in whole percent; style sheets have halves between them.
double stretchOf(double width) {
    const auto named =
        std::find_if(namedStretches.begin(), namedStretches.end(),
                     [width](const NamedStretch& s) { return std::abs(s.percent - width) < 1.0; });
    return named == namedStretches.end() ? width : named->percent;
}

class PatternReader {
public:
    explicit PatternReader(const FcPattern* pattern) : pattern_(pattern) {}

    std::string text(const char* object, int n = 0) const {
        FcChar8* value = nullptr;
        return FcPatternGetString(pattern_, object, n, &value) == FcResultMatch
                   ? reinterpret_cast<const char*>(value)
                   : std::string();
    }
    std::vector<std::string> texts(const char* object) const {
        std::vector<std::string> result;
        FcChar8* value = nullptr;
        for (int n = 0; FcPatternGetString(pattern_, object, n, &value) == FcResultMatch; ++n) {
            result.emplace_back(reinterpret_cast<const char*>(value));
        }
        return result;
    }
    int integer(const char* object, int fallback) const {
        int value = 0;
        return FcPatternGetInteger(pattern_, object, 0, &value) == FcResultMatch ? value : fallback;
    }
    bool flag(const char* object) const {
        FcBool value = FcFalse;
        return FcPatternGetBool(pattern_, object, 0, &value) == FcResultMatch && value == FcTrue;
    }
    /// Both ends of a range; twice the value of a number.
    void range(const char* object, double& from, double& to) const {
        FcRange* bounds = nullptr;
        if (FcPatternGetDouble(pattern_, object, 0, &from) == FcResultMatch) {
            to = from;
        } else if (FcPatternGetRange(pattern_, object, 0, &bounds) == FcResultMatch) {
            FcRangeGetDouble(bounds, &from, &to);
        }
    }

private:
    const FcPattern* pattern_;
};

/// The first English text of several in parallel languages, else the first one.
std::size_t englishOne(const std::vector<std::string>& languages) {
    const auto found = std::find(languages.begin(), languages.end(), "en");
    return found == languages.end() ? 0 : static_cast<std::size_t>(found - languages.begin());
}

bool isPlain(const std::string& style) {
    const StyleWords words = readStyleWords(style);
    return words.complete && (words.weight + 50) / 100 == 4 && words.slant == Slant::Upright &&
           words.stretch == 100.0;
}

void readNames(const PatternReader& reader, InstalledFace& face) {
    const std::vector<std::string> families = reader.texts(FC_FAMILY);
    const std::vector<std::string> styles = reader.texts(FC_STYLE);
    // Typographic and legacy names stand in parallel, and so do those of several languages.
    const auto styleAt = [&](std::size_t i) {
        return styles.empty() ? std::string() : styles[std::min(i, styles.size() - 1)];
    };
    const std::size_t first = englishOne(reader.texts(FC_FAMILYLANG));
    for (std::size_t i = 0; i < std::max(families.size(), styles.size()); ++i) {
        InstalledFace::Alias name{families[std::min(i, families.size() - 1)], styleAt(i)};
        if (i == first) {
            face.family = name.family;
            face.style = name.style;
        } else {
            face.aliases.push_back(std::move(name));
        }
    }
    if (face.style.empty()) {
        face.style = styleText(face.weight, face.slant, face.stretch);
    }
    face.postScriptName = reader.text(FC_POSTSCRIPT_NAME);
    if (face.postScriptName.empty()) {
        face.postScriptName = conventionalPostScriptName(face.family, face.style);
    }
    // Some fonts give their PostScript name as a full name too; it is not what users read.
    for (const std::string& name : reader.texts(FC_FULLNAME)) {
        if (face.fullName.empty() || face.fullName == face.postScriptName) {
            face.fullName = name;
        }
    }
    // Each named instance of a variable font comes with the full name of the font.
    const bool instance = face.index >> 16 != 0;
    const bool familyAlone = foldName(face.fullName) == foldName(face.family);
    if (face.fullName.empty() || instance || (familyAlone && !isPlain(face.style))) {
        face.fullName = face.family + " " + face.style;
    }
}

InstalledFace readFace(const PatternReader& reader) {
    InstalledFace face;
    face.file = reader.text(FC_FILE);
    face.index = reader.integer(FC_INDEX, 0);
    face.variable = reader.flag(FC_VARIABLE);
    face.symbol = reader.flag(FC_SYMBOL);

    double weight = FC_WEIGHT_REGULAR;
    double weightTo = weight;
    reader.range(FC_WEIGHT, weight, weightTo);
    face.weight = static_cast<int>(std::lround(FcWeightToOpenTypeDouble(weight)));
    face.weightTo = static_cast<int>(std::lround(FcWeightToOpenTypeDouble(weightTo)));
    double width = FC_WIDTH_NORMAL;
    double widthTo = width;
    reader.range(FC_WIDTH, width, widthTo);
    face.stretch = stretchOf(width);
    face.stretchTo = stretchOf(widthTo);
    const int slant = reader.integer(FC_SLANT, FC_SLANT_ROMAN);
    face.slant = slant >= FC_SLANT_OBLIQUE ? Slant::Oblique
                 : slant > FC_SLANT_ROMAN  ? Slant::Italic
                                           : Slant::Upright;

    const std::string format = reader.text(FC_FONTFORMAT);
    const bool layout = reader.text(FC_CAPABILITY).find("otlayout:") != std::string::npos;
    face.technology = format == "TrueType" ? FontTechnology::TrueType : FontTechnology::PostScript;
    // PostScript outlines in a table font make it an OpenType font; TrueType outlines do only
    // together with layout tables, as the format is older than OpenType.
    face.openType = format == "CFF" || (format == "TrueType" && layout);
    readNames(reader, face);
    return face;
}

} // namespace

std::string foldName(std::string_view name) {
    std::string result;
    result.reserve(name.size());
    bool ascii = true;
    for (const char c : name) {
        if (c != ' ' && (c < '\t' || c > '\r')) {
            result += c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
        }
        ascii = ascii && static_cast<unsigned char>(c) < 0x80;
    }
    if (!ascii) {
        const FontconfigHandle<FcChar8> folded(
            FcStrDowncase(reinterpret_cast<const FcChar8*>(result.c_str())));
        if (folded) {
            result = reinterpret_cast<const char*>(folded.get());
        }
    }
    return result;
}

std::vector<InstalledFace> listInstalledFaces() {
    // A configuration loaded afresh sees every change; fontconfig's own check works in whole
    // seconds and misses some for good. It is not made the process's current one, so that fonts
    // which a toolkit added to that stay.
    const FontconfigHandle<FcConfig> config(FcInitLoadConfigAndFonts());
    const FontconfigHandle<FcPattern> scalable(FcPatternCreate());
    const FontconfigHandle<FcObjectSet> objects(
        FcObjectSetBuild(FC_FILE, FC_INDEX, FC_FAMILY, FC_FAMILYLANG, FC_STYLE, FC_FULLNAME,
                         FC_POSTSCRIPT_NAME, FC_FONTFORMAT, FC_CAPABILITY, FC_WEIGHT, FC_WIDTH,
                         FC_SLANT, FC_VARIABLE, FC_SYMBOL, nullptr));
    std::vector<InstalledFace> faces;
    if (!config || !scalable || !objects) {
        return faces;
    }
    FcPatternAddBool(scalable.get(), FC_SCALABLE, FcTrue);
    const FontconfigHandle<FcFontSet> fonts(
        FcFontList(config.get(), scalable.get(), objects.get()));
    if (!fonts) {
        return faces;
    }
    faces.reserve(static_cast<std::size_t>(fonts->nfont));
    for (int i = 0; i < fonts->nfont; ++i) {
        const PatternReader reader(fonts->fonts[i]);
        if (!reader.text(FC_FILE).empty() && !reader.text(FC_FAMILY).empty()) {
            faces.push_back(readFace(reader));
        }
    }
    return faces;
}

} // namespace host
