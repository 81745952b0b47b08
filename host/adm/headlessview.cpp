// SPDX-License-Identifier: MIT
// The loop of a modal run: its user first, then timers, then the desktop.
#include "host/adm/headlessview.h"

#include <algorithm>

namespace host {

void HeadlessView::runModal(Dialog& dialog) {
    user_.begun(dialog);
    while (!dialog.ending) {
        std::uint32_t ticks = user_.act(dialog);
        if (ticks == 0 || dialogs_.core().runTimers() + dialogs_.runTimers() > 0) {
            continue; // the user may have something to do now
        }
        for (const auto next :
             {dialogs_.ticksToNextTimer(), dialogs_.core().timers().ticksToNext()}) {
            ticks = std::min(ticks, next.value_or(ticks));
        }
        wait_(ticks);
    }
    user_.ended(dialog);
}

} // namespace host
