// SPDX-License-Identifier: MIT
#include "manager/qt/charactergrid.h"

#include "manager/qt/text.h"
#include "manager/view/characters.h"
#include "manager/view/texts.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace manager {

namespace {

constexpr unsigned glyphPixels = 32;
constexpr int narrowest = 58; ///< a cell

class Cells : public QStyledItemDelegate {
public:
    explicit Cells(CharacterGrid& grid) : QStyledItemDelegate(&grid), grid_(grid) {}
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        painter->save();
        grid_.paintCharacter(*painter, option, index.row());
        painter->restore();
    }
    QSize sizeHint(const QStyleOptionViewItem& /*option*/,
                   const QModelIndex& /*index*/) const override {
        return grid_.gridSize();
    }

private:
    CharacterGrid& grid_;
};

} // namespace

QString describeCharacter(char32_t character) {
    return text(nameOfCharacter(character) + ", " + codeOfCharacter(character));
}

void CharacterModel::show(std::vector<char32_t> characters) {
    beginResetModel();
    shown_ = std::move(characters);
    copied_ = -1;
    endResetModel();
}

int CharacterModel::rowOf(char32_t character) const {
    const auto place = std::find(shown_.begin(), shown_.end(), character);
    return place == shown_.end() ? -1 : static_cast<int>(place - shown_.begin());
}

void CharacterModel::setCopied(int row) {
    for (const int changed : {std::exchange(copied_, row), row}) {
        if (changed >= 0) {
            emit dataChanged(index(changed), index(changed), {Qt::AccessibleTextRole});
        }
    }
}

int CharacterModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

QVariant CharacterModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole: // what a key that is typed looks for
        return text(textOfCharacter(at(index.row())));
    case Qt::AccessibleTextRole: {
        const QString told = describeCharacter(at(index.row()));
        return index.row() == copied_ ? told + text(translated(", copied")) : told;
    }
    case Qt::ToolTipRole:
        return describeCharacter(at(index.row()));
    default:
        return {};
    }
}

CharacterGrid::CharacterGrid(preview::Faces& faces, std::function<void(char32_t)> copied,
                             QWidget* parent)
    : QListView(parent), samples_(faces, [this](Samples::Key) { viewport()->update(); }),
      copied_(std::move(copied)) {
    setModel(&model_);
    setItemDelegate(new Cells(*this));
    setFlow(QListView::LeftToRight);
    setWrapping(true);
    setResizeMode(QListView::Adjust);
    setUniformItemSizes(true);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Else the width, and with it the columns, would depend on the number of rows.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(text(translated("Characters")));
    connect(this, &QListView::clicked, this, [this] { copyCurrent(); });
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { forgetUnseen(); });
}

void CharacterGrid::setFace(const ShownFace& face) {
    face_ = face;
    viewport()->update();
}

void CharacterGrid::tryAgain() {
    samples_.forgetFailed();
    viewport()->update();
}

void CharacterGrid::setPaper(Paper paper) {
    paper_ = paper;
    colour();
}

void CharacterGrid::colour() {
    const PaperColours colours = coloursOf(paper_, parentWidget()->palette());
    QPalette palette = viewport()->palette();
    palette.setColor(QPalette::Base, colours.paper);
    viewport()->setPalette(palette);
    viewport()->update();
}

void CharacterGrid::show(std::vector<char32_t> characters, std::optional<char32_t> current) {
    samples_.clear();
    model_.show(std::move(characters));
    const int row = current ? model_.rowOf(*current) : -1;
    if (model_.rowCount() > 0) {
        setCurrentIndex(model_.index(std::max(0, row)));
    }
}

std::optional<char32_t> CharacterGrid::current() const {
    const QModelIndex index = currentIndex();
    return index.isValid() ? std::optional(model_.at(index.row())) : std::nullopt;
}

void CharacterGrid::copyCurrent() {
    const auto character = current();
    if (!character) {
        return;
    }
    QGuiApplication::clipboard()->setText(text(textOfCharacter(*character)));
    model_.setCopied(currentIndex().row());
    QAccessibleEvent event(this, QAccessible::NameChanged); // heard, as the focus is there
    event.setChild(currentIndex().row());
    QAccessible::updateAccessibility(&event);
    copied_(*character);
}

void CharacterGrid::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy) || event->key() == Qt::Key_Return ||
        event->key() == Qt::Key_Enter) {
        copyCurrent();
        return;
    }
    QListView::keyPressEvent(event);
}

void CharacterGrid::resizeEvent(QResizeEvent* event) {
    layOut();
    QListView::resizeEvent(event);
}

void CharacterGrid::changeEvent(QEvent* event) {
    QListView::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        layOut();
    } else if (event->type() == QEvent::PaletteChange) {
        colour();
    }
}

/// As many columns as fit share the width.
void CharacterGrid::layOut() {
    const int width = viewport()->width();
    columns_ =
        std::max(1, width / std::max(narrowest,
                                     fontMetrics().horizontalAdvance(QStringLiteral("00000")) + 8));
    const auto glyph = static_cast<int>(glyphPixels * 1.5);
    setGridSize({width / columns_, glyph + fontMetrics().height() + 10});
}

QModelIndex CharacterGrid::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    const int page = std::max(1, viewport()->height() / gridSize().height()) * columns_;
    int step = 0;
    switch (action) {
    case MoveLeft:
    case MovePrevious:
        step = -1;
        break;
    case MoveRight:
    case MoveNext:
        step = 1;
        break;
    case MoveUp:
        step = -columns_;
        break;
    case MoveDown:
        step = columns_;
        break;
    case MovePageUp:
        step = -page;
        break;
    case MovePageDown:
        step = page;
        break;
    default:
        return QListView::moveCursor(action, modifiers);
    }
    const int wanted = currentIndex().row() + step;
    const bool byOne = step == 1 || step == -1;
    const int count = model_.rowCount();
    if (count == 0 ||
        (!byOne && (step == columns_ || step == -columns_) && (wanted < 0 || wanted >= count))) {
        return currentIndex();
    }
    return model_.index(std::clamp(wanted, 0, count - 1));
}

void CharacterGrid::forgetUnseen() {
    const QRect seen = viewport()->rect();
    samples_.keep([&](Samples::Key row) {
        return visualRect(model_.index(static_cast<int>(row))).intersects(seen);
    });
}

void CharacterGrid::paintCharacter(QPainter& painter, const QStyleOptionViewItem& option, int row) {
    auto [paper, ink, label] = coloursOf(paper_, palette());
    const QRect cell = option.rect.adjusted(1, 1, -1, -1);
    if ((option.state & QStyle::State_Selected) != 0) {
        const auto group = hasFocus() ? QPalette::Active : QPalette::Inactive;
        const QColor ground = palette().color(group, QPalette::Highlight);
        painter.fillRect(cell, ground);
        ink = readable(palette().color(group, QPalette::HighlightedText), ground);
        label = ink;
    }
    const char32_t character = model_.at(row);
    const int height = fontMetrics().height();
    const QRect below(cell.left(), cell.bottom() - height - 1, cell.width(), height);
    painter.setPen(label);
    painter.drawText(below, Qt::AlignCenter, text(codeOfCharacter(character)).mid(2));
    const double scale = devicePixelRatioF();
    const preview::SharedAnswer answer = samples_.line(
        static_cast<Samples::Key>(row), {face_.file, face_.index, textOfCharacter(character),
                                         glyphPixels, scale, face_.axes, face_.features});
    QRectF area(cell.left(), cell.top(), cell.width(), below.top() - cell.top());
    if (answer == nullptr) {
        return;
    }
    if (!answer->problem.empty()) {
        painter.drawText(area, Qt::AlignCenter, QStringLiteral("×"));
        return;
    }
    const double width = answer->picture.width / scale;
    if (width < area.width()) {
        area.setLeft(area.left() + (area.width() - width) / 2);
    }
    constexpr double baseline = 0.72; // leaves room above capitals with marks, and below
    preview::drawFace(painter, answer->picture, scale, {area, area.height() * baseline, false},
                      ink);
}

} // namespace manager
