// SPDX-License-Identifier: MIT
// A list of a dialog in a view of the toolkit.
#pragma once

#include "host/qt/fontchooser.h"
#include "host/qt/rowmodel.h"

#include <QObject>

#include <functional>
#include <memory>

class QAbstractItemView;
class QLineEdit;
class QTreeView;

namespace host {

/// [main-thread] Has something done once the toolkit has dealt with what the user did, in order.
using Later = std::function<void(std::function<void()>)>;

/// [main-thread] Goes before its view, which has nothing to show then. Lists of texts that are long
/// get a field to filter them by.
class ListView : public QObject {
public:
    /// `dialogs`, `item`, `view` and what `services` names outlive it. The item is a list.
    ListView(Dialogs& dialogs, Item& item, QAbstractItemView& view, FaceServices services,
             Later later);
    ~ListView() override;

    /// The dialog is about to be shown.
    void begin();
    /// Takes rows, selection and expansion from the model.
    void synchronize();
    QAbstractItemView& view() const noexcept { return view_; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void connectView();
    void connectTree();
    void takeSelection();
    void showSelection();
    bool selectCurrent();
    void showExpansion(RowList& list);
    void showFilter();
    void filter(const QString& text);
    void click(const QModelIndex& index, bool twice);
    Row* find(ADMListEntryRef handle) noexcept;
    Row* triangleAt(const QPoint& point) const;

    Dialogs& dialogs_;
    Item& item_;
    Tree& tree_;
    QAbstractItemView& view_;
    QTreeView* treeView_; ///< nullptr in a flat list
    Later later_;
    RowModel model_;
    RowDelegate delegate_;
    std::unique_ptr<FontChooser> fonts_; ///< nullptr in a list of anything else
    QLineEdit* filter_ = nullptr;        ///< the window's
    std::size_t heights_ = 0;
    bool synchronizing_ = false;
    bool selectionWaits_ = false;
    bool pressedTriangle_ = false;
};

} // namespace host
