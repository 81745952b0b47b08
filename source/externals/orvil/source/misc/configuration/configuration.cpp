// SPDX-License-Identifier: MIT
// Editing and reading of a store.
#include "misc/configuration/configuration.h"

#include "misc/assertion.h"
#include "misc/configuration/configurationtree.h"
#include "misc/text/numbers.h"

#include <algorithm>
#include <utility>

namespace Orvil {

using namespace ConfigurationTree;

namespace {

constexpr const char* sourceFile = "source/externals/orvil/source/misc/configuration/configuration";

const std::vector<std::string>& noValues() {
    static const std::vector<std::string> empty;
    return empty;
}

struct SplitName {
    std::string_view parent;
    std::string_view leaf;
};

SplitName splitName(std::string_view path) {
    const auto dot = path.rfind('.');
    if (dot == path.npos) {
        return {{}, path};
    }
    return {path.substr(0, dot), path.substr(dot + 1)};
}

} // namespace

Configuration::Configuration() : root_(nullptr), owns_(true), lock_(true) {}

Configuration::Configuration(ConfigCategory* category, bool copy)
    : root_(category), owns_(copy), lock_(false) {
    if (copy && category != nullptr) {
        ownedRoot_.reset(static_cast<ConfigCategory*>(category->clone().release()));
        root_ = ownedRoot_.get();
    }
}

Configuration::Configuration(const Configuration& /*other*/)
    : root_(nullptr), owns_(false), lock_(false) {
    ORVIL_ASSERT(false, sourceFile);
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): it never gets anywhere
Configuration& Configuration::operator=(const Configuration& /*other*/) {
    ORVIL_ASSERT(false, sourceFile);
    return *this;
}

Configuration::~Configuration() = default;

std::unique_ptr<Configuration> Configuration::getCategory(std::string_view path, bool copy) {
    const ScopedLock<Mutex> locked(lock_);
    return std::make_unique<Configuration>(findCategory(root_, path), copy);
}

bool Configuration::makeRoot(bool inherit) {
    if (root_ == nullptr && owns_) {
        ownedRoot_ = std::make_unique<ConfigCategory>(inherit);
        root_ = ownedRoot_.get();
    }
    return root_ != nullptr;
}

/// The category at `path`, all of it made if need be.
Configuration::ConfigCategory* Configuration::makeParents(std::string_view path) {
    ConfigCategory* category = makeRoot(false) ? root_ : nullptr;
    Segments segments(path);
    if (path.starts_with('.') && category != nullptr) {
        // Before the first dot stands the empty path, which names the root when a name is split off
        // but a child without a name when it is looked up: made is the one, found the other.
        segments.next();
        const std::string_view name = segments.next();
        category = categoryIn(*root_, name, false) == nullptr
                       ? nullptr
                       : findCategory(root_, path.substr(0, name.size() + 1));
    }
    while (!segments.atEnd() && category != nullptr) {
        category = categoryIn(*category, segments.next(), false);
    }
    return category;
}

bool Configuration::addCategoryLocked(std::string_view path, bool inherit, bool createParents) {
    if (path.empty()) {
        return makeRoot(inherit);
    }
    const SplitName name = splitName(path);
    ConfigCategory* parent =
        createParents ? makeParents(name.parent) : findCategory(root_, name.parent);
    return parent != nullptr && categoryIn(*parent, name.leaf, inherit) != nullptr;
}

bool Configuration::addCategory(std::string_view path, bool inherit, bool createParents) {
    const ScopedLock<Mutex> locked(lock_);
    return addCategoryLocked(path, inherit, createParents);
}

bool Configuration::setValues(std::string_view path, const std::vector<std::string>& values,
                              bool createCategories) {
    const ScopedLock<Mutex> locked(lock_);
    const SplitName name = splitName(path);
    if (createCategories && !addCategoryLocked(name.parent, true, true)) {
        return false;
    }
    ConfigCategory* category = findCategory(root_, name.parent);
    if (category == nullptr) {
        return false;
    }
    ConfigNode* present = childOf(*category, name.leaf);
    if (present == nullptr) {
        category->children.insert(name.leaf, std::make_unique<ConfigProperty>(values));
        return true;
    }
    ConfigProperty* property = asProperty(present);
    if (property == nullptr) {
        return false;
    }
    if (values.empty()) {
        category->children.erase(name.leaf);
    } else {
        property->values = values;
    }
    return true;
}

bool Configuration::setValue(std::string_view path, const std::string& value,
                             bool createCategories) {
    return setValues(path, {value}, createCategories);
}

bool Configuration::setValueAt(std::string_view path, std::size_t index, std::string value) {
    const ScopedLock<Mutex> locked(lock_);
    const SplitName name = splitName(path);
    // The list to start from is looked up before categories are made, which inherit.
    const ConfigProperty* seen = findProperty(root_, path);
    if (!addCategoryLocked(name.parent, true, true)) {
        return false;
    }
    ConfigCategory* category = findCategory(root_, name.parent);
    if (category == nullptr) {
        return false;
    }
    if (childOf(*category, name.leaf) == nullptr) {
        category->children.insert(name.leaf, std::make_unique<ConfigProperty>(noValues()));
    }
    ConfigProperty* property = asProperty(childOf(*category, name.leaf));
    if (property == nullptr) {
        return false;
    }
    std::vector<std::string>& values = property->values;
    if (property != seen) {
        // An inherited list, or none: what follows a leading dot is made, but not found.
        values = seen == nullptr ? noValues() : seen->values;
    }
    // In place: a list that is read value by value is not copied each time.
    values.resize(std::max(values.size(), index + 1));
    values[index] = std::move(value);
    return true;
}

void Configuration::removeNode(std::string_view path) {
    const ScopedLock<Mutex> locked(lock_);
    const SplitName name = splitName(path);
    if (name.parent.empty() || name.leaf.empty()) {
        return;
    }
    if (ConfigCategory* parent = findCategory(root_, name.parent)) {
        parent->children.erase(name.leaf);
    }
}

const std::vector<std::string>& Configuration::getValueList(std::string_view path) const {
    const ScopedLock<Mutex> locked(lock_);
    const ConfigProperty* property = findProperty(root_, path);
    return property == nullptr ? noValues() : property->values;
}

std::size_t Configuration::getValueCount(std::string_view path) const {
    const ScopedLock<Mutex> locked(lock_);
    const ConfigProperty* property = findProperty(root_, path);
    return property == nullptr ? 0 : property->values.size();
}

std::string Configuration::getStringAt(std::string_view path, std::size_t index,
                                       const std::string& defaultValue) const {
    const ScopedLock<Mutex> locked(lock_);
    const ConfigProperty* property = findProperty(root_, path);
    return property != nullptr && index < property->values.size() ? property->values[index]
                                                                  : defaultValue;
}

template <typename T>
T Configuration::parsedAt(std::string_view path, std::size_t index, T defaultValue) const {
    bool ok = false;
    const T value = safeParse<T>(getStringAt(path, index, ""), ok);
    return ok ? value : defaultValue;
}

bool Configuration::getBooleanAt(std::string_view path, std::size_t index,
                                 bool defaultValue) const {
    return parsedAt(path, index, defaultValue);
}

int Configuration::getIntegerAt(std::string_view path, std::size_t index, int defaultValue) const {
    return parsedAt(path, index, defaultValue);
}

std::int64_t Configuration::getLargeIntegerAt(std::string_view path, std::size_t index,
                                              std::int64_t defaultValue) const {
    return parsedAt(path, index, defaultValue);
}

double Configuration::getRealAt(std::string_view path, std::size_t index,
                                double defaultValue) const {
    return parsedAt(path, index, defaultValue);
}

std::vector<std::string> Configuration::childNames(std::string_view path, bool leaves) const {
    const ScopedLock<Mutex> locked(lock_);
    std::vector<std::string> names;
    if (const ConfigCategory* category = findCategory(root_, path)) {
        category->children.forEach([&](const std::string& name, const auto& child) {
            if (child->isLeaf() == leaves) {
                names.push_back(name);
            }
        });
    }
    return names;
}

std::vector<std::string> Configuration::getSubProperties(std::string_view path) const {
    return childNames(path, true);
}

std::vector<std::string> Configuration::getSubCategories(std::string_view path) const {
    return childNames(path, false);
}

bool Configuration::isInheriting(std::string_view path) const {
    const ScopedLock<Mutex> locked(lock_);
    const ConfigCategory* const category = findCategory(root_, path);
    return category != nullptr && category->inherit;
}

} // namespace Orvil
