// SPDX-License-Identifier: MIT
// Dialogs coming, running, and ending.
#include "host/adm/dialogs.h"

#include "host/adm/admsuites.h"
#include "host/core/plugin.h"

#include <algorithm>
#include <exception>
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

Dialogs::Dialogs(Core& core) : core_(core), timers_(core.clock()) {
    provideDialogSuites(core.suites());
    core.onShutDown([this](Plugin& plugin) { takeBackFrom(plugin); });
}

Dialogs::~Dialogs() = default;

const TextMetrics& Dialogs::metrics() const noexcept {
    return view_ != nullptr ? view_->metrics() : fixedMetrics_;
}

template <typename Call>
void Dialogs::call(Dialog& dialog, Call routine) noexcept {
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

SPErr Dialogs::create(Plugin& plugin, const char* name, std::int32_t layoutID,
                      ADMDialogInitProc init, void* data, ADMDialogRef& result) {
    Layout layout;
    try {
        layout = readLayout(plugin.resources() / (std::to_string(layoutID) + ".ui"));
    } catch (const LayoutError& problem) {
        core_.frontend().reportError(problem.what());
        return kBadParameterErr;
    }
    const ADMDialogRef handle =
        dialogs_.add(std::make_unique<Dialog>(plugin.number(), name, std::move(layout)));
    Dialog& dialog = **dialogs_.find(handle);
    dialog.handle = handle;
    for (const std::unique_ptr<Item>& item : dialog.items) {
        item->handle = items_.add(item.get());
        if (item->tree != nullptr) {
            item->tree->top().handle = lists_.add(&item->tree->top());
        }
    }
    SPErr error = kNoErr;
    if (init != nullptr) {
        error = kBadParameterErr; // unless the routine comes to its end
        call(dialog, [&] { error = init(handle, data); });
    }
    Dialog* const made = find(handle); // the routine may have destroyed it
    if (error == kNoErr && made != nullptr) {
        result = handle;
        return kNoErr;
    }
    if (made != nullptr) {
        drop(*made);
    }
    return error != kNoErr ? error : kBadParameterErr;
}

SPErr Dialogs::destroy(Dialog& dialog) {
    if (dialog.running || dialog.dying) {
        return kBadParameterErr;
    }
    dialog.dying = true;
    timerHandles_.forEach([&](ADMTimerRef handle, const Timer& timer) {
        if (timer.dialog == &dialog && timer.abort != nullptr) {
            call(dialog, [&] { timer.abort(dialog.handle, handle); });
        }
    });
    drop(dialog);
    return kNoErr;
}

void Dialogs::drop(Dialog& dialog) noexcept {
    if (view_ != nullptr) {
        view_->forget(dialog);
    }
    timerHandles_.forEach([&](ADMTimerRef handle, const Timer& timer) {
        if (timer.dialog == &dialog) {
            timers_.remove(timer.clock);
            timerHandles_.remove(handle);
        }
    });
    for (const std::unique_ptr<Item>& item : dialog.items) {
        if (item->tree != nullptr) {
            lists_.remove(item->tree->top().handle);
            for (const std::unique_ptr<Row>& row : item->tree->top().rows) {
                dropHandles(*row);
            }
        }
        items_.remove(item->handle);
    }
    dialogs_.remove(dialog.handle);
}

SPErr Dialogs::runModal(Dialog& dialog, std::int32_t& item) {
    if (dialog.running) {
        return kBadParameterErr;
    }
    if (view_ == nullptr && !dialog.ending) {
        dialog.ending = Dialog::Ending{kADMCancelItemID, true};
    }
    if (!dialog.ending) { // it may have ended before it was shown
        dialog.running = true;
        running_.push_back(&dialog);
        view_->runModal(dialog);
        running_.pop_back();
        dialog.running = false;
    }
    item = dialog.ending.value_or(Dialog::Ending{}).item;
    dialog.ending.reset();
    return kNoErr;
}

void Dialogs::endModal(Dialog& dialog, std::int32_t item, bool cancelled) {
    if (dialog.ending) {
        return;
    }
    dialog.ending = Dialog::Ending{item, cancelled};
    const auto at = std::find(running_.begin(), running_.end(), &dialog);
    if (at == running_.end()) {
        return;
    }
    for (auto inner = running_.rbegin(); *inner != &dialog; ++inner) {
        endModal(**inner, kADMCancelItemID, true);
    }
    view_->endModal(dialog);
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
    constexpr std::int64_t ticksPerSecond = 60;
    constexpr std::int64_t millisecondsPerSecond = 1000;
    const auto ticks = static_cast<std::uint32_t>(
        (milliseconds * ticksPerSecond + millisecondsPerSecond - 1) / millisecondsPerSecond);
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

Row& Dialogs::insertRow(RowList& list, std::size_t index) {
    Row& row = list.tree.insert(list, index);
    row.handle = rows_.add(&row);
    changed(list.tree.item());
    return row;
}

void Dialogs::removeRow(RowList& list, std::size_t index) {
    const std::unique_ptr<Row> row = list.tree.remove(list, index);
    dropHandles(*row);
    changed(list.tree.item());
}

void Dialogs::dropHandles(Row& row) noexcept {
    rows_.remove(row.handle);
    if (row.children != nullptr) {
        lists_.remove(row.children->handle);
        for (const std::unique_ptr<Row>& child : row.children->rows) {
            dropHandles(*child);
        }
    }
}

RowList& Dialogs::childrenOf(Row& row) {
    RowList& children = row.list.tree.makeChildren(row);
    if (children.handle == nullptr) {
        children.handle = lists_.add(&children);
    }
    return children;
}

void Dialogs::changed(Dialog& dialog) {
    if (view_ != nullptr) {
        view_->dialogChanged(dialog);
    }
}

void Dialogs::changed(Item& item) {
    if (view_ != nullptr) {
        view_->itemChanged(item);
    }
}

Dialog* Dialogs::find(ADMDialogRef handle) noexcept {
    const std::unique_ptr<Dialog>* const found = dialogs_.find(handle);
    return found != nullptr ? found->get() : nullptr;
}

// Flat lists and their rows have handles of the same tables; the kind keeps them apart.

RowList* Dialogs::find(ADMHierarchyListRef handle) noexcept {
    RowList* const list = value(lists_.find(handle));
    return list != nullptr && list->tree.kind() == Tree::Kind::Hierarchy ? list : nullptr;
}

RowList* Dialogs::find(ADMListRef handle) noexcept {
    RowList* const list = value(lists_.find(reinterpret_cast<ADMHierarchyListRef>(handle)));
    return list != nullptr && list->tree.kind() == Tree::Kind::Flat ? list : nullptr;
}

Row* Dialogs::find(ADMListEntryRef handle) noexcept {
    Row* const row = value(rows_.find(handle));
    return row != nullptr && row->list.tree.kind() == Tree::Kind::Hierarchy ? row : nullptr;
}

Row* Dialogs::find(ADMEntryRef handle) noexcept {
    Row* const row = value(rows_.find(reinterpret_cast<ADMListEntryRef>(handle)));
    return row != nullptr && row->list.tree.kind() == Tree::Kind::Flat ? row : nullptr;
}

void Dialogs::takeBackFrom(Plugin& plugin) {
    std::size_t count = 0;
    dialogs_.forEach([&](ADMDialogRef, const std::unique_ptr<Dialog>& dialog) {
        if (dialog->plugin == plugin.number()) {
            ++count;
            drop(*dialog);
        }
    });
    if (count > 0) {
        core_.ledger().report(plugin.name(),
                              "left " + std::to_string(count) + " dialog(s) undestroyed");
    }
}

} // namespace host
