// SPDX-License-Identifier: MIT
// Looking up, copying and ending of a configuration tree.
#include "misc/configuration/configurationtree.h"

#include <boost/container/small_vector.hpp>

#include <utility>
#include <vector>

namespace Orvil {

using namespace ConfigurationTree;

Configuration::ConfigCategory* ConfigurationTree::categoryIn(Configuration::ConfigCategory& parent,
                                                             std::string_view name, bool inherit) {
    if (Configuration::ConfigNode* present = childOf(parent, name)) {
        return asCategory(present);
    }
    return asCategory(
        parent.children.insert(name, std::make_unique<Configuration::ConfigCategory>(inherit))
            .get());
}

// Trees may be deep, as names come from outside; neither the end of one nor a copy calls itself.
Configuration::ConfigCategory::~ConfigCategory() {
    std::vector<std::unique_ptr<ConfigNode>> pending;
    const auto takeChildren = [&pending](ConfigCategory& category) {
        category.children.forEach(
            [&](const std::string& /*name*/, auto& child) { pending.push_back(std::move(child)); });
    };
    takeChildren(*this);
    while (!pending.empty()) {
        const std::unique_ptr<ConfigNode> node = std::move(pending.back());
        pending.pop_back();
        if (ConfigCategory* category = asCategory(node.get())) {
            takeChildren(*category);
        }
    }
}

std::unique_ptr<Configuration::ConfigNode> Configuration::ConfigCategory::clone() const {
    auto copy = std::make_unique<ConfigCategory>(inherit);
    std::vector<std::pair<const ConfigCategory*, ConfigCategory*>> pending{{this, copy.get()}};
    while (!pending.empty()) {
        const auto [source, target] = pending.back();
        pending.pop_back();
        source->children.forEach([&, to = target](const std::string& name, const auto& child) {
            const ConfigCategory* category = asCategory(child.get());
            if (category == nullptr) {
                to->children.insert(name, child->clone());
            } else {
                pending.emplace_back(category, categoryIn(*to, name, category->inherit));
            }
        });
    }
    return copy;
}

std::unique_ptr<Configuration::ConfigNode> Configuration::ConfigProperty::clone() const {
    return std::make_unique<ConfigProperty>(values);
}

Configuration::ConfigNode* Configuration::findNode(ConfigCategory* start, std::string_view path,
                                                   bool useInheritance) {
    if (start == nullptr || path.empty()) {
        return start;
    }
    boost::container::small_vector<ConfigCategory*, 16> passed{start};
    Segments segments(path);
    for (;;) {
        const std::string_view name = segments.next();
        auto category = passed.rbegin();
        ConfigNode* node = childOf(**category, name);
        while (node == nullptr && useInheritance && (*category)->inherit &&
               std::next(category) != passed.rend()) {
            ++category;
            node = childOf(**category, name);
        }
        if (segments.atEnd() || node == nullptr) {
            return node;
        }
        ConfigCategory* next = asCategory(node);
        if (next == nullptr) {
            return nullptr;
        }
        passed.push_back(next);
    }
}

Configuration::ConfigCategory* Configuration::findCategory(ConfigCategory* start,
                                                           std::string_view path) {
    return asCategory(findNode(start, path, false));
}

Configuration::ConfigProperty* Configuration::findProperty(ConfigCategory* start,
                                                           std::string_view path) {
    return asProperty(findNode(start, path, true));
}

} // namespace Orvil
