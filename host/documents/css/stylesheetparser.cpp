// SPDX-License-Identifier: MIT
// Takes style sheets apart: rules, at-rules, selectors.
#include "host/documents/css/stylesheetparser.h"

#include <algorithm>
#include <utility>

namespace host::css {
namespace {

/// Deepest nesting of conditional blocks.
constexpr unsigned maximumNesting = 16;

bool isNameChar(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

/// Reads the compounds of one selector from left to right.
class SelectorReader {
public:
    explicit SelectorReader(std::string_view text) : rest_(trim(text)) {}

    bool atEnd() const { return rest_.empty(); }
    char front() const { return rest_.front(); }
    bool accept(char c) {
        if (rest_.empty() || rest_.front() != c) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }
    bool startsCompound() const {
        return !rest_.empty() &&
               (isNameChar(rest_.front()) || rest_.front() == '\\' ||
                std::string_view("*|#.[:").find(rest_.front()) != std::string_view::npos);
    }
    /// Blanks and comments. @return whether there were any
    bool skipBlanks() {
        const std::size_t before = rest_.size();
        while (!rest_.empty()) {
            if (isBlank(rest_.front())) {
                rest_.remove_prefix(1);
            } else if (rest_.starts_with("/*")) {
                rest_.remove_prefix(skipComment(rest_, 0));
            } else {
                break;
            }
        }
        return rest_.size() != before;
    }
    std::string name() {
        std::size_t end = 0;
        while (end < rest_.size() && (isNameChar(rest_[end]) || rest_[end] == '\\')) {
            if (rest_[end++] != '\\' || end == rest_.size()) {
                continue;
            }
            const auto isHex = [](char c) {
                return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f');
            };
            if (!isHex(rest_[end])) {
                ++end;
                continue;
            }
            const std::size_t first = end;
            while (end < rest_.size() && end < first + 6 && isHex(rest_[end])) {
                ++end;
            }
            end += end < rest_.size() && isBlank(rest_[end]) ? 1U : 0U;
        }
        std::string result = unescape(rest_.substr(0, end));
        rest_.remove_prefix(end);
        return result;
    }
    /// The inside of "[...]", up to which '[' has been read.
    bool bracketed(std::string_view& inside) {
        const std::size_t end = findOutside(rest_, 0, "]");
        if (end == rest_.size()) {
            return false;
        }
        inside = rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        return true;
    }

private:
    std::string_view rest_;
};

std::string unquoted(std::string_view text) {
    text = trim(text);
    if (text.size() > 1 && (text.front() == '"' || text.front() == '\'') &&
        text.back() == text.front()) {
        text = text.substr(1, text.size() - 2);
    }
    return unescape(text);
}

} // namespace

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
    const std::size_t open = [&] {
        // A brace counts as nesting for findOutside, so it is a stop of its own here.
        return findOutside(part, start, mayLackBlock ? "{;" : "{");
    }();
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
        SelectorReader reader(selectors.substr(position, comma - position));
        position = comma + 1;

        Selector selector;
        selector.block = block;
        std::uint32_t ids = 0;
        std::uint32_t classes = 0;
        std::uint32_t types = 0;
        bool valid = true;
        bool childOf = false;
        reader.skipBlanks();
        while (valid && !reader.atEnd()) {
            Compound compound;
            compound.childOf = childOf;
            valid = reader.startsCompound();
            while (valid && reader.startsCompound()) {
                if (reader.accept('#')) {
                    compound.id = reader.name();
                    valid = !compound.id.empty();
                    ++ids;
                } else if (reader.accept('.')) {
                    compound.classes.push_back(reader.name());
                    valid = !compound.classes.back().empty();
                    ++classes;
                } else if (reader.accept('[')) {
                    std::string_view inside;
                    valid = reader.bracketed(inside);
                    AttributeTest test;
                    const std::size_t equals = inside.find('=');
                    std::string_view name = inside.substr(0, equals);
                    if (equals != std::string_view::npos) {
                        test.relation = '=';
                        if (!name.empty() &&
                            std::string_view("~|^$*").find(name.back()) != std::string_view::npos) {
                            test.relation = name.back();
                            name.remove_suffix(1);
                        }
                        test.value = unquoted(inside.substr(equals + 1));
                    }
                    name = trim(name);
                    const std::size_t bar = name.rfind('|');
                    test.name = unescape(name.substr(bar + 1)); // npos + 1 is none
                    valid = valid && !test.name.empty();
                    // Which namespace a prefix stands for is not asked.
                    test.orPrefixed = name.starts_with("*|");
                    if (bar != std::string_view::npos && bar != 0 && !test.orPrefixed) {
                        test.name.insert(0, 1, ':');
                    }
                    compound.attributes.push_back(std::move(test));
                    ++classes;
                } else if (reader.accept(':')) {
                    valid = reader.name() == "root";
                    compound.root = true;
                    ++classes;
                } else if (reader.accept('*')) {
                    compound.type.clear();
                } else if (reader.accept('|')) {
                    // What stood before it was a namespace prefix.
                    types -= compound.type.empty() ? 0U : 1U;
                    compound.type.clear();
                } else {
                    compound.type = reader.name();
                    ++types;
                    valid = !compound.type.empty();
                }
            }
            selector.compounds.push_back(std::move(compound));
            reader.skipBlanks();
            childOf = reader.accept('>');
            reader.skipBlanks();
            // A combinator must have something to its right.
            valid = valid && !(childOf && reader.atEnd());
        }
        if (valid && !selector.compounds.empty()) {
            std::reverse(selector.compounds.begin(), selector.compounds.end());
            const auto capped = [](std::uint32_t count) { return std::min(count, 0x3FFU); };
            selector.specificity = capped(ids) << 20 | capped(classes) << 10 | capped(types);
            sheets_.addSelector(std::move(selector));
        }
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
    selectors_.push_back(std::move(selector));
}

void StyleSheets::addSheet(std::string_view sheet, TextTable& texts) {
    Parser(*this, sheet, texts).readRules(0, sheet.size(), 0);
    ++sheets_;
}

} // namespace host::css
