// SPDX-License-Identifier: MIT
// Registering with the desktop, and serving its events.
#include "host/core/desktop.h"

#include "host/core/timers.h"
#include "platform/application.h"
#include "platform/timing.h"

#include <algorithm>
#include <limits>

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

std::size_t DesktopPresence::dispatchEvents() noexcept {
    return registered_ ? serve(0) : 0;
}

std::size_t DesktopPresence::waitForEvents(std::uint32_t ticks) noexcept {
    if (!registered_) {
        Delay(ticks, nullptr);
        return 0;
    }
    constexpr std::uint64_t millisecondsPerSecond = 1000;
    const std::uint64_t milliseconds =
        (ticks * millisecondsPerSecond + ticksPerSecond - 1) / ticksPerSecond;
    return serve(static_cast<std::int32_t>(
        std::min<std::uint64_t>(milliseconds, std::numeric_limits<std::int32_t>::max())));
}

std::size_t DesktopPresence::serve(std::int32_t milliseconds) noexcept {
    try {
        const Core::ServeScope serving(core_, nullptr);
        const std::int32_t count = PLWaitForEvents(milliseconds);
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        registered_ = false;
        PLUnregisterApplication();
        core_.frontend().reportError("the desktop's session bus has gone");
        return 0;
    } catch (...) {
        core_.ledger().report("", "threw an exception out of a handler of Apple events");
        return 1;
    }
}

} // namespace host
