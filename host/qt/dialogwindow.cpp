// SPDX-License-Identifier: MIT
// From a layout to a window, and between the window and the model.
#include "host/qt/dialogwindow.h"

#include "host/qt/paintercanvas.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QFile>
#include <QLabel>
#include <QLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScopeGuard>
#include <QScreen>
#include <QUiLoader>
#include <QVariant>

#include <algorithm>
#include <utility>

namespace host {

namespace {

ADMRect rectOf(const QRect& rect) {
    return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

bool isSame(const ADMRect& left, const ADMRect& right) {
    return left.left == right.left && left.top == right.top && left.right == right.right &&
           left.bottom == right.bottom;
}

bool isOf(ItemKind kind, QWidget* widget) {
    switch (kind) {
    case ItemKind::PushButton:
        return qobject_cast<QPushButton*>(widget) != nullptr;
    case ItemKind::StaticText:
        return qobject_cast<QLabel*>(widget) != nullptr;
    case ItemKind::List:
    case ItemKind::HierarchyList:
        break;
    }
    return qobject_cast<QAbstractItemView*>(widget) != nullptr;
}

} // namespace

/// Makes the outermost widget of a layout a window of ours.
class DialogLoader : public QUiLoader {
public:
    DialogLoader(Dialogs& dialogs, Dialog& dialog, FaceServices services, DialogWindow::Serve serve)
        : dialogs_(dialogs), dialog_(dialog), services_(services), serve_(std::move(serve)) {}

    std::unique_ptr<DialogWindow> read() {
        QFile file(QString::fromStdString(dialog_.layout.file.string()));
        if (!file.open(QIODevice::ReadOnly) || load(&file) == nullptr) {
            throw LayoutError(dialog_.layout.file.string() + ": " + errorString().toStdString());
        }
        return std::move(window_);
    }

    QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
        if (parent != nullptr) {
            return QUiLoader::createWidget(className, parent, name);
        }
        window_.reset(new DialogWindow(dialogs_, dialog_, services_, serve_));
        window_->setObjectName(name);
        return window_.get();
    }

private:
    Dialogs& dialogs_;
    Dialog& dialog_;
    FaceServices services_;
    DialogWindow::Serve serve_;
    std::unique_ptr<DialogWindow> window_;
};

DialogWindow::DialogWindow(Dialogs& dialogs, Dialog& dialog, FaceServices services, Serve serve)
    : dialogs_(dialogs), dialog_(dialog), services_(services), serve_(std::move(serve)),
      placed_(dialog.layout.bounds) {
    installEventFilter(this);
    actionTimer_.setSingleShot(true);
    connect(&actionTimer_, &QTimer::timeout, this, [this] { act(); });
}

std::unique_ptr<DialogWindow> DialogWindow::make(Dialogs& dialogs, Dialog& dialog,
                                                 FaceServices services, Serve serve) {
    std::unique_ptr<DialogWindow> window =
        DialogLoader(dialogs, dialog, services, std::move(serve)).read();
    window->setWindowModality(Qt::ApplicationModal);
    window->bind();
    return window;
}

void DialogWindow::bind() {
    const QList<QWidget*> widgets = findChildren<QWidget*>();
    for (const std::unique_ptr<Item>& item : dialog_.items) {
        const auto found = std::find_if(widgets.begin(), widgets.end(), [&](QWidget* widget) {
            return widget->property("itemID") == item->id;
        });
        if (found == widgets.end() || !isOf(item->kind, *found)) {
            throw LayoutError(dialog_.layout.file.string() + ": item " + std::to_string(item->id) +
                              " cannot be shown");
        }
        bindItem(*item, **found);
    }
}

void DialogWindow::bindItem(Item& item, QWidget& widget) {
    items_.emplace(&widget, &item);
    widget.installEventFilter(this);
    if (auto* const button = qobject_cast<QPushButton*>(&widget)) {
        buttons_.emplace_back(&item, button);
        connect(button, &QPushButton::clicked, this,
                [this, &item] { later([this, &item] { dialogs_.press(item); }); });
    } else if (auto* const label = qobject_cast<QLabel*>(&widget)) {
        label->setTextFormat(Qt::PlainText);
    } else if (auto* const view = qobject_cast<QAbstractItemView*>(&widget)) {
        view->viewport()->installEventFilter(this);
        lists_.push_back(std::make_unique<ListView>(
            dialogs_, item, *view, services_,
            [this](std::function<void()> action) { later(std::move(action)); }));
    }
}

void DialogWindow::later(std::function<void()> action) {
    actions_.push_back(std::move(action));
    actionTimer_.start();
}

void DialogWindow::act() {
    while (!actions_.empty()) {
        const std::function<void()> action = std::move(actions_.front());
        actions_.pop_front();
        if (!actions_.empty()) {
            actionTimer_.start(); // should the action run a dialog
        }
        serve_(action);
    }
}

void DialogWindow::synchronize() {
    if (!std::exchange(changed_, false)) {
        return;
    }
    setWindowTitle(QString::fromStdString(dialog_.title));
    for (const auto& [widget, item] : items_) {
        showItem(*item, *static_cast<QWidget*>(widget));
    }
    showButtons();
    for (const std::unique_ptr<ListView>& list : lists_) {
        list->synchronize();
    }
    place();
    if (loop_ != nullptr) {
        setVisible(dialog_.visible);
    }
}

void DialogWindow::paint() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    repaint();
    for (const std::unique_ptr<ListView>& list : lists_) {
        list->view().viewport()->repaint();
    }
}

void DialogWindow::showItem(const Item& item, QWidget& widget) {
    widget.setEnabled(item.enabled);
    if (auto* const label = qobject_cast<QLabel*>(&widget)) {
        label->setText(QString::fromStdString(item.text));
    }
}

void DialogWindow::showButtons() {
    std::vector<QString> texts;
    for (const auto& [item, button] : buttons_) {
        texts.push_back(QString::fromStdString(item->text));
    }
    mnemonics_ = chooseMnemonics(texts, mnemonics_);
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        QPushButton& button = *buttons_[i].second;
        button.setText(labelOf(texts[i], mnemonics_[i]));
    }
}

void DialogWindow::place() {
    if (!isSame(dialog_.bounds, placed_)) {
        placed_ = dialog_.bounds;
        setGeometry(placed_.left, placed_.top, placed_.right - placed_.left,
                    placed_.bottom - placed_.top);
    } else if (isVisible()) {
        return; // where the user wants it
    }
    if (dialog_.forcedOnScreen) {
        const QRect room = screen()->availableGeometry();
        resize(size().boundedTo(room.size()));
        if (testAttribute(Qt::WA_Moved)) {
            // Its least size may be larger than the screen.
            move(std::max(room.left(), std::min(x(), room.right() + 1 - width())),
                 std::max(room.top(), std::min(y(), room.bottom() + 1 - height())));
        }
    }
}

void DialogWindow::run(const std::function<void()>& shown) {
    QEventLoop loop;
    loop_ = &loop;
    const auto atEnd = qScopeGuard([this] { loop_ = nullptr; });
    changed_ = true;
    for (const std::unique_ptr<ListView>& list : lists_) {
        list->begin();
    }
    synchronize();
    if (isVisible()) {
        shown();
    }
    if (!dialog_.ending) {
        loop.exec();
    }
}

void DialogWindow::end() {
    if (loop_ != nullptr) {
        loop_->quit();
    }
}

void DialogWindow::reject() {
    later([this] { dialogs_.giveUp(dialog_); });
}

/// Where the items really are, for those who draw by it.
void DialogWindow::noteBounds() {
    for (const auto& [object, item] : items_) {
        const auto* widget = static_cast<QWidget*>(object);
        if (const auto* const view = qobject_cast<const QAbstractItemView*>(widget)) {
            widget = view->viewport();
            view->viewport()->update();
        }
        item->bounds = rectOf({widget->mapTo(this, QPoint()), widget->size()});
    }
}

bool DialogWindow::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Resize:
    case QEvent::Move:
        noteBounds();
        break;
    case QEvent::MouseButtonDblClick:
        clickedTwice_ = true;
        break;
    case QEvent::MouseButtonRelease:
        noteClick(watched, static_cast<const QMouseEvent&>(*event));
        break;
    case QEvent::Paint:
        if (drawItem(watched)) {
            return true;
        }
        break;
    default:
        break;
    }
    return QDialog::eventFilter(watched, event);
}

/// What an item has no use for comes as the window's own, too.
void DialogWindow::noteClick(QObject* watched, const QMouseEvent& event) {
    const bool twice = std::exchange(clickedTwice_, false);
    if (event.button() != Qt::LeftButton) {
        return;
    }
    if (const auto item = items_.find(watched); item != items_.end()) {
        later([this, clicked = item->second, twice] { dialogs_.click(*clicked, twice); });
    } else if (watched == this && childAt(event.position().toPoint()) == nullptr) {
        later([this, twice] { dialogs_.click(dialog_, twice); });
    }
}

bool DialogWindow::drawItem(QObject* watched) {
    const auto item = items_.find(watched);
    if (item == items_.end() || item->second->draw == nullptr) {
        return false;
    }
    auto* const widget = static_cast<QWidget*>(watched);
    QPainter painter(widget);
    PainterCanvas canvas(painter, widget->palette(), widget->backgroundRole(), {});
    dialogs_.draw(*item->second, canvas);
    return true;
}

void DialogWindow::paintEvent(QPaintEvent* event) {
    QDialog::paintEvent(event);
    if (dialog_.draw != nullptr) {
        QPainter painter(this);
        PainterCanvas canvas(painter, palette(), QPalette::Window, {});
        dialogs_.draw(dialog_, canvas);
    }
}

void DialogWindow::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    placed_ = dialog_.bounds = rectOf(geometry());
}

} // namespace host
