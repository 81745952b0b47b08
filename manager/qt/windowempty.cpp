// SPDX-License-Identifier: MIT
// What stands in the list's place while it is empty: why, and what to do.
#include "manager/qt/librarywindow.h"
#include "manager/qt/text.h"
#include "manager/view/texts.h"

#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

namespace manager {

QWidget* LibraryWindow::makeEmpty() {
    auto* const page = new QWidget(this);
    page->setBackgroundRole(QPalette::Base); // as the list
    page->setAutoFillBackground(true);
    auto* const column = new QVBoxLayout(page);
    empty_ = new QLabel(page);
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setWordWrap(true);
    empty_->setTextFormat(Qt::PlainText);
    empty_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    empty_->setMargin(24);
    way_ = new QPushButton(page);
    way_->setObjectName(QStringLiteral("way"));
    connect(way_, &QPushButton::clicked, this, [this] {
        if (const auto deed = wayOut_) { // it may set another one
            deed();
        }
    });
    column->addStretch(1);
    column->addWidget(empty_);
    column->addWidget(way_, 0, Qt::AlignHCenter);
    column->addStretch(2);
    return page;
}

void LibraryWindow::setEmpty(const QString& why, const std::string& way,
                             std::function<void()> wayOut) {
    empty_->setText(why);
    way_->setText(text(way));
    way_->setAccessibleDescription(why);
    way_->setVisible(wayOut != nullptr);
    way_->setEnabled(true);
    wayOut_ = std::move(wayOut);
    pages_->setCurrentIndex(1);
}

void LibraryWindow::fail(const QString& problem) {
    problems_->show(readDeed(), {problem});
    if (view_ != nullptr) {
        return; // it is shown as it was
    }
    setEmpty(text(translated("The library cannot be read.")) + QStringLiteral("\n\n") + problem,
             translated("Try Again"), [this] {
                 problems_->show(readDeed(), {});
                 way_->setEnabled(false);
                 read();
             });
    letHear(empty_->text());
    tellShown(problem);
}

void LibraryWindow::showEmpty() {
    if (model_.rowCount() != 0) {
        pages_->setCurrentIndex(0);
        return;
    }
    if (view_->table.faces().empty()) {
        setEmpty(text(translated("There are no fonts in the library yet. Drop a folder of fonts "
                                 "here to begin, or add one.")),
                 translated("Add a Folder…"), [this] { addFolder(); });
    } else if (!filters_->values().empty()) {
        setEmpty(text(translated("No font here passes all filters.")),
                 translated("Remove all filters"), [this] { filters_->clear(); });
    } else if (!search_->text().isEmpty()) {
        const bool isAll = sidebar_->place() == SidebarPlace();
        setEmpty(text(isAll ? translated("No font has this in its names.")
                            : translated("No font here has this in its names.")),
                 isAll ? translated("Clear the Search") : translated("Search in All Fonts"),
                 [this, isAll] {
                     if (isAll) {
                         search_->clear();
                         search_->setFocus();
                     } else {
                         sidebar_->choose({});
                     }
                 });
    } else if (const auto title = sidebar_->group()) {
        setEmpty(text(title->kind == GroupKind::Tag
                          ? translated("No font has this tag. Drag fonts onto it, or choose some "
                                       "and then Fonts, Add Tag.")
                          : translated("This collection is empty. Drag fonts onto it, or choose "
                                       "some and then Fonts, Add to Collection.")),
                 {}, nullptr);
    } else {
        setEmpty(text(translated("There is no font here.")), {}, nullptr);
    }
}

} // namespace manager
