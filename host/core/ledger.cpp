// SPDX-License-Identifier: MIT
// Counting and telling misbehaviour.
#include "host/core/ledger.h"

#include <new>

namespace host {

void Ledger::report(std::string_view plugin, std::string_view what) noexcept {
    try {
        const std::lock_guard lock(mutex_);
        std::pair<std::string, std::string> key(plugin, what);
        if (entries_.size() >= maximumEntries && !places_.contains(key)) {
            key = {"", "misbehaved in further ways"};
        }
        const auto known = places_.find(key);
        if (known != places_.end()) {
            ++entries_[known->second].times;
            return;
        }
        entries_.push_back({key.first, key.second, 1});
        places_.emplace(std::move(key), entries_.size() - 1);
        frontend_.reportMisbehaviour(entries_.back().plugin, entries_.back().what);
    } catch (const std::bad_alloc&) {
        return;
    }
}

std::vector<Misbehaviour> Ledger::entries() const {
    const std::lock_guard lock(mutex_);
    return entries_;
}

} // namespace host
