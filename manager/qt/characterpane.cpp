// SPDX-License-Identifier: MIT
#include "manager/qt/characterpane.h"

#include "manager/qt/text.h"
#include "manager/view/texts.h"

#include <QItemSelectionModel>
#include <QLocale>
#include <QVBoxLayout>

#include <utility>

namespace manager {

CharacterPane::CharacterPane(preview::Faces& faces, QWidget* parent) : QWidget(parent) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 6, 0, 0);
    search_ = new QLineEdit(this);
    search_->setPlaceholderText(text(translated("Name, U+20AC, or the character")));
    search_->setAccessibleName(text(translated("Search characters")));
    search_->setClearButtonEnabled(true);
    connect(search_, &QLineEdit::textChanged, this, [this] { filter(); });
    connect(search_, &QLineEdit::returnPressed, this, [this] { grid_->setFocus(); });
    grid_ = new CharacterGrid(
        faces, [this](char32_t) { tell(true); }, this);
    connect(grid_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { tell(false); });
    empty_ = new QLabel(this);
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setWordWrap(true);
    empty_->setTextFormat(Qt::PlainText);
    empty_->setMargin(24);
    pages_ = new QStackedWidget(this);
    pages_->addWidget(grid_);
    pages_->addWidget(empty_);
    told_ = new QLabel(this);
    told_->setTextFormat(Qt::PlainText);
    told_->setWordWrap(true);
    told_->setAccessibleName({});
    count_ = new QLabel(this);
    count_->setTextFormat(Qt::PlainText);
    count_->setWordWrap(true);
    column->addWidget(search_);
    column->addWidget(count_);
    column->addWidget(pages_, 1);
    column->addWidget(told_);
}

void CharacterPane::show(const ShownFace& face, std::shared_ptr<const Characters> characters) {
    name_ = text(face.name);
    grid_->setFace(face);
    characters_ =
        characters == nullptr ? std::make_shared<const Characters>() : std::move(characters);
    filter();
}

void CharacterPane::setPaper(Paper paper) {
    grid_->setPaper(paper);
}

void CharacterPane::filter() {
    const auto before = grid_->current();
    const std::string wanted = search_->text().toStdString();
    grid_->show(wanted.empty() ? characters_->all() : characters_->find(wanted), before);
    const auto shown = static_cast<std::size_t>(grid_->characters().rowCount());
    const std::size_t all = characters_->all().size();
    count_->setVisible(all > 0);
    count_->setText(name_ + QStringLiteral(": ") +
                    text(translated("%1 character", "%1 characters", shown)));
    pages_->setCurrentIndex(shown > 0 ? 0 : 1);
    empty_->setText(text(all > 0 ? translated("No character of this font is called so.")
                                 : translated("Choose a font to see its characters here.")));
    tell(false);
}

void CharacterPane::tell(bool copied) {
    const auto character = grid_->current();
    if (!character) {
        told_->clear();
        return;
    }
    const QString what = describeCharacter(*character);
    told_->setText(what + (copied ? text(translated(", copied")) : QString()));
}

} // namespace manager
