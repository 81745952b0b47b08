// SPDX-License-Identifier: MIT
// What a descriptor holds: plain bytes, or an event with its parameters and attributes.
#pragma once

#include "glibhandles.h"

#include "platform/appleevents.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace platform {

/// One parameter or attribute. The data is shared with the bus message it came with or goes into.
struct EventItem {
    AEKeyword keyword = 0;
    DescType type = typeNull;
    BytesHandle data;
};

/// Parameters or attributes, in the order in which they were put.
class EventItems {
public:
    /// More than any application puts; keeps the search through an event of a hostile peer short.
    static constexpr std::size_t maximumCount = 1024;

    const std::vector<EventItem>& all() const { return items_; }
    /// The first item with `keyword` (typeWildCard: the first of all), or null.
    const EventItem* find(AEKeyword keyword) const;
    /// The bytes that the item with `keyword` takes on the bus; 0 without one.
    std::size_t wireSizeOf(AEKeyword keyword) const;
    /// Sets or replaces. False: too many.
    bool put(EventItem item);
    /// Adds without looking for the keyword. False: too many.
    bool append(EventItem item);
    /// The bytes that all take on the bus.
    std::size_t wireSize() const { return wireSize_; }

    /// The bytes that an item with `size` bytes of data takes on the bus.
    static constexpr std::size_t wireSizeFor(std::size_t size) {
        constexpr std::size_t header = 12; // keyword, type and length
        constexpr std::size_t alignment = 8;
        return (header + size + alignment - 1) / alignment * alignment;
    }

private:
    std::vector<EventItem> items_;
    std::size_t wireSize_ = 0;
};

struct Event {
    AEEventClass eventClass = 0;
    AEEventID eventID = 0;
    AEReturnID returnID = 0;
    AETransactionID transactionID = 0;
    EventItem target; ///< no data in events that came in and in replies
    EventItems parameters;
    EventItems attributes;
    std::optional<std::int32_t> senderProcess; ///< of events that came in

    std::size_t wireSize() const { return parameters.wireSize() + attributes.wireSize(); }
};

/// Makes an AEDesc own an event.
[[nodiscard]] OSErr makeEventDesc(Event event, AppleEvent& result);
/// Null when the descriptor is not an event.
const Event* eventOf(const AEDesc* desc);
Event* eventOf(AEDesc* desc);

} // namespace platform

/// What AEDesc::dataHandle points to; an Event exactly when the type is typeAppleEvent.
struct PLDescStorage {
    std::variant<platform::BytesHandle, platform::Event> content;
};
