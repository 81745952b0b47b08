// SPDX-License-Identifier: MIT
#include "faces/fontfaults.h"

#include "faces/remark.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace faces {

namespace {

// In the order of FontFault. None begins with a value, and no two values are neighbours.
constexpr std::array texts = {
    marked("cannot be read: %1"),
    marked("not a regular file"),
    marked("an empty file"),
    marked("larger than %1 MiB"),
    marked("ends at byte %1 inside %2"),
    marked("not a TrueType, OpenType or Type 1 font (byte 0)"),
    marked("table '%1' reaches byte %2 of a file of %3 bytes"),
    marked("a collection of %1 fonts"),
    marked("no Type 1 segment at byte %1"),
    marked("a Type 1 segment reaches byte %1 of a file of %2 bytes"),
    marked("no face with a name, outlines and a supported format"),
    marked("FreeType finds no font in it"),
};
static_assert(texts.size() == static_cast<std::size_t>(FontFault::UnknownToReader) + 1);

/// Takes the literal text up to the next value off the pattern, and that value's mark.
std::string_view takeLiteral(std::string_view& pattern) {
    const std::string_view literal = pattern.substr(0, pattern.find('%'));
    pattern.remove_prefix(std::min(literal.size() + 2, pattern.size()));
    return literal;
}

/// The values of `text` where it is of this pattern.
std::optional<std::vector<std::string>> valuesIn(std::string_view text, std::string_view pattern) {
    std::vector<std::string> values;
    const bool endsInValue = pattern[pattern.size() - 2] == '%';
    text.remove_prefix(takeLiteral(pattern).size()); // which was found there
    while (!pattern.empty()) {
        const std::string_view literal = takeLiteral(pattern);
        const std::size_t end = text.find(literal);
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        values.emplace_back(text.substr(0, end));
        text.remove_prefix(end + literal.size());
    }
    if (endsInValue) {
        values.emplace_back(text);
        text = {};
    }
    return text.empty() ? std::optional(values) : std::nullopt;
}

} // namespace

std::string textOf(FontFault fault, std::initializer_list<std::string_view> values) {
    std::string_view pattern = texts[static_cast<std::size_t>(fault)];
    std::string text;
    for (const std::string_view value : values) {
        text.append(takeLiteral(pattern)).append(value);
    }
    return text.append(pattern);
}

std::optional<ToldFault> faultIn(std::string_view text) {
    for (const char* const fault : texts) {
        std::string_view rest = fault;
        const std::string begin = ": " + std::string(takeLiteral(rest));
        const std::size_t place = text.rfind(begin);
        if (place == std::string_view::npos) {
            continue;
        }
        if (auto values = valuesIn(text.substr(place + 2), fault)) {
            return ToldFault{std::string(text.substr(0, place)), fault, std::move(*values)};
        }
    }
    return std::nullopt;
}

} // namespace faces
