// SPDX-License-Identifier: MIT
// A list in the order of use, and a table of the places in it.
#include "preview/cache.h"

namespace preview {

std::size_t Cache::Entry::bytes() const {
    constexpr std::size_t housekeeping = 256; // of list, table and allocator, about
    return key.size() + answer->picture.pixels.size() + answer->problem.size() +
           answer->missing.size() * sizeof(char32_t) + housekeeping;
}

SharedAnswer Cache::find(std::string_view key) {
    const auto place = places_.find(key);
    if (place == places_.end()) {
        return nullptr;
    }
    entries_.splice(entries_.begin(), entries_, place->second);
    return place->second->answer;
}

void Cache::add(const std::string& key, const SharedAnswer& answer) {
    if (find(key)) {
        return;
    }
    entries_.push_front({key, answer});
    places_.emplace(entries_.front().key, entries_.begin());
    bytes_ += entries_.front().bytes();
    while (bytes_ > maximumBytes_ && !entries_.empty()) {
        bytes_ -= entries_.back().bytes();
        places_.erase(entries_.back().key);
        entries_.pop_back();
    }
}

} // namespace preview
