// SPDX-License-Identifier: MIT
// Style sheets: the rules that say something about fonts, and which of them match an element.
#pragma once

#include "host/documents/css/declarations.h"
#include "host/documents/css/selector.h"
#include "host/documents/textmap.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace host::css {

using ElementId = std::uint32_t;
inline constexpr ElementId noElement = 0xFFFFFFFFU;

/// How an element stands to its siblings. Places begin with 1.
struct Siblings {
    ElementId before = noElement; ///< the one before it
    std::uint32_t place = 1;
    std::uint32_t placeFromEnd = 1;
    std::uint32_t placeOfType = 1; ///< among those of its type
    std::uint32_t placeOfTypeFromEnd = 1;
};

/// What selectors ask about elements.
class SelectorSubject {
public:
    virtual ~SelectorSubject() = default;
    virtual ElementId parentOf(ElementId element) const = 0; ///< noElement for the root
    virtual std::string_view typeOf(ElementId element) const = 0;
    virtual std::string_view idOf(ElementId element) const = 0;
    virtual std::string_view classesOf(ElementId element) const = 0; ///< blank-separated
    struct NamedValue {
        std::string_view name; ///< without its prefix, but with ':' if it has one; as long-lived as
                               ///< the subject
        std::string value;
    };
    /// All attributes, in their order.
    virtual std::vector<NamedValue> attributesOf(ElementId element) const = 0;
    /// Where it stands among the children of its parent. Only for sheets that ask for siblings.
    virtual const Siblings& siblingsOf(ElementId element) const = 0;
};

/// A block of declarations and where it stands.
struct RuleBlock {
    std::uint32_t sheet = 0; ///< in the order of addSheet
    std::size_t start = 0;   ///< the block's inside in the text of its sheet
    std::size_t end = 0;
    PropertyDeclarations declarations;
};

struct RuleMatch {
    std::uint32_t block;
    std::uint32_t specificity;
    std::uint32_t order; ///< later rules win over earlier ones of the same specificity
};

/// Of pseudo-classes those that ask for a place in the tree are known, ":not()", ":is()" and
/// ":where()" of compounds, and those that need a pointer, a keyboard or a history, which match
/// nothing; so do selectors with any other, or with pseudo-elements. Of media blocks those for
/// "all" and "screen" apply; other conditional blocks and imports are passed over.
class StyleSheets {
public:
    /// `sheet` need not outlive the call.
    void addSheet(std::string_view sheet, TextTable& texts);

    bool empty() const noexcept { return blocks_.empty(); }
    /// Whether a selector asks for siblings. Then the subject has to know them.
    bool asksForSiblings() const noexcept { return asksForSiblings_; }
    const RuleBlock& block(std::uint32_t number) const { return blocks_[number]; }

    /// Families that come with the document by @font-face, folded by foldFamily.
    const std::unordered_set<std::string>& embeddedFamilies() const noexcept { return embedded_; }

private:
    friend class Matcher;
    class Parser;

    void addSelector(Selector selector);

    using Index = TextMap<std::vector<std::uint32_t>>;

    std::vector<RuleBlock> blocks_;
    std::vector<Selector> selectors_;
    Index byId_;
    Index byClass_;
    Index byType_;
    std::vector<std::uint32_t> byNothing_;
    std::unordered_set<std::string> embedded_;
    std::uint32_t sheets_ = 0;
    bool asksForSiblings_ = false;
};

/// Finds the rules that match elements, one element after another. What it has taken apart of an
/// element, classes and attributes, it keeps for those that stand within.
class Matcher {
public:
    /// `sheets` and `subject` outlive the matcher.
    Matcher(const StyleSheets& sheets, const SelectorSubject& subject)
        : sheets_(sheets), subject_(subject) {}

    /// Adds all matches, in no particular order. Costs one look-up per id, class and type of the
    /// element and one test per rule found there.
    void match(ElementId element, std::vector<RuleMatch>& matches);

    /// What all of that has cost: the bytes of names and values that were looked at, and as much
    /// as a few bytes for each test. For callers that limit it.
    std::size_t work() const noexcept { return work_; }

private:
    struct Facts {
        bool classesKnown = false;
        bool attributesKnown = false;
        std::unordered_set<std::string_view> classes;
        std::unordered_map<std::string_view, std::string> attributes;
    };
    Facts& factsOf(ElementId element);
    const std::unordered_set<std::string_view>& classSet(ElementId element,
                                                         std::string_view classes);
    const std::string* attribute(ElementId element, std::string_view name);
    bool hasClass(ElementId element, std::string_view name);
    bool relates(const AttributeTest& test, std::string_view value);
    bool matches(ElementId element, const Compound& compound);
    bool stands(ElementId element, const PlaceTest& test);
    using Compounds = std::span<const Compound>;
    std::optional<ElementId> matchRun(ElementId element, Compounds run);
    std::optional<ElementId> matchFamily(ElementId element, Compounds family);
    bool matches(ElementId element, const Selector& selector);
    void test(const std::vector<std::uint32_t>& candidates, ElementId element,
              std::vector<RuleMatch>& matches);

    const StyleSheets& sheets_;
    const SelectorSubject& subject_;
    std::unordered_map<ElementId, Facts> facts_;
    ElementId current_ = noElement;
    std::size_t work_ = 0;
};

/// Families compare without case.
[[nodiscard]] std::string foldFamily(std::string_view family);

/// Whether a media query list takes screens in without further conditions.
[[nodiscard]] bool appliesToScreens(std::string_view media);

/// Calls `action` with each blank-separated word.
template <typename Action>
void forEachWord(std::string_view words, Action&& action) {
    for (std::size_t start = 0; start < words.size();) {
        const std::size_t end = std::min(words.find_first_of(" \t\n\r\f", start), words.size());
        if (end > start) {
            action(words.substr(start, end - start));
        }
        start = end + 1;
    }
}

} // namespace host::css
