// SPDX-License-Identifier: MIT
// Putting the list and the words side by side.
#include "host/qt/fontchooser.h"

#include "host/qt/samplepane.h"

#include <QAbstractItemView>
#include <QItemSelectionModel>
#include <QLayout>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>
#include <utility>

namespace host {

namespace {

std::vector<RowTexts> selectedAround(Dialogs& dialogs, const Dialog& dialog) {
    const std::vector<Dialog*>& running = dialogs.running();
    const auto inner = std::find(running.begin(), running.end(), &dialog);
    std::vector<RowTexts> rows;
    if (inner == running.begin()) {
        return rows;
    }
    for (const std::unique_ptr<Item>& item : (*std::prev(inner))->items) {
        if (item->tree == nullptr) {
            continue;
        }
        for (Row* const row : item->tree->selected()) {
            RecordingCanvas canvas;
            dialogs.draw(*row, canvas, item->bounds.right - item->bounds.left,
                         row->list.entryHeight);
            RowTexts texts;
            for (const Drawn& drawn : canvas.drawn()) {
                texts.push_back(drawn.text);
            }
            rows.push_back(std::move(texts));
        }
    }
    return rows;
}

/// Puts a pane beside the view, with a handle between them.
SamplePane* addPane(QAbstractItemView& view, FaceServices services) {
    QWidget* const parent = view.parentWidget();
    QWidget* const before = view.previousInFocusChain();
    auto* const both = new QSplitter(parent);
    const std::unique_ptr<QLayoutItem> place(parent->layout()->replaceWidget(&view, both));
    auto* const list = new QWidget(both); // it has a layout, for a filter above the view
    auto* const column = new QVBoxLayout(list);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(&view);
    QWidget::setTabOrder(before, &view);
    auto* const pane = new SamplePane(services, both);
    constexpr int gap = 12;
    both->setHandleWidth(gap);
    both->setChildrenCollapsible(false);
    both->setStretchFactor(0, 1);
    both->setStretchFactor(1, 1);
    return pane;
}

} // namespace

bool FontChooser::isMarked(const QAbstractItemView& view) {
    return view.property("fontNames").toBool() && view.parentWidget()->layout() != nullptr;
}

FontChooser::FontChooser(Dialogs& dialogs, Item& item, RowModel& model, QAbstractItemView& view,
                         FaceServices services)
    : dialogs_(dialogs), item_(item), model_(model), view_(view), services_(services),
      delegate_(dialogs, model, view, services), pane_(addPane(view, services)) {
    view.setItemDelegate(&delegate_);
    connect(view.selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { synchronize(); });
}

void FontChooser::begin() {
    if (services_.source.samples) {
        pane_->setSamples(services_.source.samples(selectedAround(dialogs_, item_.dialog)));
    }
}

void FontChooser::synchronize() {
    const QModelIndexList chosen = view_.selectionModel()->selectedRows();
    const Row* const row = chosen.isEmpty() ? nullptr : model_.row(chosen.front());
    pane_->choose(row != nullptr ? row->text : "");
}

} // namespace host
