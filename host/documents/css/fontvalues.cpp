// SPDX-License-Identifier: MIT
// Reading the font properties of style sheets.
#include "host/documents/css/fontvalues.h"

#include "host/documents/css/css.h"
#include "host/documents/css/families.h"
#include "host/documents/face.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <system_error>

namespace host::css {
namespace {

std::uint32_t thousandths(double percent) {
    return static_cast<std::uint32_t>(std::lround(percent * 1000));
}

/// A number with nothing but `unit` behind it.
std::optional<double> readNumber(std::string_view text, std::string_view unit) {
    if (text.size() > 30 || !text.ends_with(unit)) {
        return std::nullopt;
    }
    const std::string digits(text.substr(0, text.size() - unit.size()));
    if (digits.empty() || digits.find_first_not_of("0123456789.+") != std::string::npos) {
        return std::nullopt;
    }
    char* end = nullptr;
    const double number = std::strtod(digits.c_str(), &end);
    return *end == '\0' && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

constexpr Value absolute(std::uint32_t number) {
    return {Value::Kind::Absolute, number};
}

std::optional<Value> readWeight(std::string_view text) {
    if (equalsIgnoringCase(text, "bolder")) {
        return Value{Value::Kind::Up};
    }
    if (equalsIgnoringCase(text, "lighter")) {
        return Value{Value::Kind::Down};
    }
    if (equalsIgnoringCase(text, "normal")) {
        return absolute(400);
    }
    if (equalsIgnoringCase(text, "bold")) {
        return absolute(700);
    }
    const auto number = readNumber(text, "");
    if (!number || *number < 1 || *number > 1000) {
        return std::nullopt;
    }
    return absolute(static_cast<std::uint32_t>(std::lround(*number)));
}

std::optional<Value> readSlant(std::string_view text) {
    const auto value = [](Slant slant) { return absolute(static_cast<std::uint32_t>(slant)); };
    if (equalsIgnoringCase(text, "normal")) {
        return value(Slant::Upright);
    }
    if (equalsIgnoringCase(text, "italic")) {
        return value(Slant::Italic);
    }
    // An angle may follow the word.
    const std::string_view word = text.substr(0, text.find_first_of(" \t\n\r"));
    return equalsIgnoringCase(word, "oblique") ? std::optional(value(Slant::Oblique))
                                               : std::nullopt;
}

std::optional<Value> readStretch(std::string_view text) {
    if (equalsIgnoringCase(text, "wider")) {
        return Value{Value::Kind::Up};
    }
    if (equalsIgnoringCase(text, "narrower")) {
        return Value{Value::Kind::Down};
    }
    for (const NamedStretch& stretch : namedStretches) {
        if (equalsIgnoringCase(text, stretch.keyword)) {
            return absolute(thousandths(stretch.percent));
        }
    }
    const auto number = readNumber(text, "%");
    return number && *number <= 1000000 ? std::optional(absolute(thousandths(*number)))
                                        : std::nullopt;
}

/// Text of size 0 is not shown. Relative sizes go by the inherited one.
std::optional<Value> readSize(std::string_view text) {
    static constexpr std::array<std::string_view, 8> keywords{
        "xx-small", "x-small", "small", "medium", "large", "x-large", "xx-large", "xxx-large"};
    if (equalsIgnoringCase(text, "larger") || equalsIgnoringCase(text, "smaller")) {
        return Value{Value::Kind::Inherit};
    }
    if (std::any_of(keywords.begin(), keywords.end(),
                    [text](std::string_view word) { return equalsIgnoringCase(text, word); }) ||
        text.find('(') != std::string_view::npos) {
        return absolute(0);
    }
    text.remove_prefix(text.starts_with('+') ? 1 : 0);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::invalid_argument || number < 0) {
        return std::nullopt;
    }
    if (number == 0 && error == std::errc()) {
        return absolute(1);
    }
    const std::string_view unit(end, static_cast<std::size_t>(text.data() + text.size() - end));
    const bool relative = unit == "%" || equalsIgnoringCase(unit, "em") ||
                          equalsIgnoringCase(unit, "ex") || equalsIgnoringCase(unit, "ch");
    return relative ? Value{Value::Kind::Inherit} : absolute(0);
}

std::optional<Value> readVisibility(std::string_view text) {
    if (equalsIgnoringCase(text, "visible")) {
        return absolute(0);
    }
    const bool hides = equalsIgnoringCase(text, "hidden") || equalsIgnoringCase(text, "collapse");
    return hides ? std::optional(absolute(1)) : std::nullopt;
}

} // namespace

std::uint32_t TextTable::add(std::string_view text) {
    const auto found = numbers_.find(text);
    if (found != numbers_.end()) {
        return found->second;
    }
    const auto number = static_cast<std::uint32_t>(texts_.size());
    texts_.push_back(numbers_.emplace(text, number).first->first);
    return number;
}

std::optional<Property> propertyNamed(std::string_view name) noexcept {
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
    for (const Entry& entry : entries) {
        if (equalsIgnoringCase(name, entry.name)) {
            return entry.property;
        }
    }
    return std::nullopt;
}

std::optional<Value> readCommonKeyword(std::string_view text) {
    if (equalsIgnoringCase(text, "inherit") || equalsIgnoringCase(text, "unset") ||
        text.find("var(") != std::string_view::npos) {
        return Value{Value::Kind::Inherit};
    }
    if (equalsIgnoringCase(text, "initial") || equalsIgnoringCase(text, "revert")) {
        return Value{Value::Kind::Initial};
    }
    return std::nullopt;
}

std::optional<Value> readOwnValue(Property property, std::string_view text) {
    switch (property) {
    case Property::Slant:
        return readSlant(text);
    case Property::Weight:
        return readWeight(text);
    case Property::Stretch:
        return readStretch(text);
    case Property::Visibility:
        return readVisibility(text);
    case Property::Size:
        return readSize(text);
    case Property::Display:
        return absolute(equalsIgnoringCase(text, "none") ? 1 : 0);
    case Property::Family:
    case Property::Hint:
        break;
    }
    return std::nullopt;
}

std::optional<Value> readValue(Property property, std::string_view text, TextTable& texts) {
    text = trim(text);
    if (text.empty()) {
        return std::nullopt;
    }
    if (const auto common = readCommonKeyword(text)) {
        return common;
    }
    if (property == Property::Hint ||
        (property == Property::Family && !readFamilies(text).empty())) {
        return absolute(texts.add(text));
    }
    return readOwnValue(property, text);
}

int relativeWeight(int inherited, bool bolder) noexcept {
    if (bolder) {
        return inherited < 350 ? 400 : inherited < 550 ? 700 : std::max(inherited, 900);
    }
    return inherited < 550 ? std::min(inherited, 100) : inherited < 750 ? 400 : 700;
}

std::uint32_t relativeStretch(std::uint32_t inherited, bool wider) noexcept {
    if (wider) {
        const auto next = std::find_if(
            namedStretches.begin(), namedStretches.end(),
            [inherited](const NamedStretch& s) { return thousandths(s.percent) > inherited; });
        return next == namedStretches.end() ? inherited : thousandths(next->percent);
    }
    const auto next = std::find_if(
        namedStretches.rbegin(), namedStretches.rend(),
        [inherited](const NamedStretch& s) { return thousandths(s.percent) < inherited; });
    return next == namedStretches.rend() ? inherited : thousandths(next->percent);
}

} // namespace host::css
