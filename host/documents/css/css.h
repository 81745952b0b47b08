// SPDX-License-Identifier: MIT
// The syntax of style sheets: declarations, escapes, and skipping what is nested or quoted. All
// results are views into the caller's text, so that a writer can find the place again.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace host::css {

bool isBlank(char c) noexcept;
/// Of an identifier without escapes.
bool isNameChar(char c) noexcept;
std::string_view trim(std::string_view text) noexcept;
bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) noexcept;

/// The position after the comment that begins at `position`; the end of the text if it is open.
std::size_t skipComment(std::string_view text, std::size_t position) noexcept;

/// `text` with blanks in the place of its comments, so that all places stay what they are.
/// @param storage takes the changed text; `text` itself is the result when it has no comments
std::string_view blankComments(std::string_view text, std::string& storage);

/// The position of the first of `stops` outside quotes, comments, escapes, brackets and unquoted
/// "url(...)", else the end of the text.
std::size_t findOutside(std::string_view text, std::size_t position,
                        std::string_view stops) noexcept;

/// An identifier or the inside of a string with its escapes resolved, as UTF-8.
std::string unescape(std::string_view text);

/// A text as a string token. @param quote ' or " @param ascii escape all that is not ASCII
std::string quoted(std::string_view text, char quote, bool ascii);

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
    bool next(Declaration& declaration) noexcept;

private:
    std::string_view rest_;
};

/// Whether another declaration may follow a block as it stands: it is empty or ends in ';'.
bool endsSeparated(std::string_view block) noexcept;

} // namespace host::css
