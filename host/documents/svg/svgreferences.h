// SPDX-License-Identifier: MIT
// Which ids the shown part of a drawing refers to. What stands in defs, a symbol, a mask and the
// like is shown only where something refers to it that is shown itself.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace host::svg {

/// Collects scopes and references while a drawing is parsed. Ids must outlive it. Everything is
/// linear in the number of scopes and references.
class References {
public:
    /// A part of the drawing that is shown as a whole or not at all.
    using Scope = std::uint32_t;
    static constexpr Scope shown = 0;

    /// What stands in definitions. With an empty `id` it is never shown.
    Scope addDefinitions(std::string_view id) { return add(id); }
    /// An element with an id within `outer`: shown with it, or when its own id is referred to.
    Scope addWithin(Scope outer, std::string_view id);

    void addReference(Scope from, std::string_view id);

    /// Whether something shown is known to refer to an id.
    bool isShown(std::string_view id) const { return shown_.contains(id); }

    /// The ids that shown scopes refer to. To be called once, at the end.
    std::unordered_set<std::string_view> takeShown();

private:
    static constexpr std::uint32_t none = 0xFFFFFFFFU;
    struct Node {
        Scope firstInner = none;
        Scope nextInner = none;
        std::uint32_t lastReference = none;
        bool shown = false;
    };
    struct Reference {
        std::string_view id;
        std::uint32_t previous; ///< of the same scope
    };
    Scope add(std::string_view id);

    std::vector<Node> scopes_{Node{}};
    std::vector<Reference> references_; ///< from scopes that may turn out not to be shown
    std::unordered_set<std::string_view> shown_;
    std::unordered_multimap<std::string_view, Scope> scopesOfId_;
};

} // namespace host::svg
