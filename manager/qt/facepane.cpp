// SPDX-License-Identifier: MIT
#include "manager/qt/facepane.h"

#include "manager/view/texts.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <utility>

namespace manager {

namespace {

QString text(const std::string& plain) {
    return QString::fromStdString(plain);
}

} // namespace

FacePane::FacePane(preview::Faces& faces, std::function<void(const QString&)> wrote,
                   QWidget* parent)
    : QWidget(parent) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(6, 6, 6, 6);
    title_ = new QLabel(this);
    title_->setTextFormat(Qt::PlainText);
    title_->setWordWrap(true);
    QFont font = title_->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.25);
    title_->setFont(font);
    why_ = new QLabel(this);
    why_->setTextFormat(Qt::PlainText);
    why_->setWordWrap(true);
    why_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* const tools = new QHBoxLayout;
    sample_ = new QLineEdit(this);
    sample_->setPlaceholderText(text(translated("Your own text")));
    sample_->setAccessibleName(text(translated("Your own text")));
    sample_->setClearButtonEnabled(true);
    connect(sample_, &QLineEdit::textChanged, this, [this, wrote = std::move(wrote)] {
        wrote(sample_->text());
        showText();
    });
    auto* const paper = new QComboBox(this);
    paper->addItem(text(translated("Paper as the window")));
    paper->addItem(text(translated("Light paper")));
    paper->addItem(text(translated("Dark paper")));
    paper->setAccessibleName(text(translated("Paper")));
    connect(paper, &QComboBox::currentIndexChanged, this,
            [this](int place) { waterfall_->setPaper(static_cast<Paper>(place)); });
    tools->addWidget(sample_, 1);
    tools->addWidget(paper);
    waterfall_ = new Waterfall(faces, this);
    column->addWidget(title_);
    column->addWidget(why_);
    column->addLayout(tools);
    column->addWidget(waterfall_, 1);
}

void FacePane::show(ChosenFaces chosen) {
    title_->setText(chosen.title);
    why_->setText(chosen.why);
    shown_ = chosen.faces.size();
    showText();
    waterfall_->setFaces(std::move(chosen.faces));
}

void FacePane::showText() {
    std::string words = sample_->text().toStdString();
    if (words.empty()) {
        words = shown_ < 2 ? translated("The quick brown fox jumps over the lazy dog")
                           : translated("Hamburgefonstiv 0123456789");
    }
    waterfall_->setText(words);
}

} // namespace manager
