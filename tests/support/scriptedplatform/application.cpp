// SPDX-License-Identifier: MIT
// This process as a scripted application: events that wait, and their dispatch.
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include "platform/application.h"

using scripted::Platform;

OSStatus PLRegisterApplication(OSType signature, PLInstances /*instances*/, const char* /*name*/) {
    Platform* const platform = Platform::current();
    if (platform == nullptr) {
        return connectionInvalid;
    }
    if (platform->isApplication || signature == 0) {
        return paramErr;
    }
    platform->isApplication = true;
    return noErr;
}

void PLUnregisterApplication() {
    if (Platform* const platform = Platform::current()) {
        platform->isApplication = false;
        platform->pending.clear();
    }
}

int PLEventFileDescriptor() {
    return -1;
}

std::int32_t PLDispatchPendingEvents() {
    Platform* const platform = Platform::current();
    if (platform == nullptr) {
        return connectionInvalid;
    }
    std::int32_t dispatched = 0;
    while (!platform->pending.empty()) {
        const scripted::SentEvent event = platform->pending.front();
        platform->pending.pop_front();
        platform->handle(event.eventClass, event.eventID);
        ++dispatched;
    }
    return dispatched;
}

std::int32_t PLWaitForEvents(std::int32_t /*milliseconds*/) {
    return PLDispatchPendingEvents();
}
