// SPDX-License-Identifier: MIT
// The host as an application of the desktop: found by its signature, woken by Apple events.
#pragma once

#include "host/core/core.h"
#include "platform/types.h"

#include <cstddef>
#include <cstdint>

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

    /// Runs the handlers of all waiting events and says how many there were. What a handler throws
    /// is noted as misbehaviour.
    std::size_t dispatchEvents() noexcept;
    /// [main-thread, modal] The same, after waiting up to that many ticks for the first.
    std::size_t waitForEvents(std::uint32_t ticks) noexcept;

private:
    std::size_t serve(std::int32_t milliseconds) noexcept;

    Core& core_;
    bool registered_ = false;
};

} // namespace host
