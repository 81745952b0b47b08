// SPDX-License-Identifier: MIT
// Writes replies, in the form that their reader turns into XML: it takes a trailing "</cmd>" off
// each longer line, joins the lines with nothing between them and writes every "&" as "&amp;".
// So an ampersand stands as it is, no entity can be used, "<" goes into a CDATA section, and a
// line feed becomes a blank.
#pragma once

#include <concepts>
#include <string>
#include <string_view>

namespace manager {

/// `value` as it is to stand in a reply. Line ends and characters that XML 1.0 forbids become
/// blanks; bytes that are no UTF-8 become U+FFFD.
void appendReplyValue(std::string& reply, std::string_view value);

/// One reply, written from top to bottom.
class ReplyText {
public:
    /// The header line and the protocol version, 2.0.
    explicit ReplyText(std::string_view word);

    /// An element on a line of its own. `name` is a name of XML.
    void element(std::string_view name, std::string_view value);
    template <std::integral Number>
    void element(std::string_view name, Number value) {
        element(name, std::string_view(std::to_string(value)));
    }
    void flag(std::string_view name, bool value) { element(name, value ? "1" : "0"); }
    /// `<fontInfo>` with its name and value, on one line.
    void fontInfo(std::string_view name, std::string_view value);
    void beginFont() { text_ += "<font>\n"; }
    void endFont() { text_ += "</font>\n"; }

    /// Closes the reply and hands it over.
    [[nodiscard]] std::string finish();

private:
    void tagged(std::string_view name, std::string_view value);

    std::string text_;
};

} // namespace manager
