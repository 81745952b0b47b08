// SPDX-License-Identifier: MIT
// The syntax of style sheets: declarations, escapes, and skipping what is nested or quoted. All
// results are views into the caller's text, so that a writer can find the place again.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace host::css {

/// How deep conditional blocks may be nested; deeper ones are not looked into.
inline constexpr unsigned maximumNesting = 16;

[[nodiscard]] bool isBlank(char c) noexcept;
/// Of an identifier without escapes.
[[nodiscard]] bool isNameChar(char c) noexcept;
[[nodiscard]] std::string_view trim(std::string_view text) noexcept;
[[nodiscard]] bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) noexcept;

/// The position after the comment that begins at `position`; the end of the text if it is open.
[[nodiscard]] std::size_t skipComment(std::string_view text, std::size_t position) noexcept;

/// `text` with blanks in the place of its comments, so that all places stay what they are.
/// `storage` takes the changed text; without comments `text` itself is the result.
[[nodiscard]] std::string_view blankComments(std::string_view text, std::string& storage);

/// The position of the first of `stops` outside quotes, comments, escapes, brackets and unquoted
/// "url(...)", else the end of the text.
[[nodiscard]] std::size_t findOutside(std::string_view text, std::size_t position,
                                      std::string_view stops) noexcept;

/// An identifier or the inside of a string with its escapes resolved, as UTF-8.
[[nodiscard]] std::string unescape(std::string_view text);

/// A text as a string token in one of the two quotes; `ascii` to escape all that is not ASCII.
[[nodiscard]] std::string quoted(std::string_view text, char quote, bool ascii);

struct Declaration {
    std::string_view name;  ///< as written
    std::string_view value; ///< trimmed, without "!important"
    std::string_view whole; ///< name to the end of value or "!important", trimmed
    bool important = false;
};

/// Walks the declarations of a block or a style attribute; malformed ones are passed over. Values
/// keep their comments: see blankComments.
class DeclarationCursor {
public:
    explicit DeclarationCursor(std::string_view block) noexcept : rest_(block) {}
    [[nodiscard]] bool next(Declaration& declaration) noexcept;

private:
    std::string_view rest_;
};

/// Whether another declaration may follow a block as it stands: it is empty or ends in ';'.
[[nodiscard]] bool endsSeparated(std::string_view block) noexcept;

} // namespace host::css
