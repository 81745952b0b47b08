// SPDX-License-Identifier: MIT
// A tree of named categories whose leaves are lists of values.
#pragma once

#include "misc/hash/hashmap.h"
#include "misc/threads/mutex.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Orvil {

/// Paths are names joined by dots ("server.port"); the empty path names the root. Names are exact.
/// A category that inherits also shows, to readers of values, what it does not define itself but
/// the categories around it do.
///
/// Look-ups never throw: what is missing gives the default. Editing tells failure by false.
/// [any-thread] Each call holds the store's lock. A view has a lock of its own, which does not
/// exclude its source's.
class Configuration {
public:
    /// A node of the tree. Categories own their children.
    class ConfigNode {
    public:
        ConfigNode() = default;
        ConfigNode(const ConfigNode&) = delete;
        ConfigNode& operator=(const ConfigNode&) = delete;
        virtual ~ConfigNode() = default;
        [[nodiscard]] virtual bool isLeaf() const = 0;
        /// A deep copy.
        [[nodiscard]] virtual std::unique_ptr<ConfigNode> clone() const = 0;
    };

    class ConfigCategory : public ConfigNode {
    public:
        explicit ConfigCategory(bool inherits) : inherit(inherits) {}
        ConfigCategory(const ConfigCategory&) = delete;
        ConfigCategory& operator=(const ConfigCategory&) = delete;
        ~ConfigCategory() override;
        bool isLeaf() const override { return false; }
        std::unique_ptr<ConfigNode> clone() const override;

        hash_map<std::string, std::unique_ptr<ConfigNode>> children;
        bool inherit;
    };

    class ConfigProperty : public ConfigNode {
    public:
        explicit ConfigProperty(std::vector<std::string> list) : values(std::move(list)) {}
        bool isLeaf() const override { return true; }
        std::unique_ptr<ConfigNode> clone() const override;

        std::vector<std::string> values;
    };

    /// An empty store.
    Configuration();
    /// A store of its own over a copy of `category`, or else a view that shares its nodes; the
    /// source must outlive a view. Null gives a store without a root.
    Configuration(ConfigCategory* category, bool copy);
    /// Stores are neither copied nor assigned: both abort the process.
    Configuration(const Configuration& other);
    Configuration& operator=(const Configuration& other);
    ~Configuration();

    /// The category at `path` as a store of its own, without a root if there is none.
    [[nodiscard]] std::unique_ptr<Configuration> getCategory(std::string_view path, bool copy);

    /// Makes the category unless it is there; one that is there keeps its own inherit flag. Parents
    /// made on the way never inherit. False: no parent, or a property stands in the way.
    bool addCategory(std::string_view path, bool inherit, bool createParents);
    /// Replaces the values; an empty list removes a property that is there (and makes an empty one
    /// otherwise). A category made for the property inherits, its parents do not.
    bool setValues(std::string_view path, const std::vector<std::string>& values,
                   bool createCategories);
    bool setValue(std::string_view path, const std::string& value, bool createCategories);
    /// What the readers do with an indexed value: the list that getValueList() gives, an inherited
    /// one too, is grown to hold `index`, changed there and stored with createCategories.
    bool setValueAt(std::string_view path, std::size_t index, std::string value);
    /// Takes out a category or property with all below it. Nodes directly under the root stay, and
    /// so does the root; nothing is reported.
    void removeNode(std::string_view path);

    /// Empty for a missing path. Not to be kept while others change the store.
    [[nodiscard]] const std::vector<std::string>& getValueList(std::string_view path) const;
    [[nodiscard]] std::size_t getValueCount(std::string_view path) const;
    [[nodiscard]] std::string getStringAt(std::string_view path, std::size_t index,
                                          const std::string& defaultValue) const;
    [[nodiscard]] std::string getString(std::string_view path,
                                        const std::string& defaultValue) const {
        return getStringAt(path, 0, defaultValue);
    }
    // Read by safeParse; a value that is not of the type gives the default too.
    [[nodiscard]] bool getBooleanAt(std::string_view path, std::size_t index,
                                    bool defaultValue) const;
    [[nodiscard]] int getIntegerAt(std::string_view path, std::size_t index,
                                   int defaultValue) const;
    [[nodiscard]] std::int64_t getLargeIntegerAt(std::string_view path, std::size_t index,
                                                 std::int64_t defaultValue) const;
    [[nodiscard]] double getRealAt(std::string_view path, std::size_t index,
                                   double defaultValue) const;
    [[nodiscard]] bool getBoolean(std::string_view path, bool defaultValue) const {
        return getBooleanAt(path, 0, defaultValue);
    }
    [[nodiscard]] int getInteger(std::string_view path, int defaultValue) const {
        return getIntegerAt(path, 0, defaultValue);
    }
    [[nodiscard]] std::int64_t getLargeInteger(std::string_view path,
                                               std::int64_t defaultValue) const {
        return getLargeIntegerAt(path, 0, defaultValue);
    }
    [[nodiscard]] double getReal(std::string_view path, double defaultValue) const {
        return getRealAt(path, 0, defaultValue);
    }

    /// The names of the direct children of a category (found without inheritance), in the table's
    /// order.
    [[nodiscard]] std::vector<std::string> getSubProperties(std::string_view path) const;
    [[nodiscard]] std::vector<std::string> getSubCategories(std::string_view path) const;
    /// Whether the category (found without inheritance) inherits; false if there is none.
    [[nodiscard]] bool isInheriting(std::string_view path) const;

private:
    static ConfigNode* findNode(ConfigCategory* start, std::string_view path, bool useInheritance);
    static ConfigCategory* findCategory(ConfigCategory* start, std::string_view path);
    static ConfigProperty* findProperty(ConfigCategory* start, std::string_view path);

    // The rest expects the lock to be held.
    bool makeRoot(bool inherit);
    ConfigCategory* makeParents(std::string_view path);
    bool addCategoryLocked(std::string_view path, bool inherit, bool createParents);
    std::vector<std::string> childNames(std::string_view path, bool leaves) const;
    template <typename T>
    T parsedAt(std::string_view path, std::size_t index, T defaultValue) const;

    std::unique_ptr<ConfigCategory> ownedRoot_;
    ConfigCategory* root_; // ownedRoot_ if this store owns its tree, or another store's category
    bool owns_;
    mutable Mutex lock_;
};

} // namespace Orvil
