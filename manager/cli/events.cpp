// SPDX-License-Identifier: MIT
#include "manager/cli/events.h"

#include "manager/library/error.h"

namespace manager {

EventHandler::EventHandler(AEEventClass eventClass, AEEventID id, AEEventHandlerProcPtr routine,
                           void* context)
    : class_(eventClass), id_(id), upp_(NewAEEventHandlerUPP(routine)) {
    if (upp_ == nullptr || AEInstallEventHandler(class_, id_, upp_, context, false) != noErr) {
        DisposeAEEventHandlerUPP(upp_);
        throw Error("no event handler can be installed");
    }
}

EventHandler::~EventHandler() {
    AERemoveEventHandler(class_, id_, upp_, false);
    DisposeAEEventHandlerUPP(upp_);
}

} // namespace manager
