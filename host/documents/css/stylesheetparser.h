// SPDX-License-Identifier: MIT
// Takes a style sheet apart into rules; used by StyleSheets alone.
#pragma once

#include "host/documents/css/css.h"
#include "host/documents/css/stylesheet.h"

#include <string>
#include <string_view>

namespace host::css {

class StyleSheets::Parser {
public:
    Parser(StyleSheets& sheets, std::string_view text, TextTable& texts)
        : sheets_(sheets), text_(text), texts_(texts) {}

    void readRules(std::size_t start, std::size_t end, unsigned depth);

private:
    /// Where an at-rule or a rule has its block; both at its end when it has none.
    struct Extent {
        std::size_t preludeEnd;
        std::size_t blockStart;
        std::size_t blockEnd;
        std::size_t next;
    };
    Extent extentOf(std::size_t start, std::size_t end, bool mayLackBlock) const;
    void readAtRule(std::size_t start, const Extent& extent, unsigned depth);
    void readFontFace(std::string_view block);
    void readRule(std::string_view selectors, std::size_t start, std::size_t end);

    StyleSheets& sheets_;
    std::string_view text_;
    TextTable& texts_;
};

} // namespace host::css
