// SPDX-License-Identifier: MIT
// Matches selectors against elements.
#include "host/documents/css/stylesheet.h"

#include <algorithm>
#include <utility>

namespace host::css {
namespace {

/// What a test costs beyond the bytes that it looks at, in the time of as many bytes.
constexpr std::size_t testCost = 8;
/// Class lists up to this many bytes are faster searched than taken apart.
constexpr std::size_t shortList = 64;
/// Elements of which something is kept; more than any drawing nests.
constexpr std::size_t keptElements = 1024;

bool hasWord(std::string_view words, std::string_view word) {
    bool found = false;
    forEachWord(words, [&](std::string_view candidate) { found = found || candidate == word; });
    return found;
}

} // namespace

Matcher::Facts& Matcher::factsOf(ElementId element) {
    if (facts_.size() >= keptElements && !facts_.contains(element)) {
        std::unordered_map<ElementId, Facts> kept;
        for (ElementId id = current_; id != noElement; id = subject_.parentOf(id)) {
            if (auto facts = facts_.extract(id)) {
                kept.insert(std::move(facts));
            }
        }
        facts_ = std::move(kept);
    }
    return facts_[element];
}

const std::unordered_set<std::string_view>& Matcher::classSet(ElementId element,
                                                              std::string_view classes) {
    Facts& facts = factsOf(element);
    if (!facts.classesKnown) {
        facts.classesKnown = true;
        work_ += classes.size();
        forEachWord(classes, [&facts](std::string_view name) { facts.classes.insert(name); });
    }
    return facts.classes;
}

const std::string* Matcher::attribute(ElementId element, std::string_view name) {
    Facts& facts = factsOf(element);
    if (!facts.attributesKnown) {
        facts.attributesKnown = true;
        for (SelectorSubject::NamedValue& attribute : subject_.attributesOf(element)) {
            work_ += attribute.name.size() + attribute.value.size();
            facts.attributes.emplace(attribute.name, std::move(attribute.value));
        }
    }
    work_ += name.size();
    const auto found = facts.attributes.find(name);
    return found == facts.attributes.end() ? nullptr : &found->second;
}

bool Matcher::hasClass(ElementId element, std::string_view name) {
    const std::string_view classes = subject_.classesOf(element);
    if (classes.size() > shortList) {
        work_ += name.size();
        return classSet(element, classes).contains(name);
    }
    work_ += classes.size();
    return hasWord(classes, name);
}

bool Matcher::relates(const AttributeTest& test, std::string_view value) {
    const std::string_view wanted = test.value;
    work_ += wanted.size();
    switch (test.relation) {
    case 0:
        return true;
    case '=':
        return value == wanted;
    case '~':
        work_ += value.size();
        return !wanted.empty() && hasWord(value, wanted);
    case '|':
        return value.starts_with(wanted) &&
               (value.size() == wanted.size() || value[wanted.size()] == '-');
    case '^':
        return !wanted.empty() && value.starts_with(wanted);
    case '$':
        return !wanted.empty() && value.ends_with(wanted);
    case '*':
        // At worst every place is compared with all of what is wanted.
        work_ += value.size() * (testCost + wanted.size() / testCost);
        return !wanted.empty() && value.find(wanted) != std::string_view::npos;
    default:
        return false;
    }
}

bool Matcher::stands(ElementId element, const PlaceTest& test) {
    work_ += testCost;
    const Siblings& siblings = subject_.siblingsOf(element);
    return test.series.holds(
        test.ofType ? (test.fromEnd ? siblings.placeOfTypeFromEnd : siblings.placeOfType)
                    : (test.fromEnd ? siblings.placeFromEnd : siblings.place));
}

bool Matcher::matches(ElementId element, const Compound& compound) {
    work_ += testCost;
    if (!compound.type.empty()) {
        const std::string_view type = subject_.typeOf(element);
        work_ += type.size();
        if (compound.type != type) {
            return false;
        }
    }
    if (!compound.id.empty()) {
        work_ += compound.id.size();
        if (compound.id != subject_.idOf(element)) {
            return false;
        }
    }
    if (compound.never || (compound.root && subject_.parentOf(element) != noElement)) {
        return false;
    }
    const auto isOne = [&](const Compound& one) { return matches(element, one); };
    return std::all_of(compound.places.begin(), compound.places.end(),
                       [&](const PlaceTest& test) { return stands(element, test); }) &&
           std::none_of(compound.noneOf.begin(), compound.noneOf.end(), isOne) &&
           std::all_of(compound.anyOf.begin(), compound.anyOf.end(),
                       [&](const std::vector<Compound>& choices) {
                           return std::any_of(choices.begin(), choices.end(), isOne);
                       }) &&
           std::all_of(compound.classes.begin(), compound.classes.end(),
                       [&](const std::string& name) { return hasClass(element, name); }) &&
           std::all_of(compound.attributes.begin(), compound.attributes.end(),
                       [&](const AttributeTest& test) {
                           const std::string* value = attribute(element, test.name);
                           if (value == nullptr && test.orPrefixed) {
                               value = attribute(element, ":" + test.name);
                           }
                           return value != nullptr && relates(test, *value);
                       });
}

/// Matches compounds of which each says exactly where the next one is to be found: the parent, or
/// the sibling before. Gives the element that the last of them matches.
std::optional<ElementId> Matcher::matchRun(ElementId element, Compounds run) {
    for (std::size_t i = 0;; ++i) {
        if (element == noElement || !matches(element, run[i])) {
            return std::nullopt;
        }
        if (i + 1 == run.size()) {
            return element;
        }
        element = run[i].combinator == Combinator::ChildOf ? subject_.parentOf(element)
                                                           : subject_.siblingsOf(element).before;
    }
}

/// Matches runs with "~" between them. Taking the nearest place for each run leaves most to those
/// at its left, so no choice is ever taken back. Gives the last element, as matchRun.
std::optional<ElementId> Matcher::matchFamily(ElementId element, Compounds family) {
    for (std::size_t start = 0;;) {
        const auto isLast = [](const Compound& compound) {
            return compound.combinator == Combinator::Behind;
        };
        const auto rest = family.subspan(start);
        const auto last = std::find_if(rest.begin(), rest.end() - 1, isLast);
        const Compounds run = rest.first(static_cast<std::size_t>(last - rest.begin()) + 1);
        auto place = matchRun(element, run);
        while (!place && start != 0 && element != noElement) {
            element = subject_.siblingsOf(element).before;
            place = matchRun(element, run);
        }
        start += run.size();
        if (!place || start == family.size()) {
            return place;
        }
        element = subject_.siblingsOf(*place).before;
    }
}

bool Matcher::matches(ElementId element, const Selector& selector) {
    // Between families any number of elements may stand. Taking the innermost place for each is
    // never worse than another one, so here, too, no choice is ever taken back.
    const Compounds compounds = selector.compounds;
    for (std::size_t start = 0; start < compounds.size();) {
        const auto rest = compounds.subspan(start);
        const auto last = std::find_if(rest.begin(), rest.end() - 1, [](const Compound& compound) {
            return compound.combinator == Combinator::Within;
        });
        const Compounds family = rest.first(static_cast<std::size_t>(last - rest.begin()) + 1);
        std::optional<ElementId> place;
        while (element != noElement && !(place = matchFamily(element, family))) {
            element = start == 0 ? noElement : subject_.parentOf(element);
        }
        if (!place) {
            return false;
        }
        start += family.size();
        element = subject_.parentOf(*place);
    }
    return true;
}

void Matcher::test(const std::vector<std::uint32_t>& candidates, ElementId element,
                   std::vector<RuleMatch>& matches) {
    for (const std::uint32_t number : candidates) {
        const Selector& selector = sheets_.selectors_[number];
        if (this->matches(element, selector)) {
            matches.push_back({selector.block, selector.specificity, number});
        }
    }
}

void Matcher::match(ElementId element, std::vector<RuleMatch>& matches) {
    current_ = element;
    const auto testFrom = [&](const StyleSheets::Index& index, std::string_view key) {
        work_ += key.size();
        if (const auto found = index.find(key); found != index.end()) {
            test(found->second, element, matches);
        }
    };
    if (!sheets_.byId_.empty()) {
        testFrom(sheets_.byId_, subject_.idOf(element));
    }
    if (!sheets_.byClass_.empty()) {
        const std::string_view classes = subject_.classesOf(element);
        if (classes.size() > shortList) {
            for (const std::string_view name : classSet(element, classes)) {
                testFrom(sheets_.byClass_, name);
            }
        } else {
            forEachWord(classes, [&](std::string_view name) { testFrom(sheets_.byClass_, name); });
        }
    }
    if (!sheets_.byType_.empty()) {
        testFrom(sheets_.byType_, subject_.typeOf(element));
    }
    test(sheets_.byNothing_, element, matches);
}

} // namespace host::css
