// SPDX-License-Identifier: MIT
// Those who would have a window of their own, were there not one already.
#pragma once

#include "manager/cli/onewindow.h"

#include <QSocketNotifier>

namespace manager {

/// [main-thread] Reads what they hand over in the toolkit's loop. The process is the one with the
/// window, or nobody comes.
class Guests {
public:
    /// Throws Error.
    explicit Guests(std::function<void(const WindowRequest&)> take);
    Guests(const Guests&) = delete;
    Guests& operator=(const Guests&) = delete;
    /// From then on whoever comes has a window of their own.
    ~Guests();

private:
    WindowRequests requests_;
    QSocketNotifier events_;
};

} // namespace manager
