// SPDX-License-Identifier: MIT
// Takes selectors apart.
#include "host/documents/css/selector.h"

#include "host/documents/css/css.h"

#include <algorithm>
#include <cstddef>
#include <glib.h>
#include <utility>

namespace host::css {
namespace {

std::string unquoted(std::string_view text) {
    text = trim(text);
    if (text.size() > 1 && (text.front() == '"' || text.front() == '\'') &&
        text.back() == text.front()) {
        text = text.substr(1, text.size() - 2);
    }
    return unescape(text);
}

/// The position behind the escape that begins at `position`.
std::size_t skipEscape(std::string_view text, std::size_t position) {
    const std::size_t first = position + 1;
    if (first >= text.size() || g_ascii_isxdigit(text[first]) == 0) {
        return std::min(first + 1, text.size());
    }
    std::size_t end = first;
    while (end < text.size() && end < first + 6 && g_ascii_isxdigit(text[end]) != 0) {
        ++end;
    }
    return end < text.size() && isBlank(text[end]) ? end + 1 : end;
}

/// The inside of "[...]"; its name is empty when it is not valid.
AttributeTest readAttributeTest(std::string_view inside) {
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
    // Which namespace a prefix stands for is not asked.
    test.orPrefixed = name.starts_with("*|");
    if (!test.name.empty() && bar != std::string_view::npos && bar != 0 && !test.orPrefixed) {
        test.name.insert(0, 1, ':');
    }
    return test;
}

/// Reads one selector from left to right.
class SelectorReader {
public:
    explicit SelectorReader(std::string_view text) : rest_(text) {}

    std::optional<Selector> read() {
        Selector selector;
        skipBlanks();
        for (bool childOf = false; !rest_.empty();) {
            Compound compound;
            compound.childOf = childOf;
            if (!startsPart()) {
                return std::nullopt;
            }
            while (startsPart()) {
                if (!readPart(compound)) {
                    return std::nullopt;
                }
            }
            selector.compounds.push_back(std::move(compound));
            skipBlanks();
            childOf = accept('>');
            skipBlanks();
            // A combinator must have something to its right.
            if (childOf && rest_.empty()) {
                return std::nullopt;
            }
        }
        if (selector.compounds.empty()) {
            return std::nullopt;
        }
        std::reverse(selector.compounds.begin(), selector.compounds.end());
        const auto capped = [](std::uint32_t count) { return std::min(count, 0x3FFU); };
        selector.specificity = capped(ids_) << 20 | capped(classes_) << 10 | capped(types_);
        return selector;
    }

private:
    bool accept(char c) {
        if (rest_.empty() || rest_.front() != c) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    bool startsPart() const {
        return !rest_.empty() &&
               (isNameChar(rest_.front()) || rest_.front() == '\\' ||
                std::string_view("*|#.[:").find(rest_.front()) != std::string_view::npos);
    }

    void skipBlanks() {
        while (!rest_.empty()) {
            if (isBlank(rest_.front())) {
                rest_.remove_prefix(1);
            } else if (rest_.starts_with("/*")) {
                rest_.remove_prefix(skipComment(rest_, 0));
            } else {
                break;
            }
        }
    }

    std::string name() {
        std::size_t end = 0;
        while (end < rest_.size() && (isNameChar(rest_[end]) || rest_[end] == '\\')) {
            end = rest_[end] == '\\' ? skipEscape(rest_, end) : end + 1;
        }
        std::string result = unescape(rest_.substr(0, end));
        rest_.remove_prefix(end);
        return result;
    }

    /// False for what makes the whole selector void.
    bool readPart(Compound& compound) {
        if (accept('#')) {
            ++ids_;
            compound.id = name();
            return !compound.id.empty();
        }
        if (accept('.')) {
            ++classes_;
            compound.classes.push_back(name());
            return !compound.classes.back().empty();
        }
        if (accept('[')) {
            ++classes_;
            return readAttribute(compound);
        }
        if (accept(':')) {
            ++classes_;
            compound.root = true;
            return name() == "root";
        }
        if (accept('*')) {
            compound.type.clear();
            return true;
        }
        if (accept('|')) {
            // What stood before it was a namespace prefix.
            types_ -= compound.type.empty() ? 0U : 1U;
            compound.type.clear();
            return true;
        }
        ++types_;
        compound.type = name();
        return !compound.type.empty();
    }

    bool readAttribute(Compound& compound) {
        const std::size_t end = findOutside(rest_, 0, "]");
        if (end == rest_.size()) {
            return false;
        }
        compound.attributes.push_back(readAttributeTest(rest_.substr(0, end)));
        rest_.remove_prefix(end + 1);
        return !compound.attributes.back().name.empty();
    }

    std::string_view rest_;
    std::uint32_t ids_ = 0;
    std::uint32_t classes_ = 0;
    std::uint32_t types_ = 0;
};

} // namespace

std::optional<Selector> readSelector(std::string_view text) {
    return SelectorReader(text).read();
}

} // namespace host::css
