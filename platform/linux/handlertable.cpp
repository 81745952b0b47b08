// SPDX-License-Identifier: MIT
// Installing, removing and finding Apple-event handlers.
#include "handlertable.h"

#include "glibhandles.h"

#include <memory>
#include <new>

struct OpaqueAEEventHandler {
    AEEventHandlerProcPtr routine;
};

namespace platform {

HandlerTable& HandlerTable::instance() {
    static Immortal<HandlerTable> table;
    return *table;
}

void HandlerTable::install(AEEventClass eventClass, AEEventID eventID, InstalledHandler handler) {
    const std::scoped_lock lock(mutex_);
    handlers_[{eventClass, eventID}] = handler;
}

bool HandlerTable::remove(AEEventClass eventClass, AEEventID eventID,
                          AEEventHandlerProcPtr routine) {
    const std::scoped_lock lock(mutex_);
    const auto found = handlers_.find({eventClass, eventID});
    if (found == handlers_.end() || (routine != nullptr && found->second.routine != routine)) {
        return false;
    }
    handlers_.erase(found);
    return true;
}

std::optional<InstalledHandler> HandlerTable::find(AEEventClass eventClass, AEEventID eventID) {
    const std::scoped_lock lock(mutex_);
    for (const AEEventClass wantedClass : {eventClass, AEEventClass{typeWildCard}}) {
        for (const AEEventID wantedID : {eventID, AEEventID{typeWildCard}}) {
            const auto found = handlers_.find({wantedClass, wantedID});
            if (found != handlers_.end()) {
                return found->second;
            }
        }
    }
    return std::nullopt;
}

} // namespace platform

using platform::HandlerTable;

AEEventHandlerUPP NewAEEventHandlerUPP(AEEventHandlerProcPtr routine) {
    if (routine == nullptr) {
        return nullptr;
    }
    return std::unique_ptr<OpaqueAEEventHandler>(new (std::nothrow) OpaqueAEEventHandler{routine})
        .release();
}

void DisposeAEEventHandlerUPP(AEEventHandlerUPP upp) {
    const std::unique_ptr<OpaqueAEEventHandler> disposed(upp);
}

OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                            void* refCon, bool isSystemHandler) {
    if (handler == nullptr || isSystemHandler) {
        return paramErr;
    }
    HandlerTable::instance().install(eventClass, eventID, {handler->routine, refCon});
    return noErr;
}

OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                           bool isSystemHandler) {
    if (isSystemHandler) {
        return paramErr;
    }
    const AEEventHandlerProcPtr routine = handler != nullptr ? handler->routine : nullptr;
    return HandlerTable::instance().remove(eventClass, eventID, routine)
               ? OSErr{noErr}
               : OSErr{errAEHandlerNotFound};
}
