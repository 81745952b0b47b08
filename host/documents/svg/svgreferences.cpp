// SPDX-License-Identifier: MIT
// Follows references from what is shown to what is shown by them.
#include "host/documents/svg/svgreferences.h"

#include <utility>

namespace host::svg {

References::Scope References::add(std::string_view id) {
    const auto scope = static_cast<Scope>(scopes_.size());
    scopes_.emplace_back();
    if (!id.empty()) {
        scopesOfId_.emplace(id, scope);
    }
    return scope;
}

References::Scope References::addWithin(Scope outer, std::string_view id) {
    const Scope scope = add(id);
    scopes_[scope].nextInner = std::exchange(scopes_[outer].firstInner, scope);
    return scope;
}

void References::addReference(Scope from, std::string_view id) {
    if (from == shown) {
        shown_.insert(id);
        return;
    }
    const auto number = static_cast<std::uint32_t>(references_.size());
    references_.push_back({id, std::exchange(scopes_[from].lastReference, number)});
}

std::unordered_set<std::string_view> References::takeShown() {
    std::vector<std::string_view> ids(shown_.begin(), shown_.end());
    std::vector<Scope> scopes;
    const auto show = [&](Scope scope) {
        if (!std::exchange(scopes_[scope].shown, true)) {
            scopes.push_back(scope);
        }
    };
    while (!ids.empty()) {
        const auto [first, last] = scopesOfId_.equal_range(ids.back());
        ids.pop_back();
        for (auto place = first; place != last; ++place) {
            show(place->second);
        }
        while (!scopes.empty()) {
            const Node& node = scopes_[scopes.back()];
            scopes.pop_back();
            for (std::uint32_t i = node.lastReference; i != none; i = references_[i].previous) {
                if (shown_.insert(references_[i].id).second) {
                    ids.push_back(references_[i].id);
                }
            }
            for (Scope inner = node.firstInner; inner != none; inner = scopes_[inner].nextInner) {
                show(inner);
            }
        }
    }
    return std::move(shown_);
}

} // namespace host::svg
