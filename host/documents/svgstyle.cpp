// SPDX-License-Identifier: MIT
// The cascade. Presentation attributes yield to style sheet rules, those to style="", all of them
// to what is marked important; what nobody says is inherited.
#include "host/documents/svgstyle.h"

#include "host/documents/documenterror.h"

#include <optional>
#include <unordered_map>

namespace host::svg {
namespace {

using css::indexOf;
using css::Property;
using css::Value;

/// Selector tests per document: seconds' worth, hundreds for each of many thousand elements.
constexpr std::size_t maximumWork = 100'000'000;

struct Candidate {
    std::uint64_t rank = 0; ///< 0: no declaration; of equal ranks the later one wins
    Value value;
    Origin origin;
};
using Candidates = std::array<Candidate, css::propertyCount>;

constexpr std::uint64_t attributeRank = 1;
constexpr std::uint64_t inlineRank = std::uint64_t{1} << 62;
constexpr std::uint64_t importantRank = std::uint64_t{1} << 63;

std::uint64_t ruleRank(const css::RuleMatch& match) {
    return (std::uint64_t{match.specificity} + 1) << 32 | match.order;
}

class Resolver {
public:
    Resolver(const Tree& tree, std::string_view name) : tree_(tree), name_(name) {}

    Styles run() {
        for (const Sheet& sheet : tree_.sheets) {
            styles_.sheets.addSheet(sheet.text, styles_.texts);
        }
        styles_.elements.reserve(tree_.elements.size());
        for (ElementId id = 0; id < tree_.elements.size(); ++id) {
            styles_.elements.push_back(resolve(id));
        }
        return std::move(styles_);
    }

private:
    static void offer(Candidates& candidates, const css::PropertyDeclaration& declaration,
                      std::uint64_t rank, const Origin& origin) {
        rank |= declaration.important ? importantRank : 0;
        Candidate& candidate = candidates[indexOf(declaration.property)];
        if (rank >= candidate.rank) {
            candidate = {rank, declaration.value, origin};
            candidate.origin.shorthand = declaration.shorthand;
            candidate.origin.important = declaration.important;
        }
    }

    void offerAttribute(Candidates& candidates, Property property, std::string_view text,
                        ElementId id) {
        auto& known = attributeValues_[indexOf(property)];
        auto found = known.find(text);
        if (found == known.end()) {
            Value value;
            const bool valid = css::readValue(property, text, styles_.texts, value);
            found = known.emplace(text, valid ? std::optional(value) : std::nullopt).first;
        }
        if (found->second) {
            offer(candidates, {property, false, false, *found->second}, attributeRank,
                  {Origin::Kind::Attribute, false, false, id, 0});
        }
    }

    const css::PropertyDeclarations& inlineDeclarations(std::string_view text) {
        const auto found = inlineDeclarations_.find(text);
        return found != inlineDeclarations_.end()
                   ? found->second
                   : inlineDeclarations_.emplace(text, css::readDeclarations(text, styles_.texts))
                         .first->second;
    }

    void collect(ElementId id, Candidates& candidates) {
        const Element& element = tree_.elements[id];
        for (std::uint32_t i = 0; i < element.attributeCount; ++i) {
            const Attribute& attribute = tree_.attributes[element.firstAttribute + i];
            switch (attribute.name) {
            case AttributeName::FontFamily:
                offerAttribute(candidates, Property::Family, attribute.value, id);
                break;
            case AttributeName::FontStyle:
                offerAttribute(candidates, Property::Slant, attribute.value, id);
                break;
            case AttributeName::FontWeight:
                offerAttribute(candidates, Property::Weight, attribute.value, id);
                break;
            case AttributeName::FontStretch:
                offerAttribute(candidates, Property::Stretch, attribute.value, id);
                break;
            case AttributeName::Display:
                offerAttribute(candidates, Property::Display, attribute.value, id);
                break;
            case AttributeName::Style:
                for (const auto& declaration : inlineDeclarations(attribute.value)) {
                    offer(candidates, declaration, inlineRank,
                          {Origin::Kind::Inline, false, false, id, 0});
                }
                break;
            default:
                break;
            }
        }
        if (styles_.sheets.empty()) {
            return;
        }
        matches_.clear();
        styles_.sheets.match(tree_, id, matches_, work_);
        if (work_ > maximumWork) {
            throw DocumentError(name_, "the style sheets are too large to match");
        }
        for (const css::RuleMatch& match : matches_) {
            for (const auto& declaration : styles_.sheets.block(match.block).declarations) {
                offer(candidates, declaration, ruleRank(match),
                      {Origin::Kind::Rule, false, false, id, match.block});
            }
        }
    }

    static std::uint32_t computed(Property property, const Value& value, std::uint32_t inherited) {
        const bool up = value.kind == Value::Kind::Up;
        if (value.kind == Value::Kind::Absolute) {
            return value.number;
        }
        if (value.kind == Value::Kind::Initial) {
            return Style().value(property);
        }
        return property == Property::Weight ? static_cast<std::uint32_t>(css::relativeWeight(
                                                  static_cast<int>(inherited), up))
                                            : css::relativeStretch(inherited, up);
    }

    Style resolve(ElementId id) {
        const Element& element = tree_.elements[id];
        Style style;
        if (element.parent != noElement) {
            style = styles_.elements[element.parent];
        }
        Candidates candidates;
        collect(id, candidates);
        for (std::size_t i = 0; i < css::facePropertyCount; ++i) {
            const Candidate& candidate = candidates[i];
            if (candidate.rank != 0 && candidate.value.kind != Value::Kind::Inherit) {
                style.values[i] =
                    computed(static_cast<Property>(i), candidate.value, style.values[i]);
                style.origins[i] = candidate.origin;
            }
        }
        const Candidate& display = candidates[indexOf(Property::Display)];
        style.hidden = style.hidden || (display.rank != 0 && display.value.number == 1 &&
                                        display.value.kind == Value::Kind::Absolute);
        if (style.unrendered || element.tag == Tag::Definitions) {
            const std::string_view* name = tree_.find(id, AttributeName::Id);
            style.unrendered = name == nullptr || !tree_.references.contains(*name);
        }
        return style;
    }

    const Tree& tree_;
    std::string_view name_;
    Styles styles_;
    std::array<std::unordered_map<std::string_view, std::optional<Value>>, css::propertyCount>
        attributeValues_;
    std::unordered_map<std::string_view, css::PropertyDeclarations> inlineDeclarations_;
    std::vector<css::RuleMatch> matches_;
    std::size_t work_ = 0;
};

} // namespace

Styles resolveStyles(const Tree& tree, std::string_view name) {
    return Resolver(tree, name).run();
}

} // namespace host::svg
