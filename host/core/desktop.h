// SPDX-License-Identifier: MIT
// The host as an application of the desktop: found by its signature, woken by Apple events.
#pragma once

#include "host/core/core.h"
#include "platform/types.h"

namespace host {

/// [main-thread] Registered while it lives.
class DesktopPresence {
public:
    static constexpr OSType signature = FourCharCode("ART5");

    /// Failure is reported as an error, and the host goes on without the desktop's services.
    explicit DesktopPresence(Core& core);
    DesktopPresence(const DesktopPresence&) = delete;
    DesktopPresence& operator=(const DesktopPresence&) = delete;
    ~DesktopPresence();

    /// Runs the handlers of all waiting events and says how many there were.
    std::size_t dispatchEvents();

private:
    Core& core_;
    bool registered_ = false;
};

} // namespace host
