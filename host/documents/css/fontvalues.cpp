// SPDX-License-Identifier: MIT
// Reading the font properties of style sheets.
#include "host/documents/css/fontvalues.h"

#include "host/documents/css/css.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <system_error>

namespace host::css {
namespace {

struct StretchKeyword {
    std::string_view name;
    std::uint32_t stretch;
};
constexpr std::array<StretchKeyword, 9> stretchKeywords{{{"ultra-condensed", 50000},
                                                         {"extra-condensed", 62500},
                                                         {"condensed", 75000},
                                                         {"semi-condensed", 87500},
                                                         {"normal", 100000},
                                                         {"semi-expanded", 112500},
                                                         {"expanded", 125000},
                                                         {"extra-expanded", 150000},
                                                         {"ultra-expanded", 200000}}};

/// A number with nothing but `unit` behind it.
bool readNumber(std::string_view text, std::string_view unit, double& number) {
    if (text.size() > 30 || !text.ends_with(unit)) {
        return false;
    }
    const std::string digits(text.substr(0, text.size() - unit.size()));
    if (digits.empty() || digits.find_first_not_of("0123456789.+") != std::string::npos) {
        return false;
    }
    char* end = nullptr;
    number = std::strtod(digits.c_str(), &end);
    return *end == '\0' && std::isfinite(number);
}

bool readWeight(std::string_view text, Value& value) {
    if (equalsIgnoringCase(text, "bolder") || equalsIgnoringCase(text, "lighter")) {
        value.kind = text.size() == 6 ? Value::Kind::Up : Value::Kind::Down;
        return true;
    }
    double number = 0;
    if (equalsIgnoringCase(text, "normal")) {
        number = 400;
    } else if (equalsIgnoringCase(text, "bold")) {
        number = 700;
    } else if (!readNumber(text, "", number) || number < 1 || number > 1000) {
        return false;
    }
    value.number = static_cast<std::uint32_t>(std::lround(number));
    return true;
}

bool readSlant(std::string_view text, Value& value) {
    // An angle may follow the word.
    const std::string_view word = text.substr(0, text.find_first_of(" \t\n\r"));
    const auto slant = equalsIgnoringCase(text, "normal")    ? Slant::Upright
                       : equalsIgnoringCase(text, "italic")  ? Slant::Italic
                       : equalsIgnoringCase(word, "oblique") ? Slant::Oblique
                                                             : static_cast<Slant>(0xFF);
    value.number = static_cast<std::uint32_t>(slant);
    return value.number != 0xFF;
}

bool readStretch(std::string_view text, Value& value) {
    if (equalsIgnoringCase(text, "wider") || equalsIgnoringCase(text, "narrower")) {
        value.kind = text.size() == 5 ? Value::Kind::Up : Value::Kind::Down;
        return true;
    }
    for (const StretchKeyword& keyword : stretchKeywords) {
        if (equalsIgnoringCase(text, keyword.name)) {
            value.number = keyword.stretch;
            return true;
        }
    }
    double number = 0;
    if (!readNumber(text, "%", number) || number > 1000000) {
        return false;
    }
    value.number = static_cast<std::uint32_t>(std::lround(number * 1000));
    return true;
}

/// Text of size 0 is not shown. Relative sizes go by the inherited one.
bool readSize(std::string_view text, Value& value) {
    static constexpr std::array<std::string_view, 8> keywords{
        "xx-small", "x-small", "small", "medium", "large", "x-large", "xx-large", "xxx-large"};
    if (equalsIgnoringCase(text, "larger") || equalsIgnoringCase(text, "smaller")) {
        value.kind = Value::Kind::Inherit;
        return true;
    }
    if (std::any_of(keywords.begin(), keywords.end(),
                    [text](std::string_view word) { return equalsIgnoringCase(text, word); }) ||
        text.find('(') != std::string_view::npos) {
        return true;
    }
    text.remove_prefix(text.starts_with('+') ? 1 : 0);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::invalid_argument || number < 0) {
        return false;
    }
    const std::string_view unit(end, static_cast<std::size_t>(text.data() + text.size() - end));
    if (number == 0 && error == std::errc()) {
        value.number = 1;
    } else if (unit == "%" || equalsIgnoringCase(unit, "em") || equalsIgnoringCase(unit, "ex") ||
               equalsIgnoringCase(unit, "ch")) {
        value.kind = Value::Kind::Inherit;
    }
    return true;
}

/// Keywords that every property takes. What holds a variable is not known: inherited.
bool readCommonKeyword(std::string_view text, Value& value) {
    if (equalsIgnoringCase(text, "inherit") || equalsIgnoringCase(text, "unset") ||
        text.find("var(") != std::string_view::npos) {
        value.kind = Value::Kind::Inherit;
        return true;
    }
    if (equalsIgnoringCase(text, "initial") || equalsIgnoringCase(text, "revert")) {
        value.kind = Value::Kind::Initial;
        return true;
    }
    return false;
}

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

/// `font: style variant weight stretch size[/line-height] families`
bool readShorthand(std::string_view text, Shorthand& result) {
    std::string_view rest = text;
    while (true) {
        const std::string_view word = takeWord(rest);
        if (word.empty()) {
            return false;
        }
        Value value;
        if (equalsIgnoringCase(word, "normal") || equalsIgnoringCase(word, "small-caps")) {
            continue;
        }
        double size = 0;
        const bool number = readNumber(word, "", size);
        // A bare number is a weight until the size came, and a bare size is not valid before the
        // families; "font: 12 Foo" is written nevertheless, so only a plausible weight is one.
        if (readWeight(word, value) && (!number || (size >= 100 && !trim(rest).empty()))) {
            result.weight = value;
        } else if (value = {}; readSlant(word, value)) {
            result.slant = value;
            std::string_view ahead = rest;
            if (takeWord(ahead).ends_with("deg")) {
                rest = ahead;
            }
        } else if (value = {}; readStretch(word, value) && !word.ends_with('%')) {
            result.stretch = value;
        } else {
            const bool bracketed = word.find('(') != std::string_view::npos;
            readSize(bracketed ? word : word.substr(0, word.find('/')), result.size);
            rest = trim(rest);
            // "12px / 1.5 Foo" is the same as "12px/1.5 Foo".
            if (word.ends_with('/')) {
                takeWord(rest);
            } else if (rest.starts_with('/')) {
                if (takeWord(rest).size() == 1) {
                    takeWord(rest);
                }
            }
            result.families = trim(rest);
            return !result.families.empty();
        }
    }
}

void readFontShorthand(const Declaration& declaration, TextTable& texts,
                       PropertyDeclarations& result) {
    const auto add = [&](Property property, Value value) {
        result.push_back({property, declaration.important, true, value});
    };
    const auto addAll = [&](Value value) {
        for (const Property property : {Property::Family, Property::Slant, Property::Weight,
                                        Property::Stretch, Property::Size}) {
            add(property, value);
        }
    };
    Value common;
    if (readCommonKeyword(declaration.value, common)) {
        addAll(common);
        return;
    }
    static constexpr std::array<std::string_view, 6> systemFonts{
        "caption", "icon", "menu", "message-box", "small-caption", "status-bar"};
    if (std::any_of(systemFonts.begin(), systemFonts.end(), [&](std::string_view name) {
            return equalsIgnoringCase(declaration.value, name);
        })) {
        addAll({Value::Kind::Initial, 0});
        return;
    }
    Shorthand shorthand;
    Value family;
    if (readShorthand(declaration.value, shorthand) &&
        readValue(Property::Family, shorthand.families, texts, family) &&
        family.kind == Value::Kind::Absolute) { // "inherit" is no family
        add(Property::Family, family);
        add(Property::Slant, shorthand.slant);
        add(Property::Weight, shorthand.weight);
        add(Property::Stretch, shorthand.stretch);
        add(Property::Size, shorthand.size);
    }
}

} // namespace

std::vector<FamilyName> readFamilies(std::string_view list) {
    std::vector<FamilyName> result;
    for (std::size_t position = 0; position < list.size();) {
        const std::size_t comma = findOutside(list, position, ",");
        const std::string_view part = trim(list.substr(position, comma - position));
        position = comma + 1;
        if (part.empty()) {
            continue;
        }
        FamilyName family;
        family.start = static_cast<std::size_t>(part.data() - list.data());
        family.end = family.start + part.size();
        const char quote = part.front();
        if (quote == '"' || quote == '\'') {
            const bool closed = part.size() > 1 && part.back() == quote;
            family.name = unescape(part.substr(1, part.size() - (closed ? 2 : 1)));
        } else {
            // Words of an unquoted name are joined by one blank.
            const std::string name = unescape(part);
            for (const char c : name) {
                if (!isBlank(c)) {
                    family.name += c;
                } else if (!family.name.empty() && family.name.back() != ' ') {
                    family.name += ' ';
                }
            }
        }
        family.name = std::string(trim(family.name));
        if (!family.name.empty()) {
            // Quoted generic names are written by programs that mean the generic family.
            family.generic = isGenericFamily(family.name);
            result.push_back(std::move(family));
        }
    }
    return result;
}

std::uint32_t TextTable::add(std::string_view text) {
    const auto found = numbers_.find(text);
    if (found != numbers_.end()) {
        return found->second;
    }
    const auto number = static_cast<std::uint32_t>(texts_.size());
    texts_.push_back(numbers_.emplace(text, number).first->first);
    return number;
}

bool readPropertyName(std::string_view name, Property& property) noexcept {
    if (name.empty()) {
        return false;
    }
    struct Entry {
        std::string_view name;
        Property property;
    };
    static constexpr std::array<Entry, 9> entries{
        {{"font-family", Property::Family},
         {"font-style", Property::Slant},
         {"font-weight", Property::Weight},
         {"font-stretch", Property::Stretch},
         {"font-width", Property::Stretch},
         {"font-size", Property::Size},
         {"display", Property::Display},
         {"visibility", Property::Visibility},
         {"-inkscape-font-specification", Property::Hint}}};
    const char first = static_cast<char>(name.front() | 0x20);
    if (first != 'f' && first != 'd' && first != 'v' && first != '-') {
        return false;
    }
    for (const Entry& entry : entries) {
        if (equalsIgnoringCase(name, entry.name)) {
            property = entry.property;
            return true;
        }
    }
    return false;
}

bool readValue(Property property, std::string_view text, TextTable& texts, Value& value) {
    value = {};
    text = trim(text);
    if (text.empty()) {
        return false;
    }
    if (readCommonKeyword(text, value)) {
        return true;
    }
    switch (property) {
    case Property::Family:
        value.number = texts.add(text);
        return !readFamilies(text).empty();
    case Property::Hint:
        value.number = texts.add(text);
        return true;
    case Property::Slant:
        return readSlant(text, value);
    case Property::Weight:
        return readWeight(text, value);
    case Property::Stretch:
        return readStretch(text, value);
    case Property::Visibility:
        value.number = equalsIgnoringCase(text, "visible") ? 0 : 1;
        return value.number == 0 || equalsIgnoringCase(text, "hidden") ||
               equalsIgnoringCase(text, "collapse");
    case Property::Size:
        return readSize(text, value);
    case Property::Display:
        value.number = equalsIgnoringCase(text, "none") ? 1 : 0;
        return true;
    }
    return false;
}

PropertyDeclarations readDeclarations(std::string_view block, TextTable& texts) {
    PropertyDeclarations result;
    std::string blanked;
    DeclarationCursor cursor(blankComments(block, blanked));
    for (Declaration declaration; cursor.next(declaration);) {
        Property property{};
        Value value;
        if (equalsIgnoringCase(declaration.name, "font")) {
            readFontShorthand(declaration, texts, result);
        } else if (readPropertyName(declaration.name, property) &&
                   readValue(property, declaration.value, texts, value)) {
            result.push_back({property, declaration.important, false, value});
        }
    }
    return result;
}

std::size_t familiesInShorthand(std::string_view value) {
    Shorthand shorthand;
    return readShorthand(value, shorthand)
               ? static_cast<std::size_t>(shorthand.families.data() - value.data())
               : std::string_view::npos;
}

int relativeWeight(int inherited, bool bolder) noexcept {
    if (bolder) {
        return inherited < 350 ? 400 : inherited < 550 ? 700 : std::max(inherited, 900);
    }
    return inherited < 550 ? std::min(inherited, 100) : inherited < 750 ? 400 : 700;
}

std::uint32_t relativeStretch(std::uint32_t inherited, bool wider) noexcept {
    if (wider) {
        for (const StretchKeyword& keyword : stretchKeywords) {
            if (keyword.stretch > inherited) {
                return keyword.stretch;
            }
        }
        return inherited;
    }
    for (auto keyword = stretchKeywords.rbegin(); keyword != stretchKeywords.rend(); ++keyword) {
        if (keyword->stretch < inherited) {
            return keyword->stretch;
        }
    }
    return inherited;
}

} // namespace host::css
