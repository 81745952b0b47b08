// SPDX-License-Identifier: MIT
// The order in which elements are resolved: each after the one that it inherits from, which for
// what a `use` shows is the `use`.
#include "host/documents/svg/svgcascade.h"

#include <algorithm>
#include <unordered_map>

namespace host::svg {
namespace {

class Resolver {
public:
    Resolver(const Tree& tree, std::string_view name, std::size_t maximumMatching)
        : tree_(tree), cascade_(tree, name, maximumMatching, styles_) {}

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
        cascade_.resolve(id, inheritsFrom);
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

    /// Lets a target inherit from `use`, or from its own parent if there is none.
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

    const Tree& tree_;
    Styles styles_;
    Cascade cascade_;
    std::vector<Target> targets_;         ///< in document order
    std::vector<std::uint32_t> targetOf_; ///< by element; empty without targets
    std::unordered_map<std::string_view, std::uint32_t> targetOfId_;
    std::vector<std::uint32_t> waiting_;
};

} // namespace

Styles resolveStyles(const Tree& tree, std::string_view name, std::size_t maximumMatching) {
    return Resolver(tree, name, maximumMatching).run();
}

} // namespace host::svg
