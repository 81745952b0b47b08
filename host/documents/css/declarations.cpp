// SPDX-License-Identifier: MIT
// Reads blocks of declarations.
#include "host/documents/css/declarations.h"

#include "host/documents/css/css.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

namespace host::css {
namespace {

/// The first blank-separated word of a value, taken off it. Blanks in brackets are part of a word.
std::string_view takeWord(std::string_view& text) {
    text = trim(text);
    const std::size_t end = findOutside(text, 0, " \t\n\v\f\r");
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(end);
    return word;
}

struct Shorthand {
    Value slant{Value::Kind::Initial, 0};
    Value weight{Value::Kind::Initial, 0};
    Value stretch{Value::Kind::Initial, 0};
    Value size{};
    std::string_view families;
};

/// Takes one of the words that may stand before the size; false for any other word.
bool takeLook(std::string_view word, std::string_view& rest, Shorthand& result) {
    if (equalsIgnoringCase(word, "normal") || equalsIgnoringCase(word, "small-caps")) {
        return true;
    }
    // A bare number is a weight until the size came, and a bare size is not valid before the
    // families; "font: 12 Foo" is written nevertheless, so only a plausible weight is one.
    const bool number = std::string_view("0123456789.+").find(word.front()) != std::string::npos;
    if (const auto weight = readOwnValue(Property::Weight, word);
        weight && (!number || (weight->number >= 100 && !trim(rest).empty()))) {
        result.weight = *weight;
        return true;
    }
    if (const auto slant = readOwnValue(Property::Slant, word)) {
        result.slant = *slant;
        std::string_view ahead = rest;
        if (takeWord(ahead).ends_with("deg")) {
            rest = ahead;
        }
        return true;
    }
    if (const auto stretch = readOwnValue(Property::Stretch, word);
        stretch && !word.ends_with('%')) {
        result.stretch = *stretch;
        return true;
    }
    return false;
}

/// Takes the height of a line behind `size`: "12px / 1.5 Foo" is the same as "12px/1.5 Foo".
void takeLineHeight(std::string_view size, std::string_view& rest) {
    rest = trim(rest);
    if (size.ends_with('/') || (rest.starts_with('/') && takeWord(rest).size() == 1)) {
        takeWord(rest);
    }
}

/// `font: style variant weight stretch size[/line-height] families`
std::optional<Shorthand> readShorthand(std::string_view text) {
    Shorthand result;
    std::string_view rest = text;
    std::string_view word = takeWord(rest);
    while (!word.empty() && takeLook(word, rest, result)) {
        word = takeWord(rest);
    }
    const bool bracketed = word.find('(') != std::string_view::npos;
    result.size = readOwnValue(Property::Size, bracketed ? word : word.substr(0, word.find('/')))
                      .value_or(Value{});
    takeLineHeight(word, rest);
    result.families = trim(rest);
    return result.families.empty() ? std::nullopt : std::optional(result);
}

void addShorthand(const Declaration& declaration, TextTable& texts, PropertyDeclarations& result) {
    const auto add = [&](Property property, Value value) {
        result.push_back({property, declaration.important, true, value});
    };
    static constexpr std::array<std::string_view, 6> systemFonts{
        "caption", "icon", "menu", "message-box", "small-caption", "status-bar"};
    std::optional<Value> whole = readCommonKeyword(declaration.value);
    if (std::any_of(systemFonts.begin(), systemFonts.end(), [&](std::string_view name) {
            return equalsIgnoringCase(declaration.value, name);
        })) {
        whole = Value{Value::Kind::Initial};
    }
    if (whole) {
        for (const Property property : {Property::Family, Property::Slant, Property::Weight,
                                        Property::Stretch, Property::Size}) {
            add(property, *whole);
        }
        return;
    }
    const auto shorthand = readShorthand(declaration.value);
    if (!shorthand) {
        return;
    }
    const auto family = readValue(Property::Family, shorthand->families, texts);
    if (family && family->kind == Value::Kind::Absolute) { // "inherit" is no family
        add(Property::Family, *family);
        add(Property::Slant, shorthand->slant);
        add(Property::Weight, shorthand->weight);
        add(Property::Stretch, shorthand->stretch);
        add(Property::Size, shorthand->size);
    }
}

} // namespace

PropertyDeclarations readDeclarations(std::string_view block, TextTable& texts) {
    PropertyDeclarations result;
    std::string blanked;
    DeclarationCursor cursor(blankComments(block, blanked));
    for (Declaration declaration; cursor.next(declaration);) {
        if (equalsIgnoringCase(declaration.name, "font")) {
            addShorthand(declaration, texts, result);
        } else if (const auto property = propertyNamed(declaration.name)) {
            if (const auto value = readValue(*property, declaration.value, texts)) {
                result.push_back({*property, declaration.important, false, *value});
            }
        }
    }
    return result;
}

std::size_t familiesInShorthand(std::string_view value) {
    const auto shorthand = readShorthand(value);
    return shorthand ? static_cast<std::size_t>(shorthand->families.data() - value.data())
                     : std::string_view::npos;
}

} // namespace host::css
