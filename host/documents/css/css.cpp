// SPDX-License-Identifier: MIT
// The syntax of style sheets.
#include "host/documents/css/css.h"

#include "host/documents/utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <glib.h>

namespace host::css {
namespace {

std::size_t skipString(std::string_view text, std::size_t position) noexcept {
    const char quote = text[position++];
    while (position < text.size() && text[position] != quote) {
        // A string that is not closed ends with its line.
        if (text[position] == '\n') {
            return position;
        }
        position += text[position] == '\\' ? 2 : 1;
    }
    return position < text.size() ? position + 1 : text.size();
}

bool startsComment(std::string_view text, std::size_t position) noexcept {
    return text[position] == '/' && position + 1 < text.size() && text[position + 1] == '*';
}

/// The position behind the "url(...)" without quotes that begins at `position`, in which quotes
/// and "/*" stand for themselves; `position` when none begins there.
std::size_t skipUrl(std::string_view text, std::size_t position) noexcept {
    if (!equalsIgnoringCase(text.substr(position, 4), "url(") ||
        (position != 0 && isNameChar(text[position - 1]))) {
        return position;
    }
    std::size_t end = position + 4;
    while (end < text.size() && isBlank(text[end])) {
        ++end;
    }
    if (end < text.size() && (text[end] == '"' || text[end] == '\'')) {
        return position;
    }
    while (end < text.size() && text[end] != ')') {
        end += text[end] == '\\' ? 2 : 1;
    }
    return end < text.size() ? end + 1 : text.size();
}

} // namespace

bool isBlank(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isNameChar(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

std::string_view trim(std::string_view text) noexcept {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) noexcept {
    if (text.size() != lowerCase.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c) != lowerCase[i]) {
            return false;
        }
    }
    return true;
}

std::size_t skipComment(std::string_view text, std::size_t position) noexcept {
    const std::size_t end = text.find("*/", position + 2);
    return end == std::string_view::npos ? text.size() : end + 2;
}

std::string_view blankComments(std::string_view text, std::string& storage) {
    if (text.find("/*") == std::string_view::npos) {
        return text;
    }
    storage = text;
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        if (c == '"' || c == '\'') {
            i = skipString(text, i);
        } else if (c == '\\') {
            i += 2;
        } else if (startsComment(text, i)) {
            const std::size_t end = skipComment(text, i);
            std::fill(storage.begin() + static_cast<std::ptrdiff_t>(i),
                      storage.begin() + static_cast<std::ptrdiff_t>(end), ' ');
            i = end;
        } else {
            i = std::max(skipUrl(text, i), i + 1);
        }
    }
    return storage;
}

bool endsSeparated(std::string_view block) noexcept {
    std::size_t start = 0;
    for (std::size_t end = 0; (end = findOutside(block, start, ";")) < block.size();) {
        start = end + 1;
    }
    return trim(block.substr(start)).empty();
}

std::size_t findOutside(std::string_view text, std::size_t position,
                        std::string_view stops) noexcept {
    std::size_t depth = 0;
    while (position < text.size()) {
        const char c = text[position];
        if (depth == 0 && stops.find(c) != std::string_view::npos) {
            return position;
        }
        switch (c) {
        case '"':
        case '\'':
            position = skipString(text, position);
            continue;
        case '\\':
            position += 2;
            continue;
        case '/':
            position = startsComment(text, position) ? skipComment(text, position) : position + 1;
            continue;
        case 'u':
        case 'U':
            position = std::max(skipUrl(text, position), position + 1);
            continue;
        case '(':
        case '[':
        case '{':
            ++depth;
            break;
        case ')':
        case ']':
        case '}':
            depth -= depth != 0 ? 1U : 0U;
            break;
        default:
            break;
        }
        ++position;
    }
    return text.size();
}

std::string unescape(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result += text[i];
            continue;
        }
        if (++i == text.size()) {
            break;
        }
        if (g_ascii_isxdigit(text[i]) == 0) {
            // An escaped line end continues a string; any other character stands for itself.
            if (text[i] != '\n') {
                result += text[i];
            }
            continue;
        }
        std::uint32_t code = 0;
        const std::string_view digits = text.substr(i, 6);
        const auto* const end =
            std::from_chars(digits.data(), digits.data() + digits.size(), code, 16).ptr;
        i += static_cast<std::size_t>(end - digits.data());
        appendUtf8(result, code);
        if (i == text.size() || !isBlank(text[i])) {
            --i; // one blank after the digits belongs to the escape
        }
    }
    return result;
}

std::string quoted(std::string_view text, char quote, bool ascii) {
    std::string result(1, quote);
    while (!text.empty()) {
        const gunichar code = g_utf8_get_char(text.data());
        const auto length = std::min(
            static_cast<std::size_t>(g_utf8_next_char(text.data()) - text.data()), text.size());
        // With '>' the text might end the CDATA section that it stands in.
        if (code < 0x20 || code == 0x7F || code == '>' || (ascii && code >= 0x80)) {
            std::array<char, 12> escape{};
            const auto end = std::to_chars(escape.begin(), escape.end(), code, 16).ptr;
            result.append(1, '\\').append(escape.begin(), end).append(1, ' ');
        } else {
            result.append(code == static_cast<unsigned char>(quote) || code == '\\' ? "\\" : "");
            result.append(text.substr(0, length));
        }
        text.remove_prefix(length);
    }
    return result += quote;
}

bool DeclarationCursor::next(Declaration& declaration) noexcept {
    while (!rest_.empty()) {
        const std::size_t end = findOutside(rest_, 0, ";");
        std::string_view part = trim(rest_.substr(0, end));
        rest_.remove_prefix(end < rest_.size() ? end + 1 : end);
        while (part.starts_with("/*")) {
            part = trim(part.substr(skipComment(part, 0)));
        }
        const std::size_t colon = part.find(':');
        if (colon == std::string_view::npos) {
            continue;
        }
        std::string_view name = part.substr(0, colon);
        if (const std::size_t comment = name.find("/*"); comment != std::string_view::npos) {
            name = name.substr(0, comment);
        }
        declaration.name = trim(name);
        declaration.whole = part;
        declaration.value = trim(part.substr(colon + 1));
        declaration.important = false;
        const std::size_t bang = findOutside(declaration.value, 0, "!");
        if (bang < declaration.value.size()) {
            if (!equalsIgnoringCase(trim(declaration.value.substr(bang + 1)), "important")) {
                continue;
            }
            declaration.important = true;
            declaration.value = trim(declaration.value.substr(0, bang));
        }
        if (!declaration.name.empty() && !declaration.value.empty()) {
            return true;
        }
    }
    return false;
}

} // namespace host::css
