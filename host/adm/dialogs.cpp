// SPDX-License-Identifier: MIT
// Dialogs coming, running, and ending.
#include "host/adm/dialogs.h"

#include "host/adm/admsuites.h"
#include "host/core/plugin.h"

#include <algorithm>
#include <utility>

namespace host {

Dialogs::Dialogs(Core& core) : core_(core), timers_(core.clock()) {
    provideDialogSuites(core.suites());
    core.onShutDown([this](Plugin& plugin) { takeBackFrom(plugin); });
}

Dialogs::~Dialogs() = default;

const TextMetrics& Dialogs::metrics() const noexcept {
    return view_ != nullptr ? view_->metrics() : fixedMetrics_;
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
    if (beforeCreate_) {
        beforeCreate_();
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

/// A view may throw.
class Dialogs::Run {
public:
    Run(std::vector<Dialog*>& running, Dialog& dialog) : running_(running), dialog_(dialog) {
        running.push_back(&dialog);
        dialog.running = true;
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() {
        running_.pop_back();
        dialog_.running = false;
    }

private:
    std::vector<Dialog*>& running_;
    Dialog& dialog_;
};

SPErr Dialogs::runModal(Dialog& dialog, std::int32_t& item) {
    if (dialog.running) {
        return kBadParameterErr;
    }
    if (view_ == nullptr && !dialog.ending) {
        dialog.ending = Dialog::Ending{kADMCancelItemID, true};
    }
    if (!dialog.ending) { // it may have ended before it was shown
        const Run run(running_, dialog);
        view_->runModal(dialog);
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
