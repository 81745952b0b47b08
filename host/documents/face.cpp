// SPDX-License-Identifier: MIT
// Names of faces: generic families, style words, the conventional PostScript name.
#include "host/documents/face.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <iterator>

namespace host {
namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

struct WeightWord {
    int weight;
    std::string_view word;
};
constexpr std::array<WeightWord, 9> weightNames{{{100, "Thin"},
                                                 {200, "ExtraLight"},
                                                 {300, "Light"},
                                                 {400, ""},
                                                 {500, "Medium"},
                                                 {600, "SemiBold"},
                                                 {700, "Bold"},
                                                 {800, "ExtraBold"},
                                                 {900, "Black"}}};

enum class Axis { Weight, Slant, Stretch, None };
struct StyleWord {
    std::string_view word;
    Axis axis;
    double value;
};
// Beside the names of widths. Longer words stand before those they begin with.
constexpr std::array<StyleWord, 52> styleWords{{
    {"semicond", Axis::Stretch, 87.5},
    {"semiext", Axis::Stretch, 112.5},
    {"semicn", Axis::Stretch, 87.5},
    {"ultralight", Axis::Weight, 200},
    {"extralight", Axis::Weight, 200},
    {"extrablack", Axis::Weight, 900},
    {"ultrablack", Axis::Weight, 900},
    {"semilight", Axis::Weight, 300},
    {"demilight", Axis::Weight, 300},
    {"extrabold", Axis::Weight, 800},
    {"ultrabold", Axis::Weight, 800},
    {"compressed", Axis::Stretch, 62.5},
    {"semibold", Axis::Weight, 600},
    {"demibold", Axis::Weight, 600},
    {"extended", Axis::Stretch, 125},
    {"hairline", Axis::Weight, 100},
    {"oblique", Axis::Slant, 2},
    {"slanted", Axis::Slant, 2},
    {"regular", Axis::None, 0},
    {"narrow", Axis::Stretch, 75},
    {"medium", Axis::Weight, 500},
    {"normal", Axis::None, 0},
    {"italic", Axis::Slant, 1},
    {"roman", Axis::None, 0},
    {"plain", Axis::None, 0},
    {"light", Axis::Weight, 300},
    {"black", Axis::Weight, 900},
    {"heavy", Axis::Weight, 900},
    {"kursiv", Axis::Slant, 1},
    {"book", Axis::None, 0},
    {"bold", Axis::Weight, 700},
    {"demi", Axis::Weight, 600},
    {"semi", Axis::Weight, 600},
    {"thin", Axis::Weight, 100},
    {"wide", Axis::Stretch, 125},
    {"cond", Axis::Stretch, 75},
    {"disp", Axis::None, 0}, // sizes that a face is drawn for
    {"capt", Axis::None, 0},
    {"subh", Axis::None, 0},
    {"ital", Axis::Slant, 1},
    {"ita", Axis::Slant, 1},
    {"ext", Axis::Stretch, 125},
    {"obl", Axis::Slant, 2},
    {"blk", Axis::Weight, 900},
    {"sb", Axis::Weight, 600},
    {"cn", Axis::Stretch, 75},
    {"it", Axis::Slant, 1},
    {"bd", Axis::Weight, 700},
    {"lt", Axis::Weight, 300},
    {"mt", Axis::None, 0},
    {"ps", Axis::None, 0},
    {"o", Axis::Slant, 2},
}};

/// The width whose name a text in lower case begins with, nullptr for none.
const NamedStretch* namedStretchAtStart(std::string_view text) {
    const auto* const found = std::find_if(
        namedStretches.begin(), namedStretches.end(), [text](const NamedStretch& stretch) {
            const std::string_view word = stretch.word;
            return !word.empty() && word.size() <= text.size() &&
                   std::equal(word.begin(), word.end(), text.begin(),
                              [](char a, char b) { return lower(a) == b; });
        });
    return found == namedStretches.end() ? nullptr : found;
}

} // namespace

std::size_t FaceHash::operator()(const Face& face) const noexcept {
    const std::hash<std::string_view> ofText;
    std::size_t result = ofText(face.family);
    for (const std::size_t part :
         {ofText(face.style), ofText(face.postScriptName), static_cast<std::size_t>(face.weight),
          static_cast<std::size_t>(face.slant), std::hash<double>{}(face.stretch)}) {
        result = result * 31 + part;
    }
    return result;
}

bool isGenericFamily(std::string_view family) {
    static constexpr std::array<std::string_view, 17> names{"serif",
                                                            "sans-serif",
                                                            "monospace",
                                                            "cursive",
                                                            "fantasy",
                                                            "system-ui",
                                                            "ui-serif",
                                                            "ui-rounded",
                                                            "ui-monospace",
                                                            "ui-sans-serif",
                                                            "emoji",
                                                            "math",
                                                            "fangsong",
                                                            "sans",
                                                            "mono",
                                                            "-apple-system",
                                                            "blinkmacsystemfont"};
    if (family.size() > 18) {
        return false;
    }
    return std::find(names.begin(), names.end(), lowered(family)) != names.end();
}

std::string styleText(int weight, Slant slant, double stretch) {
    const auto width =
        std::min_element(namedStretches.begin(), namedStretches.end(),
                         [stretch](const NamedStretch& a, const NamedStretch& b) {
                             return std::abs(a.percent - stretch) < std::abs(b.percent - stretch);
                         });
    const auto heaviness = static_cast<std::size_t>(std::clamp((weight + 50) / 100, 1, 9) - 1);
    const std::array<std::string_view, 3> words{width->word, weightNames[heaviness].word,
                                                slant == Slant::Upright  ? ""
                                                : slant == Slant::Italic ? "Italic"
                                                                         : "Oblique"};
    std::string result;
    for (const std::string_view word : words) {
        if (!word.empty()) {
            result.append(result.empty() ? "" : " ").append(word);
        }
    }
    return result.empty() ? "Regular" : result;
}

std::string conventionalPostScriptName(std::string_view family, std::string_view style) {
    const auto isBlank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    std::string result;
    std::remove_copy_if(family.begin(), family.end(), std::back_inserter(result), isBlank);
    result += '-';
    const std::size_t dash = result.size();
    std::remove_copy_if(style.begin(), style.end(), std::back_inserter(result), isBlank);
    if (result.size() == dash) {
        result += "Regular";
    }
    return result;
}

StyleWords readStyleWords(std::string_view style) {
    StyleWords result;
    // Words are told apart by what they say: "Extra Light" is one, "BoldItalic" two.
    std::string text = lowered(style);
    text.erase(std::remove_if(text.begin(), text.end(),
                              [](char c) { return c == ' ' || c == '-' || c == '_'; }),
               text.end());
    std::string_view rest = text;
    while (!rest.empty()) {
        if (const NamedStretch* const width = namedStretchAtStart(rest)) {
            result.stretch = width->percent;
            rest.remove_prefix(width->word.size());
            continue;
        }
        const auto word =
            std::find_if(styleWords.begin(), styleWords.end(),
                         [rest](const StyleWord& w) { return rest.starts_with(w.word); });
        if (word == styleWords.end()) {
            result.complete = false;
            return result;
        }
        rest.remove_prefix(word->word.size());
        switch (word->axis) {
        case Axis::Weight:
            result.weight = static_cast<int>(word->value);
            break;
        case Axis::Slant:
            result.slant = word->value == 1 ? Slant::Italic : Slant::Oblique;
            break;
        case Axis::Stretch:
            result.stretch = word->value;
            break;
        case Axis::None:
            break;
        }
    }
    return result;
}

} // namespace host
