// SPDX-License-Identifier: MIT
// Lists the desktop's faces through fontconfig.
#include "faces/matching.h"
#include "faces/namekey.h"
#include "faces/stylewords.h"
#include "host/fonts/catalogue.h"
#include "host/fonts/fontconfighandle.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <string_view>
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

/// A list of texts, each in a language.
struct Texts {
    Texts(const PatternReader& reader, const char* texts, const char* languagesOfTexts)
        : all(reader.texts(texts)), languages(reader.texts(languagesOfTexts)) {
        languages.resize(all.size());
    }
    /// The places of the texts of a language.
    std::vector<std::size_t> of(const std::string& language) const {
        std::vector<std::size_t> places;
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (languages[i] == language) {
                places.push_back(i);
            }
        }
        return places;
    }
    /// The partner for the text that is the `number`th of its language elsewhere.
    const std::string& partner(const std::string& language, std::size_t number) const {
        std::vector<std::size_t> places = of(language);
        if (places.empty()) {
            places = of("en");
        }
        if (places.empty()) {
            places = of(languages.front());
        }
        return all[places[std::min(number, places.size() - 1)]];
    }

    std::vector<std::string> all;
    std::vector<std::string> languages;
};

/// Fontconfig lists families and styles apart from each other, and not each in every language:
/// those of one language pair in their order. English ones come first.
std::vector<InstalledFace::Alias> namesOf(const PatternReader& reader) {
    const Texts families(reader, FC_FAMILY, FC_FAMILYLANG);
    Texts styles(reader, FC_STYLE, FC_STYLELANG);
    if (styles.all.empty()) {
        styles.all = styles.languages = {std::string()};
    }
    std::vector<InstalledFace::Alias> names;
    std::size_t english = 0; // how many of them stand at the front
    const auto add = [&](const std::string& family, const std::string& style,
                         const std::string& language) {
        InstalledFace::Alias name{family, style};
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            const bool first = language == "en";
            names.insert(first ? names.begin() + static_cast<std::ptrdiff_t>(english) : names.end(),
                         std::move(name));
            english += first ? 1 : 0;
        }
    };
    const auto pairAll = [](const Texts& texts, auto&& pair) {
        std::map<std::string_view, std::size_t> numbers;
        for (std::size_t i = 0; i < texts.all.size(); ++i) {
            pair(texts.all[i], texts.languages[i], numbers[texts.languages[i]]++);
        }
    };
    pairAll(families, [&](const std::string& family, const std::string& language, std::size_t n) {
        add(family, styles.partner(language, n), language);
    });
    pairAll(styles, [&](const std::string& style, const std::string& language, std::size_t n) {
        add(families.partner(language, n), style, language);
    });
    return names;
}

void readNames(const PatternReader& reader, InstalledFace& face) {
    face.aliases = namesOf(reader);
    face.family = std::move(face.aliases.front().family);
    face.style = std::move(face.aliases.front().style);
    face.aliases.erase(face.aliases.begin());
    if (face.style.empty()) {
        face.style = faces::styleText({static_cast<double>(face.weight), face.stretch, face.slant});
    }
    face.postScriptName = reader.text(FC_POSTSCRIPT_NAME);
    if (face.postScriptName.empty()) {
        face.postScriptName = conventionalPostScriptName(face.family, face.style);
    }
    // Some fonts give their PostScript name as a full name too; it is not what users read.
    std::vector<std::string> fullNames = reader.texts(FC_FULLNAME);
    for (const std::string& name : fullNames) {
        if (face.fullName.empty() || face.fullName == face.postScriptName) {
            face.fullName = name;
        }
    }
    // Each named instance of a variable font comes with the full name of the font.
    const bool instance = face.index >> 16 != 0;
    const bool familyAlone = faces::nameKey(face.fullName) == faces::nameKey(face.family);
    if (face.fullName.empty() || instance || (familyAlone && !faces::isPlain(face.style))) {
        face.fullName = face.family + " " + face.style;
    }
    std::erase(fullNames, face.fullName);
    if (!instance && !face.variable) {
        face.otherFullNames = std::move(fullNames);
    }
}

/// Fontconfig takes the weight of a font without numbers from a word: see faces::correctStyle() for
/// what "Medium" means.
void correctLook(InstalledFace& face, bool isWithoutNumbers) {
    constexpr int medium = 500;
    faces::Style look{static_cast<double>(face.weight), face.stretch, face.slant};
    if (isWithoutNumbers && face.weight == medium) {
        look.weight = faces::Style().weight;
    }
    faces::correctStyle(look, face.style);
    face.weight = static_cast<int>(look.weight);
    face.stretch = look.width;
    face.slant = look.slant;
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
    if (!face.variable) {
        correctLook(face, face.technology == FontTechnology::PostScript && !face.openType);
    }
    return face;
}

} // namespace

std::vector<InstalledFace> listInstalledFaces() {
    // A configuration loaded afresh sees every change; fontconfig's own check works in whole
    // seconds and misses some for good. It is not made the process's current one, so that fonts
    // which a toolkit added to that stay.
    const FontconfigHandle<FcConfig> config(FcInitLoadConfigAndFonts());
    const FontconfigHandle<FcPattern> scalable(FcPatternCreate());
    const FontconfigHandle<FcObjectSet> objects(
        FcObjectSetBuild(FC_FILE, FC_INDEX, FC_FAMILY, FC_FAMILYLANG, FC_STYLE, FC_STYLELANG,
                         FC_FULLNAME, FC_POSTSCRIPT_NAME, FC_FONTFORMAT, FC_CAPABILITY, FC_WEIGHT,
                         FC_WIDTH, FC_SLANT, FC_VARIABLE, FC_SYMBOL, nullptr));
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
