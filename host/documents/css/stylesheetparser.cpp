// SPDX-License-Identifier: MIT
// Takes style sheets apart: rules and at-rules.
#include "host/documents/css/stylesheetparser.h"

#include "host/documents/css/families.h"

#include <algorithm>
#include <utility>

namespace host::css {

bool appliesToScreens(std::string_view media) {
    media = trim(media);
    if (media.empty()) {
        return true;
    }
    for (std::size_t start = 0; start <= media.size();) {
        const std::size_t comma = std::min(media.find(',', start), media.size());
        std::string_view query = trim(media.substr(start, comma - start));
        if (query.size() > 5 && equalsIgnoringCase(query.substr(0, 5), "only ")) {
            query = trim(query.substr(5));
        }
        if (equalsIgnoringCase(query, "all") || equalsIgnoringCase(query, "screen")) {
            return true;
        }
        start = comma + 1;
    }
    return false;
}

std::string foldFamily(std::string_view family) {
    std::string result(family);
    for (char& c : result) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
    }
    return result;
}

StyleSheets::Parser::Extent StyleSheets::Parser::extentOf(std::size_t start, std::size_t end,
                                                          bool mayLackBlock) const {
    const std::string_view part = text_.substr(0, end);
    const std::size_t open = findOutside(part, start, mayLackBlock ? "{;" : "{");
    if (open == end || text_[open] == ';') {
        return {open, open, open, std::min(open + 1, end)};
    }
    const std::size_t close = findOutside(part, open + 1, "}");
    return {open, open + 1, close, std::min(close + 1, end)};
}

void StyleSheets::Parser::readRules(std::size_t start, std::size_t end, unsigned depth) {
    while (start < end) {
        const std::string_view rest = text_.substr(start, end - start);
        if (isBlank(rest.front()) || rest.front() == '}' || rest.front() == ';') {
            ++start;
        } else if (rest.starts_with("/*")) {
            start += skipComment(rest, 0);
        } else if (rest.starts_with("<!--")) {
            start += 4;
        } else if (rest.starts_with("-->")) {
            start += 3;
        } else {
            const bool atRule = rest.front() == '@';
            const Extent extent = extentOf(start, end, atRule);
            if (atRule) {
                readAtRule(start, extent, depth);
            } else {
                readRule(text_.substr(start, extent.preludeEnd - start), extent.blockStart,
                         extent.blockEnd);
            }
            start = extent.next;
        }
    }
}

void StyleSheets::Parser::readAtRule(std::size_t start, const Extent& extent, unsigned depth) {
    const std::string_view prelude = text_.substr(start + 1, extent.preludeEnd - start - 1);
    std::size_t nameEnd = 0;
    while (nameEnd < prelude.size() && isNameChar(prelude[nameEnd])) {
        ++nameEnd;
    }
    const std::string_view name = prelude.substr(0, nameEnd);
    if (equalsIgnoringCase(name, "font-face")) {
        readFontFace(text_.substr(extent.blockStart, extent.blockEnd - extent.blockStart));
    } else if (equalsIgnoringCase(name, "media") && depth < maximumNesting &&
               appliesToScreens(prelude.substr(nameEnd))) {
        readRules(extent.blockStart, extent.blockEnd, depth + 1);
    }
}

void StyleSheets::Parser::readFontFace(std::string_view block) {
    std::string family;
    bool hasSource = false;
    std::string blanked;
    DeclarationCursor cursor(blankComments(block, blanked));
    for (Declaration declaration; cursor.next(declaration);) {
        if (equalsIgnoringCase(declaration.name, "font-family")) {
            const auto families = readFamilies(declaration.value);
            family = families.empty() ? std::string() : families.front().name;
        } else if (equalsIgnoringCase(declaration.name, "src")) {
            // A merely local source brings nothing along.
            hasSource =
                hasSource || foldFamily(declaration.value).find("url(") != std::string::npos;
        }
    }
    if (hasSource && !family.empty()) {
        sheets_.embedded_.insert(foldFamily(family));
    }
}

void StyleSheets::Parser::readRule(std::string_view selectors, std::size_t start, std::size_t end) {
    PropertyDeclarations declarations = readDeclarations(text_.substr(start, end - start), texts_);
    if (declarations.empty()) {
        return;
    }
    const auto block = static_cast<std::uint32_t>(sheets_.blocks_.size());
    sheets_.blocks_.push_back({sheets_.sheets_, start, end, std::move(declarations)});

    for (std::size_t position = 0; position <= selectors.size();) {
        const std::size_t comma = findOutside(selectors, position, ",");
        if (auto selector = readSelector(selectors.substr(position, comma - position))) {
            selector->block = block;
            sheets_.addSelector(std::move(*selector));
        }
        position = comma + 1;
    }
}

void StyleSheets::addSelector(Selector selector) {
    const auto number = static_cast<std::uint32_t>(selectors_.size());
    const Compound& last = selector.compounds.front();
    if (!last.id.empty()) {
        byId_[last.id].push_back(number);
    } else if (!last.classes.empty()) {
        byClass_[last.classes.front()].push_back(number);
    } else if (!last.type.empty()) {
        byType_[last.type].push_back(number);
    } else {
        byNothing_.push_back(number);
    }
    asksForSiblings_ = asksForSiblings_ || selector.asksForSiblings();
    selectors_.push_back(std::move(selector));
}

void StyleSheets::addSheet(std::string_view sheet, TextTable& texts) {
    Parser(*this, sheet, texts).readRules(0, sheet.size(), 0);
    ++sheets_;
}

} // namespace host::css
