// SPDX-License-Identifier: MIT
// The table of style words.
#include "faces/stylewords.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace faces {

namespace {

enum class Says : std::uint8_t { Weight, Width, Slant, None };
enum class Spelling : std::uint8_t { Full, Short };

constexpr double italic = 1;
constexpr double oblique = 2;

struct Word {
    std::string_view text;
    Says says;
    double value;
    Spelling spelling = Spelling::Full; ///< Short: of the full word before it
};

/// Of words that mean the same the first is the customary one.
constexpr std::array words{
    Word{"Thin", Says::Weight, 100},
    Word{"Hairline", Says::Weight, 100},
    Word{"ExtraLight", Says::Weight, 200},
    Word{"UltraLight", Says::Weight, 200},
    Word{"Light", Says::Weight, 300},
    Word{"Lt", Says::Weight, 300, Spelling::Short},
    Word{"SemiLight", Says::Weight, 350},
    Word{"DemiLight", Says::Weight, 350},
    Word{"Medium", Says::Weight, 500},
    Word{"SemiBold", Says::Weight, 600},
    Word{"Semi", Says::Weight, 600, Spelling::Short},
    Word{"Sb", Says::Weight, 600, Spelling::Short},
    Word{"DemiBold", Says::Weight, 600},
    Word{"Demi", Says::Weight, 600, Spelling::Short},
    Word{"Bold", Says::Weight, 700},
    Word{"Bd", Says::Weight, 700, Spelling::Short},
    Word{"ExtraBold", Says::Weight, 800},
    Word{"UltraBold", Says::Weight, 800},
    Word{"Black", Says::Weight, 900},
    Word{"Blk", Says::Weight, 900, Spelling::Short},
    Word{"Heavy", Says::Weight, 900},
    Word{"ExtraBlack", Says::Weight, 950},
    Word{"UltraBlack", Says::Weight, 950},
    Word{"UltraCondensed", Says::Width, 50},
    Word{"ExtraCondensed", Says::Width, 62.5},
    Word{"Compressed", Says::Width, 62.5},
    Word{"Condensed", Says::Width, 75},
    Word{"Cond", Says::Width, 75, Spelling::Short},
    Word{"Cn", Says::Width, 75, Spelling::Short},
    Word{"Narrow", Says::Width, 75},
    Word{"SemiCondensed", Says::Width, 87.5},
    Word{"SemiCond", Says::Width, 87.5, Spelling::Short},
    Word{"SemiCn", Says::Width, 87.5, Spelling::Short},
    Word{"SemiExpanded", Says::Width, 112.5},
    Word{"SemiExt", Says::Width, 112.5, Spelling::Short},
    Word{"Expanded", Says::Width, 125},
    Word{"Extended", Says::Width, 125},
    Word{"Ext", Says::Width, 125, Spelling::Short},
    Word{"Wide", Says::Width, 125},
    Word{"ExtraExpanded", Says::Width, 150},
    Word{"UltraExpanded", Says::Width, 200},
    Word{"Italic", Says::Slant, italic},
    Word{"Ital", Says::Slant, italic, Spelling::Short},
    Word{"Ita", Says::Slant, italic, Spelling::Short},
    Word{"It", Says::Slant, italic, Spelling::Short},
    Word{"Kursiv", Says::Slant, italic},
    Word{"Oblique", Says::Slant, oblique},
    Word{"Obl", Says::Slant, oblique, Spelling::Short},
    Word{"O", Says::Slant, oblique, Spelling::Short},
    Word{"Slanted", Says::Slant, oblique},
    Word{"Inclined", Says::Slant, oblique},
    Word{"Regular", Says::None, 0},
    Word{"Book", Says::None, 0},
    Word{"Roman", Says::None, 0},
    Word{"Normal", Says::None, 0},
    Word{"Plain", Says::None, 0},
    Word{"Upright", Says::None, 0},
    Word{"Disp", Says::None, 0}, // sizes that a face is drawn for
    Word{"Capt", Says::None, 0},
    Word{"Subh", Says::None, 0},
    Word{"MT", Says::None, 0},
    Word{"PS", Says::None, 0},
};

/// The place of each word's bit.
constexpr auto bits = [] {
    std::array<std::uint8_t, words.size()> result{};
    std::uint8_t bit = 0;
    for (std::size_t i = 1; i < words.size(); ++i) {
        result[i] = words[i].spelling == Spelling::Full ? ++bit : bit;
    }
    return result;
}();
static_assert(bits.back() < 64);

constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// A name in lower case without the marks between its words, and where words may begin.
struct Text {
    explicit Text(std::string_view name) {
        bool starts = true;
        char before = ' ';
        for (const char c : name) {
            if (c == ' ' || c == '-' || c == '_') {
                starts = true;
                continue;
            }
            const bool capital = c != lower(c) && before == lower(before);
            const bool begin = starts || capital || isDigit(c) != isDigit(before);
            begins += begin ? '1' : '0';
            letters += lower(c);
            starts = false;
            before = c;
        }
        begins += '1';
    }
    [[nodiscard]] std::size_t nextBegin(std::size_t after) const {
        return begins.find('1', after + 1);
    }
    std::string letters;
    std::string begins; ///< '1' at each letter where a word may, and behind the last one
};

/// The longest word that `text` begins with.
const Word* wordAt(std::string_view text) {
    const Word* found = nullptr;
    for (const Word& word : words) {
        if (lower(word.text.front()) == text.front() && word.text.size() <= text.size() &&
            (found == nullptr || word.text.size() > found->text.size()) &&
            std::equal(word.text.begin(), word.text.end(), text.begin(),
                       [](char a, char b) { return lower(a) == b; })) {
            found = &word;
        }
    }
    return found;
}

void take(StyleWords& result, const Word& word) {
    result.words |= std::uint64_t{1} << bits[static_cast<std::size_t>(&word - words.data())];
    switch (word.says) {
    case Says::Weight:
        result.weight = word.value;
        break;
    case Says::Width:
        result.width = word.value;
        break;
    case Says::Slant:
        result.slant = word.value == italic ? Slant::Italic : Slant::Oblique;
        break;
    case Says::None:
        break;
    }
}

/// Reads joined words from `position` on up to where a word may begin, and moves there. False, with
/// nothing taken, when there are no such words.
bool readJoined(const Text& text, std::size_t& position, StyleWords& result) {
    StyleWords read = result;
    std::size_t end = position;
    do {
        const Word* const word = wordAt(std::string_view(text.letters).substr(end));
        if (word == nullptr) {
            return false;
        }
        take(read, *word);
        end += word->text.size();
    } while (text.begins[end] == '0');
    result = read;
    position = end;
    return true;
}

} // namespace

StyleWords readStyleWords(std::string_view style) {
    const Text text(style);
    StyleWords result;
    for (std::size_t position = 0; position < text.letters.size();) {
        if (!readJoined(text, position, result)) {
            result.complete = false;
            position = text.nextBegin(position);
        }
    }
    return result;
}

StyleWords readFamilyWords(std::string_view family) {
    const Text text(family);
    // The longest end that is all words: "SemiCondensed" is not "Condensed".
    for (std::size_t begin = 0; begin < text.letters.size();) {
        begin = text.nextBegin(begin);
        StyleWords result;
        std::size_t position = begin;
        while (position < text.letters.size()) {
            const Word* const word = wordAt(std::string_view(text.letters).substr(position));
            if (word == nullptr || word->spelling == Spelling::Short) {
                break;
            }
            take(result, *word);
            position += word->text.size();
        }
        if (position == text.letters.size()) {
            return result;
        }
    }
    return {};
}

void correctStyle(Style& style, std::string_view words) {
    const StyleWords said = readStyleWords(words);
    if (style.weight == 400 && said.weight.value_or(500) != 500) {
        style.weight = *said.weight;
    }
    if (style.width == 100) {
        style.width = said.width.value_or(100);
    }
    if (style.slant == Slant::Upright || said.slant == Slant::Oblique) {
        style.slant = said.slant.value_or(Slant::Upright);
    }
}

std::string styleText(const Style& style) {
    const double weight = std::clamp(std::floor((style.weight + 50) / 100), 1.0, 9.0) * 100;
    const auto nearest = [](Says axis, double value, double normal) -> std::string_view {
        const Word* found = nullptr;
        for (const Word& word : words) {
            if (word.says == axis &&
                std::abs(word.value - value) < std::abs((found ? found->value : normal) - value)) {
                found = &word;
            }
        }
        return found == nullptr ? "" : found->text;
    };
    std::string result;
    for (const std::string_view word :
         {nearest(Says::Width, style.width, 100), nearest(Says::Weight, weight, 400),
          std::string_view(style.slant == Slant::Upright  ? ""
                           : style.slant == Slant::Italic ? "Italic"
                                                          : "Oblique")}) {
        if (!word.empty()) {
            result.append(result.empty() ? "" : " ").append(word);
        }
    }
    return result.empty() ? "Regular" : result;
}

} // namespace faces
