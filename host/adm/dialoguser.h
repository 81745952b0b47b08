// SPDX-License-Identifier: MIT
// Whatever uses dialogs in place of a person, or watches one do so.
#pragma once

#include "host/adm/dialog.h"

#include <cstdint>
#include <limits>

namespace host {

/// Asked by the view that shows the dialogs, from the loop of a modal run. Implementations must not
/// throw.
class DialogUser {
public:
    /// For ever, as a number of ticks.
    static constexpr std::uint32_t forEver = std::numeric_limits<std::uint32_t>::max();

    virtual ~DialogUser() = default;

    /// [main-thread] The dialog is about to run.
    virtual void begun(Dialog& dialog) = 0;
    /// [main-thread, modal] Does one thing with `dialog`, the innermost that runs, and gives 0; or,
    /// if it has nothing to do, the ticks after which it wants to be asked again even if nothing
    /// has happened by then.
    [[nodiscard]] virtual std::uint32_t act(Dialog& dialog) = 0;
    /// [main-thread] The dialog's `ending` is set and its run over; it is still the last of
    /// Dialogs::running().
    virtual void ended(Dialog& dialog) = 0;
};

} // namespace host
