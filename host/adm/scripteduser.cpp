// SPDX-License-Identifier: MIT
// Finding rows by their words, and doing with them what a person would.
#include "host/adm/scripteduser.h"

#include "host/core/timers.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace host {

namespace {

/// What a command asks for cannot be done.
class Impossible : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::string wordsOf(Dialogs& dialogs, Row& row) {
    const ADMRect& bounds = row.list.tree.item().bounds;
    RecordingCanvas canvas;
    dialogs.draw(row, canvas,
                 row.list.entryWidth > 0 ? row.list.entryWidth : bounds.right - bounds.left,
                 row.list.entryHeight > 0 ? row.list.entryHeight : dialogs.metrics().lineHeight());
    return canvas.words();
}

/// Calls `visit` with every row of a list and below, its level, and whether it can be seen, until
/// that gives true.
template <typename Visit>
bool visitRows(RowList& list, std::uint32_t level, bool visible, const Visit& visit) {
    return std::any_of(list.rows.begin(), list.rows.end(), [&](const auto& row) {
        return visit(*row, level, visible) ||
               (row->children != nullptr &&
                visitRows(*row->children, level + 1, visible && row->expanded, visit));
    });
}

template <typename Visit>
bool visitRows(Dialog& dialog, const Visit& visit) {
    return std::any_of(dialog.items.begin(), dialog.items.end(), [&](const auto& item) {
        return item->tree != nullptr && visitRows(item->tree->top(), 0, true, visit);
    });
}

std::uint64_t revisionOf(const Dialog& dialog) {
    std::uint64_t sum = 0;
    for (const std::unique_ptr<Item>& item : dialog.items) {
        sum += item->tree != nullptr ? item->tree->revision() : 0;
    }
    return sum;
}

std::string inQuotes(std::string_view text) {
    return '"' + std::string(text) + '"';
}

/// The first row that can be seen and meets a condition.
template <typename Condition>
Row& findRow(Dialog& dialog, const std::string& text, const Condition& condition) {
    Row* found = nullptr;
    bool hidden = false;
    visitRows(dialog, [&](Row& row, std::uint32_t, bool visible) {
        const bool meets = condition(row);
        hidden = hidden || (meets && !visible);
        found = meets && visible ? &row : nullptr;
        return found != nullptr;
    });
    if (found == nullptr) {
        throw Impossible(hidden ? "the row " + inQuotes(text) + " is below a closed one"
                                : "there is no row " + inQuotes(text));
    }
    const Item& item = found->list.tree.item();
    if (!item.enabled) {
        throw Impossible("list " + std::to_string(item.id) + " is disabled");
    }
    return *found;
}

Row& rowThatSays(Dialogs& dialogs, Dialog& dialog, const std::string& text) {
    return findRow(dialog, text,
                   [&](Row& row) { return wordsOf(dialogs, row).find(text) != std::string::npos; });
}

void selectAlso(Dialogs& dialogs, Row& row) {
    Tree& tree = row.list.tree;
    if (!tree.multiSelect) {
        throw Impossible("list " + std::to_string(tree.item().id) + " lets one row be selected");
    }
    std::vector<Row*> rows = tree.selected();
    rows.push_back(&row);
    dialogs.select(tree, std::move(rows), &row);
}

void selectNone(Dialogs& dialogs, Dialog& dialog) {
    for (const std::unique_ptr<Item>& item : dialog.items) {
        if (item->tree != nullptr && !item->tree->selected().empty()) {
            dialogs.select(*item->tree, {}, nullptr);
        }
    }
}

void expand(Dialogs& dialogs, Row& row, bool expanded) {
    if (row.children == nullptr) {
        throw Impossible("there are no rows below that one");
    }
    dialogs.setExpanded(row, expanded);
}

void doubleClick(Dialogs& dialogs, Row& row) {
    const ADMListEntryRef handle = row.handle;
    // A routine that is called may take the row away.
    const auto lives = [&] {
        return dialogs.find(handle) != nullptr ||
               dialogs.find(reinterpret_cast<ADMEntryRef>(handle)) != nullptr;
    };
    dialogs.select(row.list.tree, {&row}, &row);
    for (const bool twice : {false, true}) {
        if (lives()) {
            dialogs.click(row, twice);
        }
    }
}

void press(Dialogs& dialogs, Dialog& dialog, std::int32_t id) {
    Item* const item = dialog.item(id);
    if (item == nullptr || item->kind != ItemKind::PushButton) {
        throw Impossible("there is no button " + std::to_string(id));
    }
    if (!item->enabled) {
        throw Impossible("button " + std::to_string(id) + " is disabled");
    }
    dialogs.press(*item);
}

void carryOut(Dialogs& dialogs, Dialog& dialog, const Answer& answer) {
    const auto row = [&]() -> Row& { return rowThatSays(dialogs, dialog, answer.text); };
    const auto selectOnly = [&](Row& only) { dialogs.select(only.list.tree, {&only}, &only); };
    switch (answer.kind) {
    case Answer::Kind::Select:
        return selectOnly(row());
    case Answer::Kind::Also:
        return selectAlso(dialogs, row());
    case Answer::Kind::SelectNone:
        return selectNone(dialogs, dialog);
    case Answer::Kind::Choose:
        return selectOnly(findRow(dialog, answer.text,
                                  [&](const Row& each) { return each.text == answer.text; }));
    case Answer::Kind::Expand:
    case Answer::Kind::Collapse:
        return expand(dialogs, row(), answer.kind == Answer::Kind::Expand);
    case Answer::Kind::Press:
        return press(dialogs, dialog, answer.number);
    case Answer::Kind::DoubleClick:
        return doubleClick(dialogs, row());
    case Answer::Kind::Undo:
    case Answer::Kind::Redo:
        throw Impossible("a dialog is open");
    case Answer::Kind::WaitForNews:
    case Answer::Kind::WaitForEnd:
        return;
    }
}

bool isWait(const Answer& answer) {
    return answer.kind == Answer::Kind::WaitForNews || answer.kind == Answer::Kind::WaitForEnd;
}

} // namespace

void ScriptedUser::begun(Dialog& dialog) {
    ShownDialog shown;
    shown.plugin = dialogs_.core().plugin(dialog.plugin)->name();
    shown.title = dialog.title;
    visitRows(dialog, [&](Row& row, std::uint32_t level, bool) {
        shown.rows.push_back({level, wordsOf(dialogs_, row)});
        return false;
    });
    for (const std::unique_ptr<Item>& item : dialog.items) {
        if (item->kind == ItemKind::PushButton) {
            shown.buttons.push_back({item->id, item->text, item->enabled});
        }
    }
    running_.push_back(shown_.size());
    shown_.push_back(std::move(shown));
}

std::uint32_t ScriptedUser::act(Dialog& dialog) {
    if (failed_ || next_ == answers_.size()) {
        if (!failed_ && atEnd_ == AtEnd::Leave) {
            return forEver;
        }
        giveUp(dialog);
        return 0;
    }
    const Answer& answer = answers_[next_];
    if (isWait(answer)) {
        return wait(dialog, answer);
    }
    ++next_; // before a dialog within this one asks for the next
    try {
        carryOut(dialogs_, dialog, answer);
    } catch (const Impossible& problem) {
        fail(answer, problem.what());
    }
    return 0;
}

std::uint32_t ScriptedUser::wait(Dialog& dialog, const Answer& answer) {
    const std::uint32_t now = dialogs_.core().clock()();
    if (!wait_) {
        wait_ = {&dialog, now + static_cast<std::uint32_t>(answer.number) * ticksPerSecond,
                 revisionOf(dialog)};
    }
    if (answer.kind == Answer::Kind::WaitForNews && revisionOf(*wait_->dialog) != wait_->revision) {
        wait_.reset();
        ++next_;
        return 0;
    }
    const auto left = static_cast<std::int32_t>(wait_->deadline - now); // the clock may wrap around
    if (left > 0) {
        return static_cast<std::uint32_t>(left);
    }
    fail(answer, "nothing came for " + std::to_string(answer.number) + " s");
    return 0;
}

void ScriptedUser::ended(Dialog& dialog) {
    ShownDialog& shown = shown_[running_.back()];
    shown.ending = dialog.ending.value_or(Dialog::Ending{});
    running_.pop_back();
    if (wait_ && wait_->dialog == &dialog) {
        wait_.reset();
        ++next_;
    }
    if (running_.empty()) {
        passWaits();
    }
}

void ScriptedUser::passWaits() {
    while (next_ < answers_.size() && isWait(answers_[next_])) {
        ++next_;
    }
}

void ScriptedUser::edit(const Step& undo, const Step& redo) {
    while (!failed_ && next_ < answers_.size()) {
        const Answer& answer = answers_[next_];
        const bool takesBack = answer.kind == Answer::Kind::Undo;
        if (!takesBack && answer.kind != Answer::Kind::Redo) {
            return;
        }
        ++next_;
        if (!(takesBack ? undo : redo)()) {
            fail(answer, takesBack ? "nothing was replaced" : "nothing was taken back");
        }
    }
}

void ScriptedUser::finish() {
    passWaits();
    if (!failed_ && next_ < answers_.size()) {
        fail(answers_[next_], "no dialog was shown for this");
    }
}

void ScriptedUser::fail(const Answer& answer, const std::string& problem) {
    failed_ = true;
    dialogs_.core().frontend().reportError(answer.place + ": " + problem);
}

void ScriptedUser::giveUp(Dialog& dialog) {
    shown_[running_.back()].givenUp = true;
    dialogs_.giveUp(dialog);
    if (!dialog.ending) { // a plug-in may do something else with the button
        dialogs_.endModal(dialog, kADMCancelItemID, true);
    }
}

} // namespace host
