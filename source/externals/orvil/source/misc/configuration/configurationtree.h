// SPDX-License-Identifier: MIT
// Steps from node to node of a configuration tree.
#pragma once

#include "misc/configuration/configuration.h"

#include <string_view>

namespace Orvil::ConfigurationTree {

/// The segments of a path one after the other; the empty path has none.
class Segments {
public:
    explicit Segments(std::string_view path) : rest_(path), atEnd_(path.empty()) {}

    bool atEnd() const { return atEnd_; }
    std::string_view next() {
        const auto dot = rest_.find('.');
        const auto segment = rest_.substr(0, dot);
        atEnd_ = dot == rest_.npos;
        rest_.remove_prefix(atEnd_ ? rest_.size() : dot + 1);
        return segment;
    }

private:
    std::string_view rest_;
    bool atEnd_;
};

inline Configuration::ConfigNode* childOf(Configuration::ConfigCategory& category,
                                          std::string_view name) {
    const auto* child = category.children.find(name);
    return child == nullptr ? nullptr : child->get();
}

inline Configuration::ConfigCategory* asCategory(Configuration::ConfigNode* node) {
    return node == nullptr || node->isLeaf() ? nullptr
                                             : static_cast<Configuration::ConfigCategory*>(node);
}

inline Configuration::ConfigProperty* asProperty(Configuration::ConfigNode* node) {
    return node == nullptr || !node->isLeaf() ? nullptr
                                              : static_cast<Configuration::ConfigProperty*>(node);
}

/// The child category, made if nothing has the name. Null if a property has.
Configuration::ConfigCategory* categoryIn(Configuration::ConfigCategory& parent,
                                          std::string_view name, bool inherit);

} // namespace Orvil::ConfigurationTree
