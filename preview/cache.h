// SPDX-License-Identifier: MIT
// Keeps the answers that were used last, up to a number of bytes.
#pragma once

#include "preview/fileidentity.h"
#include "preview/request.h"

#include <list>
#include <memory>
#include <string_view>
#include <unordered_map>

namespace preview {

using SharedAnswer = std::shared_ptr<const Answer>;

/// [one-thread]
class Cache {
public:
    explicit Cache(std::size_t maximumBytes) : maximumBytes_(maximumBytes) {}
    /// Null: there is none of this file.
    [[nodiscard]] SharedAnswer find(std::string_view key, const FileIdentity& identity);
    /// In the place of what there was of the key. Forgets what has not been used for longest until
    /// it fits.
    void add(const std::string& key, const FileIdentity& identity, const SharedAnswer& answer);

private:
    struct Entry {
        std::string key;
        FileIdentity identity;
        SharedAnswer answer;
        [[nodiscard]] std::size_t bytes() const;
    };

    using Entries = std::list<Entry>;
    void forget(Entries::iterator entry);

    std::size_t maximumBytes_;
    std::size_t bytes_ = 0;
    Entries entries_; ///< last used first
    std::unordered_map<std::string_view, Entries::iterator> places_;
};

} // namespace preview
