// SPDX-License-Identifier: MIT
#include "manager/view/characters.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace manager {

namespace {

constexpr char32_t none = 0xFFFFFFFF;

/// A word that is looked for.
struct Word {
    std::string name;          ///< in capitals; empty: it is none
    std::u32string characters; ///< any of these
    char32_t code = none;
};

char32_t codeIn(std::string_view digits) {
    std::uint32_t code = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, code, 16);
    return error == std::errc() && stop == end ? char32_t{code} : none;
}

std::string capitalised(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    });
    return text;
}

Word wordOf(std::string_view text) {
    Word word;
    std::string capitals = capitalised(std::string(text));
    if (capitals.starts_with("U+") || capitals.starts_with("0X")) {
        word.code = codeIn(std::string_view(capitals).substr(2));
        return word;
    }
    constexpr std::size_t fewestDigits = 4; // "add" is a word
    if (capitals.size() >= fewestDigits) {
        word.code = codeIn(capitals);
    }
    const auto letters =
        icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
    bool plain = true;
    for (std::int32_t i = 0; i < letters.length(); i = letters.moveIndex32(i, 1)) {
        word.characters += static_cast<char32_t>(letters.char32At(i));
        plain = plain && word.characters.back() < 0x80;
    }
    if (plain) {
        word.name = std::move(capitals);
        if (text.size() > 1) {
            word.characters.clear(); // letters of names that happen to be characters too
        }
    }
    return word;
}

std::vector<Word> wordsOf(std::string_view text) {
    std::vector<Word> words;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        if (end > 0) {
            words.push_back(wordOf(text.substr(0, end)));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

bool isIn(std::string_view name, const std::string& word) {
    const auto isBoundary = [](char c) { return c == ' ' || c == '-' || c == '<'; };
    for (std::size_t at = 0;; ++at) {
        const auto* const hit = static_cast<const char*>(
            memmem(name.data() + at, name.size() - at, word.data(), word.size()));
        if (hit == nullptr) {
            return false;
        }
        at = static_cast<std::size_t>(hit - name.data());
        const std::size_t end = at + word.size();
        if (at > 0 && isBoundary(name[at - 1]) &&
            (word.size() > 1 || end == name.size() || isBoundary(name[end]))) {
            return true;
        }
    }
}

} // namespace

std::string nameOfCharacter(char32_t character) {
    std::array<char, 128> name{};
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t length =
        u_charName(static_cast<UChar32>(character), U_EXTENDED_CHAR_NAME, name.data(),
                   static_cast<std::int32_t>(name.size()), &error);
    return U_SUCCESS(error) != 0 ? std::string(name.data(), static_cast<std::size_t>(length))
                                 : std::string();
}

std::string codeOfCharacter(char32_t character) {
    std::array<char, 16> code{};
    std::snprintf(code.data(), code.size(), "U+%04X", static_cast<unsigned>(character));
    return code.data();
}

std::string textOfCharacter(char32_t character) {
    std::string text;
    icu::UnicodeString(static_cast<UChar32>(character)).toUTF8String(text);
    return text;
}

Characters::Characters(const faces::Coverage& coverage) {
    for (const auto& [first, last] : coverage) {
        for (char32_t one = first; one <= std::min<char32_t>(last, UCHAR_MAX_VALUE); ++one) {
            if (!U_IS_SURROGATE(one)) {
                characters_.push_back(one);
            }
        }
    }
    begins_.reserve(characters_.size() + 1);
    for (const char32_t one : characters_) {
        begins_.push_back(static_cast<std::uint32_t>(names_.size()));
        names_ += ' ' + capitalised(nameOfCharacter(one));
    }
    begins_.push_back(static_cast<std::uint32_t>(names_.size()));
}

std::string_view Characters::nameAt(std::size_t place) const {
    return std::string_view(names_).substr(begins_[place], begins_[place + 1] - begins_[place]);
}

std::vector<char32_t> Characters::find(std::string_view text) const {
    const std::vector<Word> words = wordsOf(text);
    std::vector<char32_t> named;
    std::vector<char32_t> meant;
    for (std::size_t place = 0; place < characters_.size(); ++place) {
        const char32_t one = characters_[place];
        bool isMeant = false;
        const bool isFound = std::all_of(words.begin(), words.end(), [&](const Word& word) {
            const bool itself =
                word.code == one || word.characters.find(one) != std::u32string::npos;
            isMeant = isMeant || itself;
            return itself || (!word.name.empty() && isIn(nameAt(place), word.name));
        });
        if (isFound) {
            (isMeant ? meant : named).push_back(one);
        }
    }
    meant.insert(meant.end(), named.begin(), named.end());
    return meant;
}

} // namespace manager
