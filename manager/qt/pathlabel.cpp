// SPDX-License-Identifier: MIT
#include "manager/qt/pathlabel.h"

#include "manager/view/texts.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

namespace manager {

PathLabel::PathLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus); // for its menu
    setContextMenuPolicy(Qt::ActionsContextMenu);
    auto* const copy = new QAction(QString::fromStdString(translated("&Copy the Path")), this);
    connect(copy, &QAction::triggered, this,
            [this] { QGuiApplication::clipboard()->setText(text()); });
    addAction(copy);
}

void PathLabel::setPath(const QString& path) {
    setText(path);
    setToolTip(path);
}

QString PathLabel::shown() const {
    return fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width());
}

void PathLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), Qt::AlignLeft | Qt::AlignVCenter, palette(),
                          isEnabled(), shown(), foregroundRole());
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

} // namespace manager
