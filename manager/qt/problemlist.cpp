// SPDX-License-Identifier: MIT
#include "manager/qt/problemlist.h"

#include "manager/qt/colours.h"
#include "manager/view/texts.h"

#include <QAbstractTextDocumentLayout>
#include <QAccessibleWidget>
#include <QEvent>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>

#include <algorithm>
#include <cmath>

namespace manager {

namespace {

/// Screen readers read an alert aloud when it comes.
QAccessibleInterface* makeAlert(const QString& className, QObject* object) {
    auto* const list =
        className == QLatin1String("QWidget") ? dynamic_cast<ProblemList*>(object) : nullptr;
    return list == nullptr ? nullptr : new QAccessibleWidget(list, QAccessible::AlertMessage);
}

} // namespace

ProblemList::ProblemList(QWidget* parent) : QWidget(parent), text_(new QPlainTextEdit(this)) {
    QAccessible::installFactory(makeAlert); // a second time it changes nothing
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text_->setTabChangesFocus(true);
    text_->document()->setDocumentMargin(2);
    text_->setAccessibleName(QString::fromStdString(translated("Problems")));
    connect(text_->document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged,
            this, [this] { fitHeight(); });
    auto* const close = new QPushButton(QString::fromStdString(translated("Close")), this);
    close->setAccessibleName(QString::fromStdString(translated("Close the list of problems")));
    const QKeySequence key(Qt::Key_Escape);
    close->setToolTip(key.toString(QKeySequence::NativeText));
    const auto forget = [this] {
        told_.clear();
        showAll();
    };
    connect(close, &QPushButton::clicked, this, forget);
    connect(new QShortcut(key, this), &QShortcut::activated, this, forget);
    auto* const line = new QHBoxLayout(this);
    line->setContentsMargins(6, 6, 6, 0);
    line->addWidget(text_, 1);
    line->addWidget(close, 0, Qt::AlignTop);
    colour();
    hide();
}

void ProblemList::show(const QString& deed, const QStringList& problems) {
    const auto gone = std::erase_if(told_, [&deed](const Told& told) { return told.deed == deed; });
    if (!problems.isEmpty()) {
        told_.push_back({deed, problems});
    }
    if (gone != 0 || !problems.isEmpty()) {
        showAll();
    }
    if (!problems.isEmpty()) {
        announce(problems);
    }
}

QString ProblemList::text() const {
    return text_->toPlainText();
}

void ProblemList::showAll() {
    QStringList lines;
    for (const Told& told : told_) {
        lines += told.problems;
    }
    text_->setPlainText(lines.join(QLatin1Char('\n')));
    text_->verticalScrollBar()->setValue(text_->verticalScrollBar()->maximum());
    fitHeight();
    setVisible(!lines.isEmpty());
}

void ProblemList::announce(const QStringList& problems) {
    setAccessibleName(problems.join(QLatin1Char('\n')));
    QAccessibleEvent event(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

void ProblemList::fitHeight() {
    constexpr double most = 5; // lines; the others are scrolled to
    const double lines = std::clamp(text_->document()->size().height(), 1.0, most);
    // Twice the document's, which the text edit wants to be left over at its end.
    const double margins = 2 * (2 * text_->document()->documentMargin() + text_->frameWidth());
    text_->setFixedHeight(
        static_cast<int>(std::ceil(lines * QFontMetricsF(text_->font()).lineSpacing() + margins)));
}

void ProblemList::colour() {
    QPalette colours = palette();
    colours.setColor(QPalette::Text,
                     colourOf(FaceState::Conflicting, colours.color(QPalette::Base)));
    text_->setPalette(colours);
}

void ProblemList::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) {
        colour();
    }
    QWidget::changeEvent(event);
}

} // namespace manager
