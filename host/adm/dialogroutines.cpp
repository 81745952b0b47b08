// SPDX-License-Identifier: MIT
// Calling the plug-ins' routines: for what a user does, for drawing, and for timers.
#include "host/adm/dialogs.h"
#include "host/core/plugin.h"
#include "host/core/timers.h"

#include <utility>

namespace host {

namespace {

/// A handle that means something while it lives.
template <typename Table, typename Handle>
class ScopedHandle {
public:
    ScopedHandle(Table& table, Handle handle) noexcept : table_(table), handle_(handle) {}
    ScopedHandle(const ScopedHandle&) = delete;
    ScopedHandle& operator=(const ScopedHandle&) = delete;
    ~ScopedHandle() { table_.remove(handle_); }

    Handle get() const noexcept { return handle_; }

private:
    Table& table_;
    Handle handle_;
};

ADMRect sizeOf(const ADMRect& bounds) noexcept {
    return {0, 0, bounds.right - bounds.left, bounds.bottom - bounds.top};
}

} // namespace

void Dialogs::call(Dialog& dialog, const std::function<void()>& routine) noexcept {
    Plugin& plugin = *core_.plugin(dialog.plugin);
    const ADMDialogRef handle = dialog.handle;
    try {
        const Core::ServeScope serving(core_, &plugin);
        routine();
    } catch (...) {
        core_.ledger().report(plugin.name(), "threw an exception out of a routine of a dialog");
        if (Dialog* const still = find(handle)) { // the routine may have destroyed it
            endModal(*still, kADMCancelItemID, true);
        }
    }
}

bool Dialogs::isReached(const Dialog& dialog) const noexcept {
    return !running_.empty() && running_.back() == &dialog && !dialog.ending;
}

void Dialogs::press(Item& item) {
    if (item.enabled && item.kind == ItemKind::PushButton && isReached(item.dialog)) {
        notify(item);
    }
}

void Dialogs::giveUp(Dialog& dialog) {
    if (!isReached(dialog)) {
        return;
    }
    Item* const cancel = dialog.item(kADMCancelItemID);
    if (cancel != nullptr && cancel->enabled) {
        notify(*cancel);
    } else {
        endModal(dialog, kADMCancelItemID, true);
    }
}

void Dialogs::select(Tree& tree, std::vector<Row*> rows, Row* active) {
    Item& item = tree.item();
    if (!item.enabled || !isReached(item.dialog)) {
        return;
    }
    tree.select(std::move(rows), active);
    changed(item);
    notify(item);
}

template <typename Tracked, typename Handle>
void Dialogs::track(Dialog& dialog, const Tracked& tracked, Handle handle, bool twice) {
    if (!isReached(dialog) || tracked.track == nullptr || (tracked.mask & kADMButtonMask) == 0) {
        return;
    }
    const ScopedHandle tracker(trackers_,
                               trackers_.add(DialogTracker{twice ? kADMDoubleClickModifier : 0}));
    call(dialog, [&] { tracked.track(handle, tracker.get()); });
}

void Dialogs::click(Row& row, bool twice) {
    const Item& item = row.list.tree.item();
    if (item.enabled) {
        track(item.dialog, row.list.tree, row.handle, twice);
    }
}

void Dialogs::click(Item& item, bool twice) {
    if (item.enabled) {
        track(item.dialog, item, item.handle, twice);
    }
}

void Dialogs::click(Dialog& dialog, bool twice) {
    track(dialog, dialog, dialog.handle, twice);
}

void Dialogs::setExpanded(Row& row, bool expanded) {
    row.expanded = expanded;
    changed(row.list.tree.item());
}

void Dialogs::notify(Item& item) {
    Dialog& dialog = item.dialog;
    const ScopedHandle notifier(notifiers_,
                                notifiers_.add(DialogNotifier{&item, kADMUserChangedNotifier}));
    if (item.notify != nullptr) {
        call(dialog, [&] { item.notify(item.handle, notifier.get()); });
    } else {
        notifyDialog(dialog, notifier.get());
    }
}

void Dialogs::notifyDialog(Dialog& dialog, ADMNotifierRef handle) {
    if (dialog.notify != nullptr) {
        call(dialog, [&] { dialog.notify(dialog.handle, handle); });
    } else {
        defaultNotify(dialog, *notifiers_.find(handle));
    }
}

void Dialogs::defaultNotify(Dialog& dialog, const DialogNotifier& notifier) {
    if (notifier.item == nullptr || notifier.item->kind != ItemKind::PushButton ||
        notifier.type != kADMUserChangedNotifier) {
        return;
    }
    const std::int32_t id = notifier.item->id;
    if (id == kADMOKItemID || id == kADMCancelItemID) {
        endModal(dialog, id, id == kADMCancelItemID);
    }
}

void Dialogs::defaultNotify(Item& item, ADMNotifierRef handle) {
    notifyDialog(item.dialog, handle);
}

template <typename Call>
void Dialogs::withDrawer(Canvas& canvas, const ADMRect& bounds, Call routine) {
    const ScopedHandle drawer(drawers_, drawers_.add(Drawer{&canvas, bounds, kADMTextColor}));
    routine(drawer.get());
}

void Dialogs::draw(Row& row, Canvas& canvas, std::int32_t width, std::int32_t height) {
    Dialog& dialog = row.list.tree.item().dialog;
    const ADMListEntryDrawProc routine = row.list.tree.draw;
    if (routine == nullptr) {
        canvas.text(kADMTextColor, row.text, {0, 0});
        return;
    }
    withDrawer(canvas, {0, 0, width, height},
               [&](ADMDrawerRef drawer) { call(dialog, [&] { routine(row.handle, drawer); }); });
}

void Dialogs::draw(Item& item, Canvas& canvas) {
    if (item.draw != nullptr) {
        withDrawer(canvas, sizeOf(item.bounds), [&](ADMDrawerRef drawer) {
            call(item.dialog, [&] { item.draw(item.handle, drawer); });
        });
    }
}

void Dialogs::draw(Dialog& dialog, Canvas& canvas) {
    if (dialog.draw != nullptr) {
        withDrawer(canvas, sizeOf(dialog.bounds), [&](ADMDrawerRef drawer) {
            call(dialog, [&] { dialog.draw(dialog.handle, drawer); });
        });
    }
}

SPErr Dialogs::addTimer(Dialog& dialog, std::int32_t milliseconds, ADMTimerProc proc,
                        ADMTimerAbortProc abort, ADMTimerRef& result) {
    if (milliseconds < 1) {
        return kBadParameterErr;
    }
    constexpr std::int64_t millisecondsPerSecond = 1000;
    const auto ticks = static_cast<std::uint32_t>(
        (std::int64_t{milliseconds} * ticksPerSecond + millisecondsPerSecond - 1) /
        millisecondsPerSecond);
    const AITimerHandle clock = timers_.add(dialog.plugin, {}, ticks);
    result = timerHandles_.add(Timer{&dialog, clock, proc, abort});
    return kNoErr;
}

std::size_t Dialogs::runTimers() {
    std::size_t count = 0;
    for (const AITimerHandle clock : timers_.takeDue()) {
        // Looked up by each: a routine may end others.
        timerHandles_.forEach([&](ADMTimerRef handle, const Timer& timer) {
            if (timer.clock != clock || !timer.dialog->running || timer.dialog->ending) {
                return;
            }
            ++count;
            AIBoolean again = 0;
            const ADMTimerProc proc = timer.proc;
            Dialog& dialog = *timer.dialog;
            call(dialog, [&] { again = proc(dialog.handle, handle); });
            if (again == 0 && timerHandles_.remove(handle)) {
                timers_.remove(clock);
            }
        });
    }
    return count;
}

} // namespace host
