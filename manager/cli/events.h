// SPDX-License-Identifier: MIT
// Owners of what the event calls hand out.
#pragma once

#include "platform/appleevents.h"

namespace manager {

/// Disposes of itself.
struct OwnedDesc : AEDesc {
    OwnedDesc() = default;
    ~OwnedDesc() { AEDisposeDesc(this); }
    OwnedDesc(const OwnedDesc&) = delete;
    OwnedDesc& operator=(const OwnedDesc&) = delete;
};

/// An installed event handler; removed with its owner. The constructor throws Error.
class EventHandler {
public:
    EventHandler(AEEventClass eventClass, AEEventID id, AEEventHandlerProcPtr routine,
                 void* context);
    EventHandler(const EventHandler&) = delete;
    EventHandler& operator=(const EventHandler&) = delete;
    ~EventHandler();

private:
    AEEventClass class_;
    AEEventID id_;
    AEEventHandlerUPP upp_;
};

} // namespace manager
