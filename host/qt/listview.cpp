// SPDX-License-Identifier: MIT
// Between the rows of a list and the user.
#include "host/qt/listview.h"

#include "host/core/translation.h"
#include "host/qt/paintercanvas.h"

#include <QApplication>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTreeView>

#include <algorithm>
#include <utility>

namespace host {

namespace {

/// From so many rows on, a list of texts is easier to filter than to scroll.
constexpr std::size_t longList = 30;

bool movesSelection(const QKeyEvent& event) {
    const int key = event.key();
    return (event.modifiers() & ~Qt::KeypadModifier) == 0 &&
           (key == Qt::Key_Down || key == Qt::Key_Up || key == Qt::Key_Home || key == Qt::Key_End ||
            key == Qt::Key_PageDown || key == Qt::Key_PageUp);
}

/// While it lives, what the view tells comes from here, not from the user.
class Flag {
public:
    explicit Flag(bool& flag) noexcept : flag_(flag) { flag_ = true; }
    Flag(const Flag&) = delete;
    Flag& operator=(const Flag&) = delete;
    ~Flag() { flag_ = false; }

private:
    bool& flag_;
};

/// Another number when rows are to have other heights, as good as always.
std::size_t heightsOf(const RowList& list) {
    constexpr std::size_t prime = 1000003;
    auto result = static_cast<std::size_t>(list.entryHeight) + list.rows.size();
    for (const std::unique_ptr<Row>& row : list.rows) {
        result *= prime;
        result += row->children != nullptr ? heightsOf(*row->children) : 0;
    }
    return result;
}

std::vector<Row*> sorted(std::vector<Row*> rows) {
    std::sort(rows.begin(), rows.end());
    return rows;
}

} // namespace

ListView::ListView(Dialogs& dialogs, Item& item, QAbstractItemView& view, FaceServices services,
                   Later later)
    : dialogs_(dialogs), item_(item), tree_(*item.tree), view_(view),
      treeView_(qobject_cast<QTreeView*>(&view)), later_(std::move(later)),
      model_(dialogs, tree_, nullptr), delegate_(dialogs, model_) {
    view.setModel(&model_);
    view.setItemDelegate(&delegate_);
    view.setEditTriggers(QAbstractItemView::NoEditTriggers);
    view.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view.installEventFilter(this);
    view.viewport()->installEventFilter(this);
    connectView();
    if (treeView_ != nullptr) {
        connectTree();
    }
    if (FontChooser::isMarked(view)) {
        fonts_ = std::make_unique<FontChooser>(dialogs, item, model_, view, services);
    }
}

ListView::~ListView() {
    // The view is told that its model goes, and would tell of it.
    disconnect(view_.selectionModel(), nullptr, this, nullptr);
    disconnect(&view_, nullptr, this, nullptr);
}

void ListView::connectView() {
    connect(view_.selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (!synchronizing_ && !selectionWaits_) {
            selectionWaits_ = true;
            later_([this] { takeSelection(); });
        }
    });
    connect(&view_, &QAbstractItemView::clicked, this,
            [this](const QModelIndex& index) { click(index, false); });
    connect(&view_, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex& index) { click(index, true); });
}

void ListView::connectTree() {
    treeView_->setHeaderHidden(true);
    const auto expand = [this](const QModelIndex& index, bool expanded) {
        Row* const row = model_.row(index);
        if (!synchronizing_ && row != nullptr) {
            dialogs_.setExpanded(*row, expanded);
        }
    };
    connect(treeView_, &QTreeView::expanded, this,
            [expand](const QModelIndex& index) { expand(index, true); });
    connect(treeView_, &QTreeView::collapsed, this,
            [expand](const QModelIndex& index) { expand(index, false); });
}

Row* ListView::find(ADMListEntryRef handle) noexcept {
    return tree_.kind() == Tree::Kind::Hierarchy
               ? dialogs_.find(handle)
               : dialogs_.find(reinterpret_cast<ADMEntryRef>(handle));
}

void ListView::click(const QModelIndex& index, bool twice) {
    const Row* const row = model_.row(index);
    if (row == nullptr) {
        return;
    }
    later_([this, twice, handle = row->handle] {
        Row* const clicked = find(handle);
        if (clicked != nullptr && tree_.track != nullptr) {
            dialogs_.click(*clicked, twice);
        } else if (clicked != nullptr && twice && tree_.kind() == Tree::Kind::Flat) {
            if (Item* const confirm = item_.dialog.item(kADMOKItemID)) {
                dialogs_.press(*confirm);
            }
        }
    });
}

void ListView::takeSelection() {
    selectionWaits_ = false;
    const QItemSelectionModel& selection = *view_.selectionModel();
    std::vector<Row*> rows;
    for (const QModelIndex& index : selection.selectedRows()) {
        if (Row* const row = model_.row(index)) {
            rows.push_back(row);
        }
    }
    Row* const active =
        selection.isSelected(view_.currentIndex()) ? model_.row(view_.currentIndex()) : nullptr;
    if (active != tree_.active() || sorted(rows) != sorted(tree_.selected())) {
        dialogs_.select(tree_, std::move(rows), active);
    }
}

void ListView::showSelection() {
    QItemSelectionModel& selection = *view_.selectionModel();
    QItemSelection shown;
    for (Row* const row : tree_.selected()) {
        if (const QModelIndex index = model_.indexOf(*row); index.isValid()) {
            shown.select(index, index);
        }
    }
    const QModelIndex active =
        tree_.active() != nullptr ? model_.indexOf(*tree_.active()) : QModelIndex();
    if (active.isValid() && active != view_.currentIndex()) {
        selection.setCurrentIndex(active, QItemSelectionModel::NoUpdate);
    }
    QModelIndexList before = selection.selectedIndexes();
    QModelIndexList after = shown.indexes();
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    if (before != after) {
        selection.select(shown, QItemSelectionModel::ClearAndSelect);
    }
}

void ListView::showExpansion(RowList& list) {
    for (const std::unique_ptr<Row>& row : list.rows) {
        if (row->children == nullptr) {
            continue;
        }
        const QModelIndex index = model_.indexOf(*row);
        if (treeView_->isExpanded(index) != row->expanded) {
            treeView_->setExpanded(index, row->expanded);
        }
        showExpansion(*row->children);
    }
}

void ListView::begin() {
    if (fonts_ != nullptr) {
        fonts_->begin();
    }
}

void ListView::synchronize() {
    const Flag synchronizing(synchronizing_);
    view_.setSelectionMode(tree_.multiSelect ? QAbstractItemView::ExtendedSelection
                                             : QAbstractItemView::SingleSelection);
    const int scrolled = view_.verticalScrollBar()->value();
    const int place = view_.currentIndex().row();
    const bool reset = model_.takeOver();
    if (treeView_ != nullptr) {
        const bool native = tree_.draw == nullptr;
        treeView_->setRootIsDecorated(native);
        if (native) {
            treeView_->resetIndentation();
        } else {
            treeView_->setIndentation(0);
        }
        treeView_->setExpandsOnDoubleClick(tree_.track == nullptr);
        showExpansion(tree_.top()); // before the layout, which then is made once
    }
    showFilter();
    if (reset || !selectionWaits_) { // else the user's newest goes the other way
        showSelection();
    }
    if (reset && place >= 0 && !view_.currentIndex().isValid()) { // keys go on from there
        const int last = model_.rowCount({}) - 1;
        view_.selectionModel()->setCurrentIndex(model_.index(std::min(place, last), 0, {}),
                                                QItemSelectionModel::NoUpdate);
    }
    const std::size_t heights = heightsOf(tree_.top());
    if (std::exchange(heights_, heights) != heights || reset) {
        view_.doItemsLayout();
        view_.verticalScrollBar()->setValue(scrolled);
    }
    if (fonts_ != nullptr) {
        fonts_->synchronize();
    }
    view_.viewport()->update();
}

void ListView::showFilter() {
    QWidget* const parent = view_.parentWidget();
    if (filter_ != nullptr || tree_.kind() != Tree::Kind::Flat || parent->layout() == nullptr ||
        tree_.top().rows.size() < longList) {
        return;
    }
    auto* const both = new QWidget(parent);
    const std::unique_ptr<QLayoutItem> place(parent->layout()->replaceWidget(&view_, both));
    auto* const column = new QVBoxLayout(both);
    column->setContentsMargins(0, 0, 0, 0);
    filter_ = new QLineEdit(both);
    filter_->setPlaceholderText(QString::fromStdString(translated("Filter")));
    filter_->setAccessibleName(filter_->placeholderText());
    column->addWidget(filter_);
    QWidget* const before = view_.previousInFocusChain();
    column->addWidget(&view_);
    QWidget::setTabOrder(before, filter_);
    QWidget::setTabOrder(filter_, &view_);
    filter_->installEventFilter(this);
    connect(filter_, &QLineEdit::textChanged, this, [this](const QString& text) { filter(text); });
}

/// What is chosen is always to be seen.
void ListView::filter(const QString& text) {
    {
        const Flag synchronizing(synchronizing_);
        model_.setFilter(text);
        showSelection();
    }
    if (view_.selectionModel()->hasSelection()) {
        view_.scrollTo(view_.currentIndex());
    } else if (!tree_.selected().empty() || !text.isEmpty()) {
        view_.setCurrentIndex(model_.index(0, 0, {}));
        selectionWaits_ = true;
        later_([this] { takeSelection(); });
    }
}

/// The focus makes a row current without selecting it: keys are to begin with it, not behind it.
bool ListView::selectCurrent() {
    const bool selects = !view_.selectionModel()->hasSelection() && view_.currentIndex().isValid();
    if (selects) {
        view_.selectionModel()->select(view_.currentIndex(), QItemSelectionModel::Select);
        view_.scrollTo(view_.currentIndex());
    }
    return selects;
}

Row* ListView::triangleAt(const QPoint& point) const {
    constexpr int reach = 3; // beside it
    const QModelIndex index = view_.indexAt(point);
    Row* const row = model_.row(index);
    if (row == nullptr || row->children == nullptr || tree_.draw == nullptr) {
        return nullptr;
    }
    const QRect area = view_.visualRect(index);
    RecordingCanvas canvas;
    dialogs_.draw(*row, canvas, area.width() - RowDelegate::offset(*row), area.height());
    const int across = point.x() - area.left() - RowDelegate::offset(*row);
    const bool hit =
        std::any_of(canvas.drawn().begin(), canvas.drawn().end(), [across](const Drawn& drawn) {
            return drawn.kind == Drawn::Kind::Picture && across >= drawn.area.left - reach &&
                   across < drawn.area.left + PainterCanvas::pictureSize + reach;
        });
    return hit ? row : nullptr;
}

bool ListView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (watched == filter_ && (key == Qt::Key_Down || key == Qt::Key_Up ||
                                   key == Qt::Key_PageDown || key == Qt::Key_PageUp)) {
            QCoreApplication::sendEvent(&view_, event);
            return true;
        }
        if (watched == &view_ && (key == Qt::Key_Return || key == Qt::Key_Enter) &&
            tree_.track != nullptr && view_.currentIndex().isValid()) {
            click(view_.currentIndex(), true);
            return true;
        }
        if (watched == &view_ && movesSelection(*static_cast<QKeyEvent*>(event))) {
            if ((key == Qt::Key_Down || key == Qt::Key_Up) && selectCurrent()) {
                return true;
            }
            later_([this] { selectCurrent(); });
        }
    }
    if (watched != view_.viewport()) {
        return false;
    }
    const bool pressed =
        event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    if (pressed) {
        Row* const row = triangleAt(static_cast<QMouseEvent*>(event)->position().toPoint());
        pressedTriangle_ = row != nullptr;
        if (pressedTriangle_) {
            treeView_->setExpanded(model_.indexOf(*row), !row->expanded);
        }
        return pressedTriangle_;
    }
    return event->type() == QEvent::MouseButtonRelease && std::exchange(pressedTriangle_, false);
}

} // namespace host
