// SPDX-License-Identifier: MIT
// Matches selectors against elements.
#include "host/documents/stylesheet.h"

#include <algorithm>
#include <utility>

namespace host::css {
namespace {

bool hasWord(std::string_view words, std::string_view word) {
    bool found = false;
    forEachWord(words, [&](std::string_view candidate) { found = found || candidate == word; });
    return found;
}

bool relates(char relation, std::string_view value, std::string_view wanted) {
    switch (relation) {
    case 0:
        return true;
    case '=':
        return value == wanted;
    case '~':
        return !wanted.empty() && hasWord(value, wanted);
    case '|':
        return value.starts_with(wanted) &&
               (value.size() == wanted.size() || value[wanted.size()] == '-');
    case '^':
        return !wanted.empty() && value.starts_with(wanted);
    case '$':
        return !wanted.empty() && value.ends_with(wanted);
    case '*':
        return !wanted.empty() && value.find(wanted) != std::string_view::npos;
    default:
        return false;
    }
}

} // namespace

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

bool StyleSheets::matches(const SelectorSubject& subject, ElementId element,
                          const Compound& compound) const {
    if (!compound.type.empty() && compound.type != subject.typeOf(element)) {
        return false;
    }
    if (!compound.id.empty() && compound.id != subject.idOf(element)) {
        return false;
    }
    if (compound.root && subject.parentOf(element) != noElement) {
        return false;
    }
    for (const std::string& name : compound.classes) {
        if (!hasWord(subject.classesOf(element), name)) {
            return false;
        }
    }
    std::string value;
    return std::all_of(compound.attributes.begin(), compound.attributes.end(),
                       [&](const AttributeTest& test) {
                           return subject.attributeOf(element, test.name, value) &&
                                  relates(test.relation, value, test.value);
                       });
}

bool StyleSheets::matches(const SelectorSubject& subject, ElementId element,
                          const Selector& selector, std::size_t& work) const {
    // Compounds joined by ">" form rigid segments; between segments any number of elements may
    // stand. Taking the innermost place for each segment is never worse than another one, so no
    // choice is ever taken back across segments.
    const std::vector<Compound>& compounds = selector.compounds;
    for (std::size_t segment = 0; segment < compounds.size();) {
        std::size_t segmentEnd = segment + 1;
        while (compounds[segmentEnd - 1].childOf && segmentEnd < compounds.size()) {
            ++segmentEnd;
        }
        while (true) {
            if (element == noElement) {
                return false;
            }
            ElementId place = element;
            std::size_t compound = segment;
            while (compound < segmentEnd && place != noElement) {
                ++work;
                if (!matches(subject, place, compounds[compound])) {
                    break;
                }
                place = subject.parentOf(place);
                ++compound;
            }
            if (compound == segmentEnd) {
                element = place;
                break;
            }
            if (segment == 0) {
                return false;
            }
            element = subject.parentOf(element);
        }
        segment = segmentEnd;
    }
    return true;
}

void StyleSheets::match(const SelectorSubject& subject, ElementId element,
                        std::vector<RuleMatch>& matches, std::size_t& work) const {
    const auto test = [&](const std::vector<std::uint32_t>& candidates) {
        for (const std::uint32_t number : candidates) {
            const Selector& selector = selectors_[number];
            if (this->matches(subject, element, selector, work)) {
                matches.push_back({selector.block, selector.specificity, number});
            }
        }
    };
    const auto testFrom = [&test](const Index& index, std::string_view key) {
        if (const auto found = index.find(key); found != index.end()) {
            test(found->second);
        }
    };
    if (!byId_.empty()) {
        testFrom(byId_, subject.idOf(element));
    }
    if (!byClass_.empty()) {
        forEachWord(subject.classesOf(element),
                    [&](std::string_view name) { testFrom(byClass_, name); });
    }
    if (!byType_.empty()) {
        testFrom(byType_, subject.typeOf(element));
    }
    test(byNothing_);
}

} // namespace host::css
