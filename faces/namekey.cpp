// SPDX-License-Identifier: MIT
// Folds case as fontconfig does.
#include "faces/namekey.h"

#include <algorithm>
#include <array>
#include <fontconfig/fontconfig.h>
#include <memory>

namespace faces {

namespace {

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

bool isLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || isUpper(c) || (c >= '0' && c <= '9') ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// What makers add to the names of families, without its case.
constexpr std::array<std::string_view, 16> additions{"pro", "std", "mt",  "lt",      "ps", "bt",
                                                     "itc", "ot",  "otf", "ttf",     "tt", "t1",
                                                     "com", "ffc", "vf",  "variable"};

/// Whether a word begins at `position`: behind a mark, or with a capital after a small letter.
bool beginsWord(std::string_view name, std::size_t position) {
    const char before = name[position - 1];
    return !isLetterOrDigit(before) || (isUpper(name[position]) && !isUpper(before));
}

std::size_t additionAtEnd(std::string_view name) {
    for (const std::string_view addition : additions) {
        if (name.size() <= addition.size()) {
            continue;
        }
        const std::size_t start = name.size() - addition.size();
        if (beginsWord(name, start) && nameKey(name.substr(start)) == addition) {
            return addition.size();
        }
    }
    return 0;
}

} // namespace

std::string nameKey(std::string_view name) {
    std::string key;
    key.reserve(name.size());
    bool ascii = true;
    for (const char c : name) {
        if (!isBlank(c)) {
            key += isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
        }
        ascii = ascii && static_cast<unsigned char>(c) < 0x80;
    }
    if (!ascii) {
        const std::unique_ptr<FcChar8, void (*)(FcChar8*)> folded(
            FcStrDowncase(reinterpret_cast<const FcChar8*>(key.c_str())), FcStrFree);
        if (folded) {
            key = reinterpret_cast<const char*>(folded.get());
        }
    }
    return key;
}

std::string normalisedFamilyKey(std::string_view family) {
    const auto dropMarks = [&family] {
        while (!family.empty() && !isLetterOrDigit(family.back())) {
            family.remove_suffix(1);
        }
    };
    const std::string_view whole = family;
    dropMarks();
    while (const std::size_t addition = additionAtEnd(family)) {
        family.remove_suffix(addition);
        dropMarks();
    }
    std::string key = nameKey(family.empty() ? whole : family);
    std::erase_if(key, [](char c) { return !isLetterOrDigit(c); });
    return key;
}

std::string postScriptKey(std::string_view name) {
    std::string key(name);
    std::erase_if(key, isBlank);
    return key;
}

} // namespace faces
