// SPDX-License-Identifier: MIT
// The dialog manager: owns all dialogs of plug-ins, runs them, and calls the plug-ins' routines.
#pragma once

#include "host/adm/dialog.h"
#include "host/adm/drawing.h"
#include "host/core/core.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace host {

/// Shows dialogs to somebody. What is called back from Dialogs may come at any moment of a call
/// that a plug-in makes: remember it, and look at the model later. Implementations must not throw.
class DialogView {
public:
    virtual ~DialogView() = default;

    /// [main-thread, modal] Shows the dialog until its `ending` is set, and serves the desktop's
    /// events, Dialogs::runTimers() and Core::runTimers() meanwhile.
    virtual void runModal(Dialog& dialog) = 0;
    /// [main-thread] `ending` was set: leave the loop as soon as the present callbacks return.
    virtual void endModal(Dialog& dialog) = 0;
    /// [main-thread] Title, place or visibility of a dialog.
    virtual void dialogChanged(Dialog& dialog) = 0;
    /// [main-thread] Text, state, style or rows of an item.
    virtual void itemChanged(Item& item) = 0;
    /// [main-thread] The dialog is about to die; it does not run.
    virtual void forget(Dialog& dialog) = 0;
    /// [main-thread] How its texts are measured; valid as long as the view.
    virtual const TextMetrics& metrics() const = 0;
};

/// What a drawer's handle stands for.
struct Drawer {
    Canvas* canvas = nullptr; ///< nullptr: it only measures
    ADMRect bounds{};
    Color color = kADMTextColor;
};

struct DialogNotifier {
    Item* item = nullptr; ///< nullptr: of the dialog
    std::string type;
};

struct DialogTracker {
    std::uint32_t modifiers = 0;
};

/// [main-thread] A routine that throws is noted as misbehaviour of its plug-in, and its dialog
/// ends. Plug-ins are shut down before it goes.
class Dialogs {
public:
    /// `core` outlives it. Provides the suites.
    explicit Dialogs(Core& core);
    Dialogs(const Dialogs&) = delete;
    Dialogs& operator=(const Dialogs&) = delete;
    ~Dialogs();

    /// Who shows the dialogs from now on; nullptr for nobody: a modal run ends then at once,
    /// cancelled. `view` outlives its last modal run.
    void setView(DialogView* view) noexcept { view_ = view; }
    /// Done before each dialog is made, so that what its plug-in then asks the host for is fresh.
    void setBeforeCreate(std::function<void()> routine) { beforeCreate_ = std::move(routine); }
    const TextMetrics& metrics() const noexcept;
    Core& core() noexcept { return core_; }
    /// The dialogs that run, innermost last.
    const std::vector<Dialog*>& running() const noexcept { return running_; }

    // What a user does. None of it, but for the opening of rows, does anything to a dialog within
    // which another one runs, or to an item that is not enabled.
    void press(Item& item);
    /// As if its second button were pressed; ends it anyway if there is none.
    void giveUp(Dialog& dialog);
    void select(Tree& tree, std::vector<Row*> rows, Row* active);
    /// The release of a mouse button over a row, after the selection has changed.
    void click(Row& row, bool twice);
    void click(Dialog& dialog, bool twice);
    void click(Item& item, bool twice);
    void setExpanded(Row& row, bool expanded);

    /// Has the row drawn. `width` and `height` are its size. By the plug-in's routine if it has
    /// one, else its text.
    void draw(Row& row, Canvas& canvas, std::int32_t width, std::int32_t height);
    void draw(Item& item, Canvas& canvas);
    void draw(Dialog& dialog, Canvas& canvas);

    /// Calls the routines of the running dialogs' timers that are due; says how many.
    std::size_t runTimers();
    /// Ticks until the next is due (0: now); nothing when there is none.
    std::optional<std::uint32_t> ticksToNextTimer() { return timers_.ticksToNext(); }

    // For the suites. Handles that mean nothing give nullptr.
    SPErr create(Plugin& plugin, const char* name, std::int32_t layoutID, ADMDialogInitProc init,
                 void* data, ADMDialogRef& result);
    SPErr destroy(Dialog& dialog);
    SPErr runModal(Dialog& dialog, std::int32_t& item);
    void endModal(Dialog& dialog, std::int32_t item, bool cancelled);
    SPErr addTimer(Dialog& dialog, std::int32_t milliseconds, ADMTimerProc proc,
                   ADMTimerAbortProc abort, ADMTimerRef& result);
    Row& insertRow(RowList& list, std::size_t index);
    void removeRow(RowList& list, std::size_t index);
    RowList& childrenOf(Row& row);
    void changed(Dialog& dialog);
    void changed(Item& item);
    void defaultNotify(Dialog& dialog, const DialogNotifier& notifier);
    void defaultNotify(Item& item, ADMNotifierRef handle);

    Dialog* find(ADMDialogRef handle) noexcept;
    Item* find(ADMItemRef handle) noexcept { return value(items_.find(handle)); }
    RowList* find(ADMHierarchyListRef handle) noexcept;
    RowList* find(ADMListRef handle) noexcept;
    Row* find(ADMListEntryRef handle) noexcept;
    Row* find(ADMEntryRef handle) noexcept;
    Drawer* find(ADMDrawerRef handle) noexcept { return drawers_.find(handle); }
    const DialogNotifier* find(ADMNotifierRef handle) noexcept { return notifiers_.find(handle); }
    const DialogTracker* find(ADMTrackerRef handle) noexcept { return trackers_.find(handle); }
    ADMDrawerRef measuringDrawer() const noexcept { return measuringDrawer_; }

private:
    class Run;

    struct Timer {
        Dialog* dialog;
        AITimerHandle clock;
        ADMTimerProc proc;
        ADMTimerAbortProc abort;
    };

    template <typename Value>
    static Value* value(Value** found) noexcept {
        return found != nullptr ? *found : nullptr;
    }
    /// Calls a plug-in's routine; `routine` is that call.
    void call(Dialog& dialog, const std::function<void()>& routine) noexcept;
    template <typename Call>
    void withDrawer(Canvas& canvas, const ADMRect& bounds, Call routine);
    bool isReached(const Dialog& dialog) const noexcept;
    template <typename Tracked, typename Handle>
    void track(Dialog& dialog, const Tracked& tracked, Handle handle, bool twice);
    void notify(Item& item);
    void notifyDialog(Dialog& dialog, ADMNotifierRef handle);
    void dropHandles(Row& row) noexcept;
    void drop(Dialog& dialog) noexcept;
    void takeBackFrom(Plugin& plugin);

    Core& core_;
    DialogView* view_ = nullptr;
    std::function<void()> beforeCreate_;
    FixedMetrics fixedMetrics_;
    std::vector<Dialog*> running_;
    Timers timers_;
    HandleTable<std::unique_ptr<Dialog>, ADMDialogRef> dialogs_;
    HandleTable<Item*, ADMItemRef> items_;
    HandleTable<RowList*, ADMHierarchyListRef> lists_; ///< of flat lists, too
    HandleTable<Row*, ADMListEntryRef> rows_;          ///< of flat lists, too
    HandleTable<Timer, ADMTimerRef> timerHandles_;
    HandleTable<Drawer, ADMDrawerRef> drawers_;
    HandleTable<DialogNotifier, ADMNotifierRef> notifiers_;
    HandleTable<DialogTracker, ADMTrackerRef> trackers_;
    ADMDrawerRef measuringDrawer_ = drawers_.add();
    Published<Dialogs> published_{*this};
};

} // namespace host
