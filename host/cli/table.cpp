// SPDX-License-Identifier: MIT
// Columns by the width that characters have on a terminal.
#include "host/cli/table.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <glib.h>

namespace host {

namespace {

/// Columns are not made wider for the sake of a longer text in one line.
constexpr std::size_t widestColumn = 60;

/// The width on a terminal, of a text that is printable.
std::size_t widthOf(const std::string& text) {
    std::size_t width = 0;
    for (const char* c = text.c_str(); *c != '\0'; c = g_utf8_next_char(c)) {
        const gunichar code = g_utf8_get_char(c);
        width += g_unichar_iszerowidth(code) != 0 ? 0 : g_unichar_iswide(code) != 0 ? 2 : 1;
    }
    return width;
}

/// Characters that move the cursor or turn the text around it.
bool isControl(std::uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x61C || code == 0x200E ||
           code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

} // namespace

std::string printable(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const gunichar code =
            g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
        const bool valid = g_unichar_validate(code) != 0;
        const std::size_t length =
            valid ? static_cast<std::size_t>(g_utf8_next_char(text.data()) - text.data()) : 1;
        result += valid && !isControl(code) ? text.substr(0, length) : "?";
        text.remove_prefix(length);
    }
    return result;
}

std::string tableOf(const std::vector<TableLine>& lines) {
    std::vector<std::size_t> widths(lines.empty() ? 0 : lines.front().size());
    for (const TableLine& line : lines) {
        for (std::size_t column = 0; column < widths.size(); ++column) {
            widths[column] =
                std::max(widths[column], std::min(widthOf(line[column]), widestColumn));
        }
    }
    std::string text;
    for (const TableLine& line : lines) {
        text += ' ';
        for (std::size_t column = 0; column < widths.size(); ++column) {
            text += ' ' + line[column];
            if (column + 1 < widths.size()) {
                const std::size_t width = widthOf(line[column]);
                text.append(width < widths[column] ? widths[column] - width + 1 : 1, ' ');
            }
        }
        text += '\n';
    }
    return text;
}

} // namespace host
