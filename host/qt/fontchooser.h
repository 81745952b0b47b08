// SPDX-License-Identifier: MIT
// A list of fonts to choose from, and beside it what the choice would do to the document.
#pragma once

#include "host/adm/dialogs.h"
#include "host/qt/fontdelegate.h"

#include <QObject>

class QAbstractItemView;

namespace host {

class SamplePane;

/// [main-thread] A layout marks such a list by the dynamic property "fontNames".
class FontChooser : public QObject {
public:
    [[nodiscard]] static bool isMarked(const QAbstractItemView& view);

    /// All of them outlive it; `view` shows `model` already.
    FontChooser(Dialogs& dialogs, Item& item, RowModel& model, QAbstractItemView& view,
                FaceServices services);

    /// The dialog is about to be shown. The faces that would be replaced are those that the
    /// selected rows of the dialog around it name.
    void begin();
    /// Takes what is chosen from the view.
    void synchronize();

private:
    Dialogs& dialogs_;
    Item& item_;
    RowModel& model_;
    QAbstractItemView& view_;
    FaceServices services_;
    FontDelegate delegate_;
    SamplePane* pane_; ///< the window's
};

} // namespace host
