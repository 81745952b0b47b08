// SPDX-License-Identifier: MIT
// Looking at XML as text: the places of attributes in a tag, character data with the way back to
// the source. For well-formed source only: a parser has been over it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host::xml {

struct AttributePlace {
    std::string_view name; ///< with its prefix
    std::size_t start = 0; ///< of the value in the source, without quotes
    std::size_t end = 0;
    char quote = '"';
};

/// Walks the attributes of the tag that begins at `tagStart` with '<'.
class AttributeCursor {
public:
    AttributeCursor(std::string_view source, std::size_t tagStart);
    bool next(AttributePlace& attribute);

private:
    std::string_view source_;
    std::size_t position_;
};

/// False when the tag has no attribute of exactly this name.
[[nodiscard]] bool findAttribute(std::string_view source, std::size_t tagStart,
                                 std::string_view name, AttributePlace& attribute);

/// The name in a tag, with its prefix.
[[nodiscard]] std::string_view tagName(std::string_view source, std::size_t tagStart);

/// Where "/>" or ">" of a tag begins.
[[nodiscard]] std::size_t tagEnd(std::string_view source, std::size_t tagStart);

/// Character data as the parser sees it, each byte with the range of the source it comes from.
struct DecodedText {
    struct Origin {
        std::uint32_t start;
        std::uint32_t end;
        bool cdata;
    };
    std::string text;
    std::vector<Origin> origins; ///< one per byte of text
    bool complete = true;        ///< no entity of the document's own was met
};

/// Resolves character references and the five predefined entities; takes CDATA sections as they
/// stand and leaves comments and processing instructions out.
[[nodiscard]] DecodedText decode(std::string_view source, std::size_t start, std::size_t end);

} // namespace host::xml
