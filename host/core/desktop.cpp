// SPDX-License-Identifier: MIT
// Registering with the desktop, and serving its events.
#include "host/core/desktop.h"

#include "platform/application.h"

namespace host {

DesktopPresence::DesktopPresence(Core& core) : core_(core) {
    const OSStatus status = PLRegisterApplication(signature, kPLManyInstances, "glyphora-host");
    registered_ = status == noErr;
    if (!registered_) {
        core.frontend().reportError("the desktop's session bus cannot be reached (status " +
                                    std::to_string(status) +
                                    "); the font manager will not be found");
    }
}

DesktopPresence::~DesktopPresence() {
    if (registered_) {
        PLUnregisterApplication();
    }
}

std::size_t DesktopPresence::dispatchEvents() {
    if (!registered_) {
        return 0;
    }
    const Core::ServeScope serving(core_, nullptr);
    const std::int32_t count = PLDispatchPendingEvents();
    if (count < 0) {
        registered_ = false;
        PLUnregisterApplication();
        core_.frontend().reportError("the desktop's session bus has gone");
        return 0;
    }
    return static_cast<std::size_t>(count);
}

} // namespace host
