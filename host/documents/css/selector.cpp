// SPDX-License-Identifier: MIT
// Takes selectors apart.
#include "host/documents/css/selector.h"

#include "host/documents/css/css.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <glib.h>
#include <iterator>
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
        for (Combinator combinator = Combinator::Within; !rest_.empty();) {
            Compound compound;
            compound.combinator = combinator;
            if (!readCompound(compound)) {
                return std::nullopt;
            }
            selector.compounds.push_back(std::move(compound));
            skipBlanks();
            combinator = accept('>')   ? Combinator::ChildOf
                         : accept('+') ? Combinator::After
                         : accept('~') ? Combinator::Behind
                                       : Combinator::Within;
            skipBlanks();
            // A combinator must have something to its right.
            if (combinator != Combinator::Within && rest_.empty()) {
                return std::nullopt;
            }
        }
        if (selector.compounds.empty()) {
            return std::nullopt;
        }
        std::reverse(selector.compounds.begin(), selector.compounds.end());
        selector.specificity = weight_.specificity();
        return selector;
    }

private:
    /// What a selector's specificity is made of.
    struct Weight {
        std::uint32_t ids = 0;
        std::uint32_t classes = 0;
        std::uint32_t types = 0;

        std::uint32_t specificity() const {
            const auto capped = [](std::uint32_t count) { return std::min(count, 0x3FFU); };
            return capped(ids) << 20 | capped(classes) << 10 | capped(types);
        }
    };

    bool readCompound(Compound& compound) {
        bool isFirst = true;
        for (; startsPart(); isFirst = false) {
            if (!readPart(compound)) {
                return false;
            }
        }
        return !isFirst;
    }

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
            ++weight_.ids;
            compound.id = name();
            return !compound.id.empty();
        }
        if (accept('.')) {
            ++weight_.classes;
            compound.classes.push_back(name());
            return !compound.classes.back().empty();
        }
        if (accept('[')) {
            ++weight_.classes;
            return readAttribute(compound);
        }
        if (accept(':')) {
            return readPseudoClass(compound);
        }
        if (accept('*')) {
            compound.type.clear();
            return true;
        }
        if (accept('|')) {
            // What stood before it was a namespace prefix.
            weight_.types -= compound.type.empty() ? 0U : 1U;
            compound.type.clear();
            return true;
        }
        ++weight_.types;
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

    bool readPseudoClass(Compound& compound) {
        std::string title = name();
        std::transform(title.begin(), title.end(), title.begin(), g_ascii_tolower);
        if (accept('(')) {
            const std::size_t end = findOutside(rest_, 0, ")");
            if (end == rest_.size()) {
                return false;
            }
            const std::string_view inside = rest_.substr(0, end);
            rest_.remove_prefix(end + 1);
            return readFunction(compound, title, inside);
        }
        ++weight_.classes;
        if (title == "root") {
            compound.root = true;
            return true;
        }
        if (std::find(neverTrue.begin(), neverTrue.end(), title) != neverTrue.end()) {
            compound.never = true;
            return true;
        }
        const auto ends = {std::pair("first-", std::pair(true, false)),
                           std::pair("last-", std::pair(false, true)),
                           std::pair("only-", std::pair(true, true))};
        for (const auto& [which, sides] : ends) {
            for (const bool ofType : {false, true}) {
                if (title == std::string(which) + (ofType ? "of-type" : "child")) {
                    for (const bool fromEnd : {false, true}) {
                        if (fromEnd ? sides.second : sides.first) {
                            compound.places.push_back({{0, 1}, ofType, fromEnd});
                        }
                    }
                    return true;
                }
            }
        }
        return false;
    }

    bool readFunction(Compound& compound, std::string_view title, std::string_view inside) {
        if (title == "not" || title == "is" || title == "where") {
            std::vector<Compound> choices;
            if (!readChoices(inside, title != "where", choices)) {
                return false;
            }
            if (title == "not") {
                std::move(choices.begin(), choices.end(), std::back_inserter(compound.noneOf));
            } else {
                compound.anyOf.push_back(std::move(choices));
            }
            return true;
        }
        ++weight_.classes;
        constexpr std::string_view begin = "nth-";
        constexpr std::string_view last = "last-";
        if (!title.starts_with(begin)) {
            return false;
        }
        title.remove_prefix(begin.size());
        const bool fromEnd = title.starts_with(last);
        title.remove_prefix(fromEnd ? last.size() : 0);
        const auto series = readPlaceSeries(inside);
        if (!series || (title != "child" && title != "of-type")) {
            return false;
        }
        compound.places.push_back({*series, title == "of-type", fromEnd});
        return true;
    }

    /// Compounds with commas between. The weightiest of them counts, if they are `weighed`.
    bool readChoices(std::string_view inside, bool weighed, std::vector<Compound>& choices) {
        if (depth_ == maximumNesting) {
            return false;
        }
        Weight most;
        for (std::size_t start = 0; start <= inside.size();) {
            const std::size_t comma = findOutside(inside, start, ",");
            SelectorReader reader(inside.substr(start, comma - start));
            reader.depth_ = depth_ + 1;
            reader.skipBlanks();
            if (!reader.readCompound(choices.emplace_back())) {
                return false;
            }
            reader.skipBlanks();
            if (!reader.rest_.empty()) {
                return false; // a combinator
            }
            if (reader.weight_.specificity() > most.specificity()) {
                most = reader.weight_;
            }
            start = comma + 1;
        }
        if (weighed) {
            weight_.ids += most.ids;
            weight_.classes += most.classes;
            weight_.types += most.types;
        }
        return true;
    }

    /// They ask for a pointer, a keyboard, a history.
    static constexpr std::array<std::string_view, 7> neverTrue = {
        "hover", "active", "focus", "focus-within", "focus-visible", "visited", "target"};

    std::string_view rest_;
    Weight weight_;
    unsigned depth_ = 0;
};

} // namespace

bool Compound::asksForSiblings() const {
    const auto asks = [](const Compound& compound) { return compound.asksForSiblings(); };
    return combinator == Combinator::After || combinator == Combinator::Behind || !places.empty() ||
           std::any_of(noneOf.begin(), noneOf.end(), asks) ||
           std::any_of(anyOf.begin(), anyOf.end(), [&](const std::vector<Compound>& choices) {
               return std::any_of(choices.begin(), choices.end(), asks);
           });
}

bool Selector::asksForSiblings() const {
    return std::any_of(compounds.begin(), compounds.end(),
                       [](const Compound& compound) { return compound.asksForSiblings(); });
}

std::optional<Selector> readSelector(std::string_view text) {
    return SelectorReader(text).read();
}

} // namespace host::css
