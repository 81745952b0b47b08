// SPDX-License-Identifier: MIT
// Looking at XML as text.
#include "host/documents/svg/xmlsource.h"

#include "host/documents/utf8.h"

#include <algorithm>
#include <array>

namespace host::xml {
namespace {

constexpr std::string_view blanks = " \t\n\r";

bool isBlank(char c) {
    return blanks.find(c) != std::string_view::npos;
}

struct Entity {
    std::string_view name;
    char character;
};
constexpr std::array<Entity, 5> predefined{
    {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};

/// The text of a reference without '&' and ';'; false for an entity that is not known.
bool appendReference(std::string_view name, std::string& text) {
    if (name.starts_with('#')) {
        const bool hex = name.starts_with("#x");
        std::uint32_t code = 0;
        for (const char c : name.substr(hex ? 2 : 1)) {
            const std::uint32_t digit = c <= '9'
                                            ? static_cast<std::uint32_t>(c - '0')
                                            : static_cast<std::uint32_t>((c | 0x20) - 'a') + 10;
            code = std::min<std::uint32_t>(code * (hex ? 16 : 10) + digit, 0x10FFFF);
        }
        appendUtf8(text, code);
        return true;
    }
    for (const Entity& entity : predefined) {
        if (entity.name == name) {
            text += entity.character;
            return true;
        }
    }
    return false;
}

} // namespace

std::string_view tagName(std::string_view source, std::size_t tagStart) {
    const std::size_t end = source.find_first_of(" \t\n\r/>", tagStart + 1);
    return source.substr(tagStart + 1, std::min(end, source.size()) - tagStart - 1);
}

AttributeCursor::AttributeCursor(std::string_view source, std::size_t tagStart)
    : source_(source), position_(tagStart + 1 + tagName(source, tagStart).size()) {}

bool AttributeCursor::next(AttributePlace& attribute) {
    while (position_ < source_.size() && isBlank(source_[position_])) {
        ++position_;
    }
    if (position_ >= source_.size() || source_[position_] == '>' || source_[position_] == '/') {
        return false;
    }
    const std::size_t nameEnd = source_.find_first_of(" \t\n\r=", position_);
    const std::size_t open = source_.find_first_of("\"'", position_);
    if (nameEnd == std::string_view::npos || open == std::string_view::npos) {
        return false;
    }
    const std::size_t close = source_.find(source_[open], open + 1);
    if (close == std::string_view::npos) {
        return false;
    }
    attribute = {source_.substr(position_, nameEnd - position_), open + 1, close, source_[open]};
    position_ = close + 1;
    return true;
}

bool findAttribute(std::string_view source, std::size_t tagStart, std::string_view name,
                   AttributePlace& attribute) {
    AttributeCursor cursor(source, tagStart);
    while (cursor.next(attribute)) {
        if (attribute.name == name) {
            return true;
        }
    }
    return false;
}

std::size_t tagEnd(std::string_view source, std::size_t tagStart) {
    AttributeCursor cursor(source, tagStart);
    std::size_t end = tagStart + 1 + tagName(source, tagStart).size();
    for (AttributePlace attribute; cursor.next(attribute);) {
        end = attribute.end + 1;
    }
    return std::min(source.find_first_of("/>", end), source.size());
}

DecodedText decode(std::string_view source, std::size_t start, std::size_t end) {
    DecodedText result;
    const auto note = [&result](std::size_t from, std::size_t to, bool cdata) {
        result.origins.resize(result.text.size(), {static_cast<std::uint32_t>(from),
                                                   static_cast<std::uint32_t>(to), cdata});
    };
    const auto endOf = [&](std::string_view closing, std::size_t from) {
        const std::size_t found = source.find(closing, from);
        return found == std::string_view::npos ? end : std::min(found, end);
    };
    std::size_t position = start;
    const auto take = [&](bool cdata) {
        const bool isLineEnd = source[position] == '\r';
        if (!isLineEnd || position + 1 >= end || source[position + 1] != '\n') { // one of the two
            result.text += isLineEnd ? '\n' : source[position];
            note(position, position + 1, cdata);
        }
        ++position;
    };
    while (position < end) {
        const std::string_view rest = source.substr(position, end - position);
        if (rest.starts_with("<![CDATA[")) {
            const std::size_t close = endOf("]]>", position);
            for (position += 9; position < close;) {
                take(true);
            }
            position = close + 3;
        } else if (rest.starts_with("<!--")) {
            position = endOf("-->", position) + 3;
        } else if (rest.starts_with("<?")) {
            position = endOf("?>", position) + 2;
        } else if (rest.front() == '&') {
            const std::size_t semicolon = endOf(";", position);
            result.complete = appendReference(source.substr(position + 1, semicolon - position - 1),
                                              result.text) &&
                              result.complete;
            note(position, semicolon + 1, false);
            position = semicolon + 1;
        } else {
            take(false);
        }
    }
    return result;
}

} // namespace host::xml
