// SPDX-License-Identifier: MIT
// Values made safe for the reader's way of folding a reply.
#include "manager/exchange/replytext.h"

#include <cstdint>
#include <utility>

namespace manager {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD

/// The length of the well-formed UTF-8 sequence that `text` begins with; 0 when there is none.
std::size_t sequenceLength(std::string_view text, char32_t& character) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length == 0 || length > text.size()) {
        return 0;
    }
    static constexpr std::uint8_t leadMasks[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    character = lead & leadMasks[length];
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) {
            return 0;
        }
        character = (character << 6U) | (byte(i) & 0x3FU);
    }
    static constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    return character < smallest[length] || surrogate || character > 0x10FFFF ? 0 : length;
}

// A carriage return is legal, but the reader's parser would make a line feed of it.
bool isWritable(char32_t character) {
    return (character >= 0x20 || character == '\t') && character != 0xFFFE && character != 0xFFFF;
}

} // namespace

void appendReplyValue(std::string& reply, std::string_view value) {
    std::size_t brackets = 0; // "]" directly before
    while (!value.empty()) {
        const char c = value.front();
        char32_t character = 0;
        const std::size_t length = sequenceLength(value, character);
        if (length == 0) {
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
        value.remove_prefix(length == 0 ? 1 : length);
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
