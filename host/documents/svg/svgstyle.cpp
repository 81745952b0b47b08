// SPDX-License-Identifier: MIT
// The cascade. Presentation attributes yield to style sheet rules, those to style="", all of them
// to what is marked important; what nobody says is inherited.
#include "host/documents/svg/svgstyle.h"

#include "host/documents/css/css.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>

namespace host::svg {
namespace {

using css::indexOf;
using css::Property;
using css::Value;

/// What matching may cost per document, as Matcher counts it: seconds' worth, hundreds of tests for
/// each of many thousand elements.
constexpr std::size_t maximumWork = 1'000'000'000;

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
        styles_.elements.resize(tree_.elements.size());
        findTargets();
        resolveAll(0, static_cast<ElementId>(tree_.elements.size()));
        resolveWaiting();
        // What no use shows, or only one that is not shown itself.
        for (const Target& target : targets_) {
            if (!target.resolved) {
                resolveTarget(number(target), target.defined ? target.hiddenUse : noElement);
                resolveWaiting();
            }
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
            case AttributeName::FontSize:
                offerAttribute(candidates, Property::Size, attribute.value, id);
                break;
            case AttributeName::Visibility:
                offerAttribute(candidates, Property::Visibility, attribute.value, id);
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
        matcher_.match(id, matches_);
        if (matcher_.work() > maximumWork) {
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

    /// An element that uses name. In definitions, and where what is around it hides it, it is shown
    /// by them alone: it is then resolved when a use that shows it has been, so that it can inherit
    /// from there.
    struct Target {
        ElementId element = noElement;
        bool defined = false;            ///< it stands in definitions
        ElementId use = noElement;       ///< the first one that shows it
        ElementId hiddenUse = noElement; ///< the first one that would but is not shown itself
        bool resolved = false;
    };
    static constexpr std::uint32_t noTarget = 0xFFFFFFFFU;

    std::uint32_t number(const Target& target) const {
        return static_cast<std::uint32_t>(&target - targets_.data());
    }

    std::string_view usedId(ElementId id) const {
        if (tree_.elements[id].tag != Tag::Use) {
            return {};
        }
        const std::string_view reference = tree_.valueOf(id, AttributeName::Reference);
        return reference.starts_with('#') ? reference.substr(1) : std::string_view();
    }

    void findTargets() {
        const auto count = static_cast<ElementId>(tree_.elements.size());
        for (ElementId id = 0; id < count; ++id) {
            if (const std::string_view used = usedId(id); !used.empty()) {
                targetOfId_.emplace(used, noTarget);
            }
        }
        if (targetOfId_.empty()) {
            return;
        }
        targetOf_.resize(count, noTarget);
        ElementId definitionsEnd = 0;
        for (ElementId id = 0; id < count; ++id) {
            const Element& element = tree_.elements[id];
            if (element.tag == Tag::Definitions) {
                definitionsEnd = std::max(definitionsEnd, element.subtreeEnd);
            }
            const std::string_view* name = tree_.find(id, AttributeName::Id);
            const auto used = name == nullptr ? targetOfId_.end() : targetOfId_.find(*name);
            if (used != targetOfId_.end() && used->second == noTarget) {
                used->second = targetOf_[id] = static_cast<std::uint32_t>(targets_.size());
                targets_.push_back({id, id < definitionsEnd});
            }
        }
    }

    /// Whether a target whose parent has been resolved is shown by uses alone.
    bool waits(const Target& target) const {
        const ElementId parent = tree_.elements[target.element].parent;
        return target.defined || (parent != noElement && (styles_.elements[parent].hidden ||
                                                          styles_.elements[parent].invisible));
    }

    /// Resolves the elements of a range, but for targets that have to wait.
    void resolveAll(ElementId id, ElementId end) {
        while (id < end) {
            if (!targetOf_.empty() && targetOf_[id] != noTarget) {
                Target& target = targets_[targetOf_[id]];
                if (waits(target)) {
                    id = tree_.elements[id].subtreeEnd;
                    continue;
                }
                target.resolved = true;
            }
            resolveOne(id, tree_.elements[id].parent);
            ++id;
        }
    }

    void resolveOne(ElementId id, ElementId inheritsFrom) {
        resolve(id, inheritsFrom);
        const std::string_view used = targetOf_.empty() ? std::string_view() : usedId(id);
        if (used.empty()) {
            return;
        }
        const std::uint32_t number = targetOfId_.at(used);
        const Style& style = styles_.elements[id];
        if (number == noTarget || style.unrendered) {
            return;
        }
        Target& target = targets_[number];
        if (style.hidden || style.invisible) {
            target.hiddenUse = target.hiddenUse == noElement ? id : target.hiddenUse;
        } else if (target.use == noElement && !target.resolved) {
            target.use = id;
            waiting_.push_back(number);
        }
    }

    /// @param use the element to inherit from; the target's own parent if there is none
    void resolveTarget(std::uint32_t number, ElementId use) {
        Target& target = targets_[number];
        target.resolved = true;
        const Element& element = tree_.elements[target.element];
        resolveOne(target.element, use == noElement ? element.parent : use);
        resolveAll(target.element + 1, element.subtreeEnd);
    }

    void resolveWaiting() {
        while (!waiting_.empty()) {
            const std::uint32_t number = waiting_.back();
            waiting_.pop_back();
            if (!targets_[number].resolved) {
                resolveTarget(number, targets_[number].use);
            }
        }
    }

    static void inherit(bool& flag, const Candidate& candidate) {
        if (candidate.rank != 0 && candidate.value.kind != Value::Kind::Inherit) {
            flag = candidate.value.kind == Value::Kind::Absolute && candidate.value.number == 1;
        }
    }

    void resolve(ElementId id, ElementId inheritsFrom) {
        const Element& element = tree_.elements[id];
        Style& style = styles_.elements[id];
        if (inheritsFrom != noElement) {
            style = styles_.elements[inheritsFrom];
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

    const Tree& tree_;
    std::string_view name_;
    Styles styles_;
    std::array<std::unordered_map<std::string_view, std::optional<Value>>, css::propertyCount>
        attributeValues_;
    std::unordered_map<std::string_view, css::PropertyDeclarations> inlineDeclarations_;
    std::vector<css::RuleMatch> matches_;
    css::Matcher matcher_{styles_.sheets, tree_};
    std::vector<Target> targets_;         ///< in document order
    std::vector<std::uint32_t> targetOf_; ///< by element; empty without targets
    std::unordered_map<std::string_view, std::uint32_t> targetOfId_;
    std::vector<std::uint32_t> waiting_;
};

} // namespace

Styles resolveStyles(const Tree& tree, std::string_view name) {
    return Resolver(tree, name).run();
}

} // namespace host::svg
