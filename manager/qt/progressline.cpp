// SPDX-License-Identifier: MIT
#include "manager/qt/progressline.h"

#include "manager/view/texts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>

namespace manager {

namespace {

std::string textOf(const QString& work) {
    if (work == QLatin1String("unpack")) {
        return translated("Unpacking the archive…");
    }
    if (work == QLatin1String("compare")) {
        return translated("Looking for duplicates…");
    }
    if (work == QLatin1String("copy") || work == QLatin1String("collect")) {
        return translated("Copying the fonts…");
    }
    if (work == QLatin1String("activate")) {
        return translated("Activating…");
    }
    if (work == QLatin1String("deactivate")) {
        return translated("Deactivating…");
    }
    if (work == QLatin1String("read-drawings")) {
        return translated("Reading the drawing…");
    }
    return translated("Reading the fonts…");
}

} // namespace

ProgressLine::ProgressLine(std::function<void()> cancel, QWidget* parent)
    : QWidget(parent), text_(new QLabel(this)), bar_(new QProgressBar(this)),
      button_(new QPushButton(QString::fromStdString(translated("Ca&ncel")), this)) {
    auto* const line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(text_);
    line->addWidget(bar_);
    line->addWidget(button_);
    constexpr int width = 160;
    bar_->setFixedWidth(width);
    patience_.setSingleShot(true);
    patience_.setInterval(std::chrono::seconds(1));
    connect(&patience_, &QTimer::timeout, this, [this] {
        if (auto* const bar = qobject_cast<QStatusBar*>(parentWidget())) {
            bar->clearMessage(); // which says the same
        }
        setVisible(true);
    });
    connect(button_, &QPushButton::clicked, this, [this, cancel = std::move(cancel)] {
        button_->setEnabled(false); // until it has ended
        cancel();
    });
    hide();
}

void ProgressLine::show(const std::optional<DeedProgress>& progress) {
    if (!progress) {
        patience_.stop();
        hide();
        return;
    }
    if (!patience_.isActive() && !isVisible()) {
        button_->setEnabled(true);
        patience_.start();
    }
    const QString text = QString::fromStdString(textOf(progress->work));
    text_->setText(text);
    bar_->setAccessibleName(text);
    button_->setAccessibleName(QString::fromStdString(translated("Cancel: %1")).arg(text));
    bar_->setRange(0, static_cast<int>(progress->total)); // 0 to 0: it is busy
    bar_->setValue(static_cast<int>(progress->done));
    bar_->setFormat(QStringLiteral("%v / %m"));
}

} // namespace manager
