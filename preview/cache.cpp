// SPDX-License-Identifier: MIT
// A list in the order of use, and a table of the places in it.
#include "preview/cache.h"

#include <iterator>

namespace preview {

std::size_t Cache::Entry::bytes() const {
    constexpr std::size_t housekeeping = 300; // of list, table and allocator, about
    return key.size() + answer->picture.pixels.size() + answer->problem.size() +
           answer->missing.size() * sizeof(char32_t) + answer->drawn.size() + housekeeping;
}

SharedAnswer Cache::find(std::string_view key, const FileIdentity& identity) {
    const auto place = places_.find(key);
    if (place == places_.end() || place->second->identity != identity) {
        return nullptr;
    }
    entries_.splice(entries_.begin(), entries_, place->second);
    return place->second->answer;
}

void Cache::forget(Entries::iterator entry) {
    bytes_ -= entry->bytes();
    places_.erase(entry->key);
    entries_.erase(entry);
}

void Cache::add(const std::string& key, const FileIdentity& identity, const SharedAnswer& answer) {
    if (const auto place = places_.find(key); place != places_.end()) {
        forget(place->second);
    }
    entries_.push_front({key, identity, answer});
    places_.emplace(entries_.front().key, entries_.begin());
    bytes_ += entries_.front().bytes();
    while (bytes_ > maximumBytes_ && !entries_.empty()) {
        forget(std::prev(entries_.end()));
    }
}

} // namespace preview
