// SPDX-License-Identifier: MIT
// The list, and what narrows it.
#include "manager/library/folders.h"
#include "manager/qt/librarywindow.h"
#include "manager/qt/text.h"
#include "manager/view/texts.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QShortcut>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace manager {

namespace {

/// Where the keyboard comes to it something is chosen: what the next keys act on.
class FontList : public QTreeView {
public:
    using QTreeView::QTreeView;

    void take() {
        setFocus();
        choose();
    }

protected:
    void focusInEvent(QFocusEvent* event) override {
        QTreeView::focusInEvent(event);
        if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason) {
            choose();
        }
    }

private:
    void choose() {
        if (!selectionModel()->hasSelection()) {
            setCurrentIndex(currentIndex().isValid() ? currentIndex() : model()->index(0, 0));
        }
    }
};

} // namespace

QWidget* LibraryWindow::makeList() {
    auto* const middle = new QWidget(this);
    auto* const column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 6, 0, 0);
    search_ = new QLineEdit(middle);
    search_->setPlaceholderText(text(translated("Search fonts")));
    search_->setAccessibleName(text(translated("Search fonts")));
    search_->setClearButtonEnabled(true);
    connect(search_, &QLineEdit::textChanged, this, [this] { filter(); });
    filters_ = new FilterPanel([this] { findByFilters(); }, middle);
    connect(&filters_->button(), &QToolButton::toggled, this, [this] { offerTags(); });
    auto* const list = new FontList(middle);
    list_ = list;
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Down}) {
        connect(new QShortcut(key, search_, nullptr, nullptr, Qt::WidgetShortcut),
                &QShortcut::activated, list, &FontList::take);
    }
    list_->setModel(&model_);
    list_->setHeaderHidden(true);
    list_->setUniformRowHeights(true);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setExpandsOnDoubleClick(false);
    list_->setAlternatingRowColors(false);
    list_->setDragDropMode(QAbstractItemView::DragOnly);
    list_->setAccessibleName(text(translated("Fonts")));
    delegate_ = new FaceDelegate(model_, faces_, *list_);
    list_->setItemDelegate(delegate_);
    connect(list_, &QTreeView::expanded, this,
            [this](const QModelIndex& family) { setExpanded(family, true); });
    connect(list_, &QTreeView::collapsed, this,
            [this](const QModelIndex& family) { setExpanded(family, false); });
    connect(list_, &QTreeView::doubleClicked, this, [this] { toggleChosen(); });
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        connect(new QShortcut(key, list_, nullptr, nullptr, Qt::WidgetShortcut),
                &QShortcut::activated, this, [this] { toggleChosen(); });
    }
    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { showChosen(); });
    pages_ = new QStackedWidget(middle);
    pages_->addWidget(list_);
    pages_->addWidget(makeEmpty());
    auto* const row = new QHBoxLayout();
    row->addWidget(search_, 1);
    row->addWidget(&filters_->button());
    column->addLayout(row);
    column->addWidget(filters_);
    column->addWidget(pages_, 1);
    return middle;
}

void LibraryWindow::findByFilters() {
    searchIndex();
    filter(); // by state, at once
}

void LibraryWindow::searchIndex() {
    const auto query = queryOf(filters_->values());
    if (!query) {
        reader_.dropQuery();
        found_.reset();
        return;
    }
    reader_.find(*query, [this](auto found) {
        found_ = std::move(found);
        filter();
    });
}

// Where they are seen: they take a tenth of the time of all else that is read.
void LibraryWindow::offerTags() {
    if (filters_->button().isChecked()) {
        reader_.run([this](Desk& desk) {
            return [this, tags = readFilterTags(desk.library())] { filters_->offer(tags); };
        });
    }
}

ListFilter LibraryWindow::filterOf(const SidebarPlace& place) {
    ListFilter filter{.text = search_->text().toStdString()};
    filter.alsoState = stateOf(filters_->values());
    filter.found = found_;
    const FaceTable& table = view_->table;
    switch (place.kind) {
    case SidebarPlace::Kind::All:
        break;
    case SidebarPlace::Kind::Drawing:
        filter.isDrawing = true;
        break;
    case SidebarPlace::Kind::State:
        filter.state = place.state;
        break;
    case SidebarPlace::Kind::Copies:
        filter.isCopied = true;
        break;
    case SidebarPlace::Kind::Group: {
        const auto title = toGroupTitle(place.name);
        const Group* const group = title ? findGroup(groups_, title->kind, title->name) : nullptr;
        filter.among.emplace();
        if (group != nullptr) {
            for (const GroupMember& member : group->members) {
                filter.among->push_back(member.id);
                if (!member.files.empty()) {
                    filter.parts.emplace(member.id, member.files);
                }
            }
        }
        std::sort(filter.among->begin(), filter.among->end());
        break;
    }
    case SidebarPlace::Kind::Folder: {
        std::vector<bool> isIn;
        for (const std::string& folder : table.folders()) {
            isIn.push_back(liesUnder(folder, place.name));
        }
        auto& containers = filter.among.emplace();
        for (const ListedFace& face : table.faces()) {
            if (isIn[face.folder]) {
                containers.push_back(face.container);
            }
        }
        std::sort(containers.begin(), containers.end());
        containers.erase(std::unique(containers.begin(), containers.end()), containers.end());
        break;
    }
    }
    return filter;
}

void LibraryWindow::filter() {
    if (view_ == nullptr) {
        return;
    }
    const SidebarPlace& place = sidebar_->place();
    const ListPosition before =
        model_.rowCount() == 0 ? std::exchange(recalled_, {}) : positionOf(*list_, model_);
    model_.show(view_, filterOf(place));
    showExpanded();
    restore(*list_, model_, before);
    if (place.kind == SidebarPlace::Kind::Drawing) {
        if (!list_->currentIndex().isValid()) { // the best for the first font
            const QModelIndex font = model_.index(0, 0);
            const QModelIndex best = model_.index(0, 0, font);
            list_->selectionModel()->setCurrentIndex( // whatever keys are held
                best.isValid() && list_->isExpanded(font) ? best : font,
                QItemSelectionModel::ClearAndSelect);
        }
    }
    showEmpty();
    showCount();
    showGroupActions();
    showChosen();
}

void LibraryWindow::setExpanded(const QModelIndex& family, bool expanded) {
    if (family.parent().isValid()) {
        return; // the toolkit tells it of faces, too, when all is expanded
    }
    const bool isDrawing = model_.listing().filter().isDrawing;
    const std::string& name = model_.nameOf(static_cast<std::size_t>(family.row()));
    if (expanded != isDrawing) {
        (isDrawing ? collapsed_ : expanded_).insert(name);
    } else {
        (isDrawing ? collapsed_ : expanded_).erase(name);
    }
}

// Families are closed until they are opened, a drawing's fonts the other way round.
void LibraryWindow::showExpanded() {
    const bool isDrawing = model_.listing().filter().isDrawing;
    const std::set<std::string>& others = isDrawing ? collapsed_ : expanded_;
    if (others.empty() && !isDrawing) {
        return;
    }
    const int count = model_.rowCount();
    for (int row = 0; row < count; ++row) {
        if (others.contains(model_.nameOf(static_cast<std::size_t>(row))) != isDrawing) {
            list_->setExpanded(model_.index(row, 0), true);
        }
    }
}

QString LibraryWindow::whyNotSwitched() const {
    const LibraryView& view = model_.listing().view();
    const QModelIndexList rows = list_->selectionModel()->selectedRows();
    if (rows.empty()) {
        return text(translated("Choose a font first."));
    }
    const QString title = model_.row(rows.front()).title;
    const auto faces = model_.facesToSwitch(rows.front());
    if (faces.empty()) {
        return text(model_.row(rows.front()).same == FaceState::Shown
                        ? translated("%1 is shown by the desktop without being asked.")
                        : translated("The library has nothing that may replace %1."))
            .arg(title);
    }
    const ListedFace& face = view.table.faces()[faces.front()];
    return face.away
               ? text(translated("%1 cannot be activated: its folder %2 is away."))
                     .arg(title, text(view.table.folderOf(face)))
               : text(translated("%1 is shown by the desktop without being asked.")).arg(title);
}

void LibraryWindow::showCount() {
    const FaceListing& listing = model_.listing();
    const std::size_t families = listing.families().size();
    const std::size_t faces = listing.faces().size();
    if (listing.filter().isDrawing) {
        constexpr int most = 300; // pixels of the drawing's name
        const QString name = count_->fontMetrics().elidedText(drawingName_, Qt::ElideMiddle, most);
        count_->setText((name.isEmpty() ? name : name + QStringLiteral(": ")) +
                        text(translated("%1 font", "%1 fonts", families) + ", " +
                             translated("%1 candidate", "%1 candidates", faces)));
    } else {
        count_->setText(text(translated("%1 family", "%1 families", families) + ", " +
                             translated("%1 style", "%1 styles", faces)));
    }
    letHear(model_.rowCount() == 0 ? empty_->text() : count_->text());
}

void LibraryWindow::letHear(const QString& text) {
    // A screen reader tells it of the one that has the focus.
    for (QWidget* const widget : {static_cast<QWidget*>(search_), static_cast<QWidget*>(sidebar_),
                                  static_cast<QWidget*>(list_)}) {
        widget->setAccessibleDescription(text);
    }
}

} // namespace manager
