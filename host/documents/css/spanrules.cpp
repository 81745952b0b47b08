// SPDX-License-Identifier: MIT
// Looks at the last compound of each selector, which is the one that an element itself matches.
#include "host/documents/css/spanrules.h"

#include "host/documents/css/css.h"
#include "host/documents/css/fontvalues.h"

#include <algorithm>
#include <string>

namespace host::css {
namespace {

bool saysMoreThanAFace(std::string_view block) {
    DeclarationCursor cursor(block);
    for (Declaration declaration; cursor.next(declaration);) {
        const auto property = propertyNamed(declaration.name);
        if (!property || indexOf(*property) >= facePropertyCount) {
            return true;
        }
    }
    return block.find('{') != std::string_view::npos; // rules within rules
}

bool concernsSpans(std::string_view selector) {
    selector = trim(selector);
    std::size_t start = 0;
    for (std::size_t stop = 0;
         (stop = findOutside(selector, start, " \t\n\r\f>+~")) < selector.size();) {
        start = stop + 1;
    }
    const std::string_view before = trim(selector.substr(0, start));
    const std::string_view compound = selector.substr(start);
    const std::size_t typeEnd = std::min(compound.find_first_of(".#[:"), compound.size());
    std::string_view type = compound.substr(0, typeEnd);
    type = type.substr(type.rfind('|') + 1); // npos + 1 is none
    const bool span = type.empty() || type == "*" || type == "tspan" || type == "flowSpan" ||
                      type.find('\\') != std::string_view::npos;
    if (compound.empty() || !span || compound == ":root") {
        return false;
    }
    const std::string_view conditions = compound.substr(typeEnd);
    if (before.ends_with('+') || before.ends_with('~') ||
        conditions.find(':') != std::string_view::npos) {
        return true; // who stands beside whom may matter
    }
    // Of attributes the span has a style alone.
    for (std::size_t open = conditions.find('['); open != std::string_view::npos;
         open = conditions.find('[', open + 1)) {
        if (!trim(conditions.substr(open + 1)).starts_with("style")) {
            return false;
        }
    }
    return findOutside(conditions, 0, ".#") == conditions.size();
}

bool anyConcernsSpans(std::string_view selectors) {
    for (std::size_t start = 0; start <= selectors.size();) {
        const std::size_t comma = findOutside(selectors, start, ",");
        if (concernsSpans(selectors.substr(start, comma - start))) {
            return true;
        }
        start = comma + 1;
    }
    return false;
}

/// `rules` has no comments.
bool search(std::string_view rules, unsigned depth) {
    while (true) {
        rules.remove_prefix(std::min(rules.find_first_not_of("}; \t\n\v\r\f"), rules.size()));
        if (rules.empty()) {
            return false;
        }
        const bool atRule = rules.front() == '@';
        const std::size_t open = findOutside(rules, 0, atRule ? "{;" : "{");
        const std::size_t start = std::min(open + 1, rules.size());
        std::size_t end = start;
        if (open < rules.size() && rules[open] == '{') {
            end = findOutside(rules, start, "}");
            const std::string_view block = rules.substr(start, end - start);
            if (atRule ? depth >= maximumNesting || search(block, depth + 1)
                       : anyConcernsSpans(rules.substr(0, open)) && saysMoreThanAFace(block)) {
                return true;
            }
        }
        rules.remove_prefix(end);
    }
}

} // namespace

bool hasRulesForSpans(std::string_view sheet) {
    std::string storage;
    return search(blankComments(sheet, storage), 0);
}

} // namespace host::css
