// SPDX-License-Identifier: MIT
// Collects what is declared for an element, and takes the best of it.
#include "host/documents/svg/svgcascade.h"

#include "host/documents/css/css.h"

#include <string>

namespace host::svg {
namespace {

using css::indexOf;
using css::Property;
using css::Value;

constexpr std::uint64_t attributeRank = 1;
constexpr std::uint64_t inlineRank = std::uint64_t{1} << 62;
constexpr std::uint64_t importantRank = std::uint64_t{1} << 63;

std::uint64_t ruleRank(const css::RuleMatch& match) {
    return (std::uint64_t{match.specificity} + 1) << 32 | match.order;
}

/// The property that a presentation attribute gives.
std::optional<Property> presentedBy(AttributeName name) {
    switch (name) {
    case AttributeName::FontFamily:
        return Property::Family;
    case AttributeName::FontStyle:
        return Property::Slant;
    case AttributeName::FontWeight:
        return Property::Weight;
    case AttributeName::FontStretch:
        return Property::Stretch;
    case AttributeName::FontSize:
        return Property::Size;
    case AttributeName::Visibility:
        return Property::Visibility;
    case AttributeName::Display:
        return Property::Display;
    default:
        return std::nullopt;
    }
}

std::uint32_t computed(Property property, const Value& value, std::uint32_t inherited) {
    const bool up = value.kind == Value::Kind::Up;
    if (value.kind == Value::Kind::Absolute) {
        return value.number;
    }
    if (value.kind == Value::Kind::Initial) {
        return Style().value(property);
    }
    return property == Property::Weight
               ? static_cast<std::uint32_t>(css::relativeWeight(static_cast<int>(inherited), up))
               : css::relativeStretch(inherited, up);
}

} // namespace

void Cascade::offer(Candidates& candidates, const css::PropertyDeclaration& declaration,
                    std::uint64_t rank, const Origin& origin) {
    rank |= declaration.important ? importantRank : 0;
    Candidate& candidate = candidates[indexOf(declaration.property)];
    if (rank >= candidate.rank) {
        candidate = {rank, declaration.value, origin};
        candidate.origin.shorthand = declaration.shorthand;
        candidate.origin.important = declaration.important;
    }
}

void Cascade::offerAttribute(Candidates& candidates, Property property, std::string_view text,
                             ElementId id) {
    auto& known = attributeValues_[indexOf(property)];
    auto found = known.find(text);
    if (found == known.end()) {
        std::string blanked;
        found = known
                    .emplace(text, css::readValue(property, css::blankComments(text, blanked),
                                                  styles_.texts))
                    .first;
    }
    if (found->second) {
        offer(candidates, {property, false, false, *found->second}, attributeRank,
              {Origin::Kind::Attribute, false, false, id, 0});
    }
}

const css::PropertyDeclarations& Cascade::inlineDeclarations(std::string_view text) {
    const auto found = inlineDeclarations_.find(text);
    return found != inlineDeclarations_.end()
               ? found->second
               : inlineDeclarations_.emplace(text, css::readDeclarations(text, styles_.texts))
                     .first->second;
}

void Cascade::collectAttributes(ElementId id, Candidates& candidates) {
    const Element& element = tree_.elements[id];
    for (std::uint32_t i = 0; i < element.attributeCount; ++i) {
        const Attribute& attribute = tree_.attributes[element.firstAttribute + i];
        if (const auto property = presentedBy(attribute.name)) {
            offerAttribute(candidates, *property, attribute.value, id);
        } else if (attribute.name == AttributeName::Style) {
            for (const auto& declaration : inlineDeclarations(attribute.value)) {
                offer(candidates, declaration, inlineRank,
                      {Origin::Kind::Inline, false, false, id, 0});
            }
        }
    }
}

void Cascade::collectRules(ElementId id, Candidates& candidates) {
    if (styles_.sheets.empty()) {
        return;
    }
    matches_.clear();
    matcher_.match(id, matches_);
    if (matcher_.work() > maximumMatching_) {
        throw errorAt(tree_.source, name_, "the style sheets are too large to match",
                      tree_.sheets.front().sourceStart);
    }
    for (const css::RuleMatch& match : matches_) {
        for (const auto& declaration : styles_.sheets.block(match.block).declarations) {
            offer(candidates, declaration, ruleRank(match),
                  {Origin::Kind::Rule, false, false, id, match.block});
        }
    }
}

void Cascade::inherit(bool& flag, const Candidate& candidate) {
    if (candidate.rank != 0 && candidate.value.kind != Value::Kind::Inherit) {
        flag = candidate.value.kind == Value::Kind::Absolute && candidate.value.number == 1;
    }
}

void Cascade::resolve(ElementId id, ElementId inheritsFrom) {
    const Element& element = tree_.elements[id];
    Style& style = styles_.elements[id];
    if (inheritsFrom != noElement) {
        style = styles_.elements[inheritsFrom];
    }
    Candidates candidates;
    collectAttributes(id, candidates);
    collectRules(id, candidates);
    for (std::size_t i = 0; i < css::facePropertyCount; ++i) {
        const Candidate& candidate = candidates[i];
        if (candidate.rank != 0 && candidate.value.kind != Value::Kind::Inherit) {
            style.values[i] = computed(static_cast<Property>(i), candidate.value, style.values[i]);
            style.origins[i] = candidate.origin;
        }
    }
    inherit(style.invisible, candidates[indexOf(Property::Visibility)]);
    inherit(style.sizeless, candidates[indexOf(Property::Size)]);
    bool none = false;
    inherit(none, candidates[indexOf(Property::Display)]);
    style.hidden = style.hidden || none || element.passedOver;
    if (style.unrendered || element.tag == Tag::Definitions) {
        const std::string_view* name = tree_.find(id, AttributeName::Id);
        style.unrendered = name == nullptr || !tree_.references.contains(*name);
    }
}

} // namespace host::svg
