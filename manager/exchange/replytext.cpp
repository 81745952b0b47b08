// SPDX-License-Identifier: MIT
// Values made safe for the reader's way of folding a reply.
#include "manager/exchange/replytext.h"

#include <algorithm>
#include <glib.h>
#include <utility>

namespace manager {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD
constexpr gunichar firstError = 0x80000000; ///< what GLib tells of bytes that are no character

// A carriage return is legal, but the reader's parser would make a line feed of it.
bool isWritable(gunichar character) {
    return (character >= 0x20 || character == '\t') && character != 0xFFFE && character != 0xFFFF;
}

// The greater part of any reply, which is taken as it is.
bool isPlain(char c) {
    return c >= ' ' && c < 0x7F && c != '<' && c != '>' && c != ']';
}

} // namespace

void appendReplyValue(std::string& reply, std::string_view value) {
    std::size_t brackets = 0; // "]" directly before
    for (;;) {
        const auto* const special = std::find_if_not(value.begin(), value.end(), isPlain);
        const auto plain = static_cast<std::size_t>(special - value.begin());
        reply.append(value, 0, plain);
        value.remove_prefix(plain);
        if (value.empty()) {
            return;
        }
        brackets = plain == 0 ? brackets : 0;
        const char c = value.front();
        const gunichar character =
            c == '\0' ? 0
                      : g_utf8_get_char_validated(value.data(), static_cast<gssize>(value.size()));
        const bool valid = character < firstError;
        const auto length =
            valid ? static_cast<std::size_t>(g_unichar_to_utf8(character, nullptr)) : 1;
        if (!valid) {
            reply += replacement;
        } else if (!isWritable(character)) {
            reply += ' ';
        } else if (c == '<') {
            reply += "<![CDATA[<]]>";
        } else if (c == '>' && brackets >= 2) {
            reply += "<![CDATA[>]]>"; // "]]>" is not allowed in text
        } else {
            reply.append(value, 0, length);
        }
        brackets = c == ']' ? brackets + 1 : 0;
        value.remove_prefix(length);
    }
}

ReplyText::ReplyText(std::string_view word) {
    element("cmd", word);
    element("protocolVersion", "2.0");
}

void ReplyText::tagged(std::string_view name, std::string_view value) {
    text_.append("<").append(name).append(">");
    appendReplyValue(text_, value);
    text_.append("</").append(name).append(">");
}

void ReplyText::element(std::string_view name, std::string_view value) {
    tagged(name, value);
    text_ += '\n';
}

void ReplyText::fontInfo(std::string_view name, std::string_view value) {
    text_ += "<fontInfo>";
    tagged("name", name);
    tagged("value", value);
    text_ += "</fontInfo>\n";
}

std::string ReplyText::finish() {
    text_ += "</cmd>\n";
    return std::move(text_);
}

} // namespace manager
