// SPDX-License-Identifier: MIT
// Collections and tags in the window: made, filled, renamed, switched and unmade by menu, key and
// drag.
#include "manager/qt/librarywindow.h"

#include "manager/qt/mnemonics.h"
#include "manager/qt/text.h"
#include "manager/view/texts.h"

#include <QAction>
#include <QMenu>
#include <QShortcut>

#include <set>

namespace manager {

void LibraryWindow::makeGroupActions(QMenu& fonts) {
    fonts.addSeparator();
    const struct {
        GroupKind kind;
        std::string title;
        Qt::Key key;
    } kinds[] = {
        {GroupKind::Collection, translated("Add to &Collection"), Qt::Key_G},
        {GroupKind::Tag, translated("Add &Tag"), Qt::Key_T},
    };
    for (const auto& [kind, title, key] : kinds) {
        QMenu* const menu = fonts.addMenu(text(title));
        list_->addAction(menu->menuAction());
        connect(menu, &QMenu::aboutToShow, this,
                [this, menu, kind = kind] { fillGroupMenu(*menu, kind); });
        connect(new QShortcut(Qt::CTRL | key, this), &QShortcut::activated, this, [this, menu] {
            const QRect row = list_->visualRect(list_->currentIndex());
            menu->popup(list_->viewport()->mapToGlobal(row.bottomLeft()));
        });
    }
    takeOut_ = fonts.addAction(QString(), this, [this] {
        if (const auto title = sidebar_->group()) {
            groupDeeds_.remove(*title, chosenFonts());
        }
    });
    takeOut_->setShortcut(Qt::Key_Delete);
    takeOut_->setShortcutContext(Qt::WidgetShortcut);
    list_->addAction(takeOut_);

    makeDrawingAction(fonts);
    keep_ = fonts.addAction(text(translated("&Keep This, Deactivate and Tag Its Copies")), this,
                            [this] { keepOne(); });
    keep_->setObjectName(QStringLiteral("keep"));
    list_->addAction(keep_);

    const auto add = [this](const std::string& title, const QKeySequence& key, auto deed,
                            std::vector<QAction*>& actions) {
        auto* const action = new QAction(text(title), sidebar_);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, deed);
        sidebar_->addAction(action);
        actions.push_back(action);
    };
    add(
        translated("&Activate All"), {}, [this] { switchSet(true); }, ofSet_);
    add(
        translated("&Deactivate All"), {}, [this] { switchSet(false); }, ofSet_);
    add(
        translated("&Rename"), Qt::Key_F2,
        [this] {
            if (const auto title = sidebar_->group()) {
                sidebar_->editName(*title);
            }
        },
        ofGroup_);
    add(
        translated("D&elete"), Qt::Key_Delete, [this] { unmakeGroup(); }, ofGroup_);
    add(
        translated("Remove from the &Library"), Qt::Key_Delete,
        [this] { deeds_.removeFolder(text(sidebar_->place().name)); }, ofFolder_);
    for (const GroupKind kind : {GroupKind::Collection, GroupKind::Tag}) {
        auto* const action = new QAction(
            text(kind == GroupKind::Tag ? translated("New &Tag") : translated("New &Collection")),
            sidebar_);
        connect(action, &QAction::triggered, this, [this, kind] { newGroup(kind, {}); });
        sidebar_->addAction(action);
    }
    sidebar_->setContextMenuPolicy(Qt::ActionsContextMenu);
    sidebar_->setHandlers({[this](const GroupTitle& title, const std::string& name) {
                               groupDeeds_.rename(title, name);
                           },
                           [this](const GroupTitle& title, const FontChoice& dropped) {
                               if (title.name.empty()) {
                                   newGroup(title.kind, dropped);
                               } else {
                                   groupDeeds_.add(title, dropped);
                               }
                           },
                           [this](bool on) { switchSet(on); }});
}

void LibraryWindow::fillGroupMenu(QMenu& menu, GroupKind kind) {
    menu.clear();
    for (const Group& group : groups_) {
        if (group.kind == kind) {
            menu.addAction(inMenu(text(group.name)), this,
                           [this, title = GroupTitle{kind, group.name}] {
                               groupDeeds_.add(title, chosenFonts());
                           });
        }
    }
    menu.addSeparator();
    menu.addAction(
        text(kind == GroupKind::Tag ? translated("New &Tag") : translated("New &Collection")), this,
        [this, kind] { newGroup(kind, chosenFonts()); });
}

void LibraryWindow::newGroup(GroupKind kind, const FontChoice& fonts) {
    const std::string begin =
        kind == GroupKind::Tag ? translated("New tag") : translated("New collection");
    std::string name = begin;
    for (int number = 2; findGroup(groups_, kind, name) != nullptr; ++number) {
        name = begin + " " + std::to_string(number);
    }
    sidebar_->editName({kind, name}); // once it is there
    groupDeeds_.add({kind, name}, fonts);
}

void LibraryWindow::switchSet(bool on) {
    const auto title = sidebar_->group();
    const Group* const group = title ? findGroup(groups_, title->kind, title->name) : nullptr;
    const bool isEmpty = title && (group == nullptr || group->members.empty());
    if (const auto name = sidebar_->setName(); name && !isEmpty) {
        switchNamed(on, {text(*name)}); // whatever the numbers of its members are then
    }
}

void LibraryWindow::unmakeGroup() {
    if (const auto title = sidebar_->group()) {
        groupDeeds_.unmake(*title);
    }
}

// Nobody's files are touched: the tag tells which ones can be done without.
void LibraryWindow::keepOne() {
    std::vector<ContainerId> kept;
    for (const auto& [id, files] : chosenFonts()) {
        kept.push_back(ContainerId{id});
    }
    const FaceTable& table = view_->table;
    FontChoice others;
    QStringList active;
    for (const ContainerId id : view_->copies.othersOf(table, kept)) {
        const auto number = static_cast<std::int32_t>(id);
        others[number]; // all of it
        if (!view_->states.why(id).empty()) {
            active.push_back(QString::number(number));
        }
    }
    if (others.empty()) {
        tell(text(translated("Each copy of it lies among fonts that are nowhere else.")));
        return;
    }
    // Commands ask for it by name, and users may change their language: it is not translated.
    groupDeeds_.add({GroupKind::Tag, "Duplicates"}, others);
    switchNamed(false, active);
}

void LibraryWindow::showGroupActions() {
    const auto title = sidebar_->group();
    takeOut_->setVisible(title.has_value());
    keep_->setVisible(sidebar_->place().kind == SidebarPlace::Kind::Copies);
    showDrawingAction();
    if (title) {
        takeOut_->setText(text(translated("&Remove from %1")).arg(inMenu(text(title->name))));
    }
    for (QAction* const action : ofGroup_) {
        action->setEnabled(title.has_value());
    }
    for (QAction* const action : ofFolder_) {
        action->setEnabled(sidebar_->place().kind == SidebarPlace::Kind::Folder);
    }
    for (QAction* const action : ofSet_) {
        action->setEnabled(sidebar_->setName().has_value());
    }
}

FontChoice LibraryWindow::chosenFonts() const {
    return fontsOf(model_, list_->selectionModel()->selectedRows());
}

} // namespace manager
