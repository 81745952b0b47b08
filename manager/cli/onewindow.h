// SPDX-License-Identifier: MIT
// One window for all of a session: whoever wants another hands over to it what it is to show.
#pragma once

#include "manager/cli/events.h"
#include "manager/view/window.h"

#include <functional>

namespace manager {

/// Makes this process the one with the window, until PLUnregisterApplication. True: another is, and
/// has taken the request. Throws Error when that does not answer. Where there is no session bus,
/// this process may have a window of its own.
[[nodiscard]] bool handOver(const WindowRequest& request);

/// Whether a process of this session has the window. Without a bus, none has.
[[nodiscard]] bool isWindowOpen();

/// [handler-thread] Has `take` called, while it lives, for what others hand over. The constructor
/// throws Error.
class WindowRequests {
public:
    explicit WindowRequests(std::function<void(const WindowRequest&)> take);

private:
    static OSErr handle(const AppleEvent* event, AppleEvent* reply, void* own);

    std::function<void(const WindowRequest&)> take_;
    EventHandler handler_;
};

} // namespace manager
