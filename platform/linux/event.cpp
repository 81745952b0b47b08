// SPDX-License-Identifier: MIT
// Storage of descriptors and events.
#include "event.h"

#include <algorithm>
#include <memory>
#include <new>

namespace platform {

const EventItem* EventItems::find(AEKeyword keyword) const {
    const auto found = std::find_if(items_.begin(), items_.end(), [keyword](const EventItem& item) {
        return keyword == AEKeyword{typeWildCard} || item.keyword == keyword;
    });
    return found != items_.end() ? &*found : nullptr;
}

std::size_t EventItems::wireSizeOf(AEKeyword keyword) const {
    for (const EventItem& item : items_) {
        if (item.keyword == keyword) {
            return wireSizeFor(g_bytes_get_size(item.data.get()));
        }
    }
    return 0;
}

bool EventItems::put(EventItem item) {
    for (EventItem& existing : items_) {
        if (existing.keyword == item.keyword) {
            wireSize_ -= wireSizeFor(g_bytes_get_size(existing.data.get()));
            wireSize_ += wireSizeFor(g_bytes_get_size(item.data.get()));
            existing = std::move(item);
            return true;
        }
    }
    return append(std::move(item));
}

bool EventItems::append(EventItem item) {
    if (items_.size() >= maximumCount) {
        return false;
    }
    wireSize_ += wireSizeFor(g_bytes_get_size(item.data.get()));
    items_.push_back(std::move(item));
    return true;
}

OSErr makeEventDesc(Event event, AppleEvent& result) {
    std::unique_ptr<PLDescStorage> storage(new (std::nothrow) PLDescStorage{std::move(event)});
    if (!storage) {
        return memFullErr;
    }
    result.descriptorType = typeAppleEvent;
    result.dataHandle = storage.release();
    return noErr;
}

const Event* eventOf(const AEDesc* desc) {
    if (desc == nullptr || desc->descriptorType != DescType{typeAppleEvent} ||
        desc->dataHandle == nullptr) {
        return nullptr;
    }
    return std::get_if<Event>(&static_cast<const PLDescStorage*>(desc->dataHandle)->content);
}

Event* eventOf(AEDesc* desc) {
    return const_cast<Event*>(eventOf(static_cast<const AEDesc*>(desc)));
}

} // namespace platform
