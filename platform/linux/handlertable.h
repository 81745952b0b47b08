// SPDX-License-Identifier: MIT
// The application's table of installed Apple-event handlers.
#pragma once

#include "platform/appleevents.h"

#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace platform {

struct InstalledHandler {
    AEEventHandlerProcPtr routine = nullptr;
    void* refCon = nullptr;
};

/// [any-thread] A handler that is being called may change the table.
class HandlerTable {
public:
    static HandlerTable& instance();

    void install(AEEventClass eventClass, AEEventID eventID, InstalledHandler handler);
    /// A null `routine` removes whichever there is. False: nothing to remove.
    bool remove(AEEventClass eventClass, AEEventID eventID, AEEventHandlerProcPtr routine);
    /// The entry that fits best: exact, then any ID of the class, then that ID of any class, then
    /// the one for everything.
    std::optional<InstalledHandler> find(AEEventClass eventClass, AEEventID eventID);

private:
    std::mutex mutex_;
    std::map<std::pair<AEEventClass, AEEventID>, InstalledHandler> handlers_;
};

} // namespace platform
