// SPDX-License-Identifier: MIT
// A window that shows one dialog, made by the dialog's layout.
#pragma once

#include "host/qt/listview.h"
#include "host/qt/mnemonics.h"

#include <QDialog>
#include <QTimer>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

class QEventLoop;
class QPushButton;

namespace host {

/// [main-thread] What the user does is done to the model as soon as the toolkit has dealt with it,
/// in order. What the model has become is shown by synchronize().
class DialogWindow : public QDialog {
public:
    /// [main-thread] Calls what may call a plug-in; throws nothing.
    using Serve = std::function<void(const std::function<void()>&)>;

    /// `dialogs`, `dialog` and what `services` names outlive it. Throws LayoutError when the layout
    /// makes no window that has all items of the dialog.
    [[nodiscard]] static std::unique_ptr<DialogWindow> make(Dialogs& dialogs, Dialog& dialog,
                                                            FaceServices services, Serve serve);

    Dialog& dialog() const noexcept { return dialog_; }
    /// The dialog, or something in it, has changed.
    void noteChange() noexcept { changed_ = true; }
    /// Shows what has changed since the last time.
    void synchronize();
    /// Draws at once what would be drawn when the toolkit's loop is next reached.
    void paint();
    /// Does to the model what the user has done.
    void act();

    /// [main-thread, modal] Shows the window until end(), or not at all when the dialog has ended;
    /// calls `shown` when there is something to be seen.
    void run(const std::function<void()>& shown);
    void end();

    /// Escape, and the window's button to close it.
    void reject() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    friend class DialogLoader;
    DialogWindow(Dialogs& dialogs, Dialog& dialog, FaceServices services, Serve serve);

    void bind();
    void bindItem(Item& item, QWidget& widget);
    void later(std::function<void()> action);
    void showItem(const Item& item, QWidget& widget);
    void showButtons();
    void place();
    void noteBounds();
    void noteClick(QObject* watched, const QMouseEvent& event);
    bool drawItem(QObject* watched);

    Dialogs& dialogs_;
    Dialog& dialog_;
    FaceServices services_;
    Serve serve_;
    std::map<QObject*, Item*> items_; ///< by widget
    std::vector<std::pair<const Item*, QPushButton*>> buttons_;
    std::vector<QChar> mnemonics_; ///< of the buttons
    std::vector<std::unique_ptr<ListView>> lists_;
    std::deque<std::function<void()>> actions_;
    QTimer actionTimer_;
    ADMRect placed_;
    bool changed_ = true;
    bool clickedTwice_ = false;
    QEventLoop* loop_ = nullptr;
};

} // namespace host
