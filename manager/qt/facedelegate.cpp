// SPDX-License-Identifier: MIT
#include "manager/qt/facedelegate.h"

#include "manager/qt/colours.h"
#include "manager/view/texts.h"

#include <QApplication>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <set>

namespace manager {

namespace {

constexpr int margin = 6;
constexpr double lineHeights = 2.7; ///< of a row: two lines of text, and air

/// A shape for each state, so that nothing is told by colour alone.
void paintMark(QPainter& painter, const QRectF& area, const std::optional<FaceState>& state,
               const QColor& colour) {
    painter.setPen(QPen(colour, 1.4));
    painter.setBrush(Qt::NoBrush);
    if (!state) { // half full
        painter.drawEllipse(area);
        painter.setBrush(colour);
        painter.drawPie(area, 90 * 16, 180 * 16);
        return;
    }
    switch (*state) {
    case FaceState::Active:
        painter.setBrush(colour);
        painter.drawEllipse(area);
        break;
    case FaceState::Conflicting:
        painter.setBrush(colour);
        painter.drawPolygon(
            QPolygonF({{area.center().x(), area.top()}, area.bottomRight(), area.bottomLeft()}));
        break;
    case FaceState::Shown:
        painter.setBrush(colour);
        painter.drawRect(area);
        break;
    case FaceState::Away:
        painter.drawLine(area.topLeft(), area.bottomRight());
        painter.drawLine(area.topRight(), area.bottomLeft());
        break;
    case FaceState::Inactive:
        painter.drawEllipse(area);
        break;
    }
}

} // namespace

QString belowIn(const ListRow& row, const QFontMetrics& metrics, int width) {
    QString all = row.below();
    if (metrics.horizontalAdvance(all) <= width) {
        return all;
    }
    if (row.isDetailFirst && row.same) { // without why
        QString brief = row.detail + QStringLiteral(" · ") + wordOf(*row.same);
        if (metrics.horizontalAdvance(brief) <= width) {
            return brief;
        }
    }
    // Of a folder the end tells most.
    return row.isDetailFirst ? metrics.elidedText(row.detail, Qt::ElideMiddle, width)
                             : metrics.elidedText(row.state, Qt::ElideRight, width);
}

FaceDelegate::FaceDelegate(FaceModel& model, preview::Faces& faces, QTreeView& view)
    : QStyledItemDelegate(&view), model_(model), view_(view),
      samples_(faces, [this](Samples::Key face) {
          const auto row = static_cast<FaceRow>(face);
          if (row < model_.listing().view().table.faces().size()) {
              model_.setDamaged(row, samples_.isFailed(face));
              view_.viewport()->update();
          }
      }) {
    connect(&model, &QAbstractItemModel::modelReset, this, [this] { samples_.clear(); });
    scrolled_.setSingleShot(true);
    connect(view.verticalScrollBar(), &QScrollBar::valueChanged, &scrolled_,
            [this] { scrolled_.start(0); });
    connect(&scrolled_, &QTimer::timeout, this, [this] {
        std::set<FaceRow> seen;
        const int end = view_.viewport()->height();
        for (QModelIndex index = view_.indexAt({0, 0});
             index.isValid() && view_.visualRect(index).top() < end;
             index = view_.indexBelow(index)) {
            if (const auto face = model_.row(index).sample) {
                seen.insert(*face);
            }
        }
        samples_.keep([&](Samples::Key face) { return seen.contains(static_cast<FaceRow>(face)); });
    });
}

void FaceDelegate::setText(const QString& text) {
    text_ = text.toStdString();
    view_.viewport()->update();
}

void FaceDelegate::setPixels(unsigned pixels) {
    pixels_ = pixels;
    view_.doItemsLayout();
}

QSize FaceDelegate::sizeHint(const QStyleOptionViewItem& option,
                             const QModelIndex& /*index*/) const {
    constexpr double ofSample = 1.7;
    const int height = std::max(static_cast<int>(option.fontMetrics.height() * lineHeights),
                                static_cast<int>(pixels_ * ofSample));
    return {400, height};
}

void FaceDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const ListRow row = model_.row(index);
    QStyleOptionViewItem panel = option;
    panel.text.clear();
    option.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &panel, painter,
                                          option.widget);
    // Samples stand in one column whatever the level.
    const int right = option.rect.right() - margin;
    const int width = view_.viewport()->width();
    const int letter = option.fontMetrics.averageCharWidth();
    const int wanted = model_.listing().filter().isDrawing // whose reasons are long
                           ? std::clamp(width * 3 / 5, 30 * letter, 80 * letter)
                           : std::clamp(width / 2, 30 * letter, 48 * letter);
    const int names = std::min(wanted, width * 3 / 4);
    const int left = option.rect.left() + margin;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    paintNames(*painter, option,
               QRect(QPoint(left, option.rect.top()), QPoint(names, option.rect.bottom())), row);
    paintSample(
        *painter, option,
        QRect(QPoint(names + 2 * margin, option.rect.top()), QPoint(right, option.rect.bottom())),
        row);
    painter->restore();
}

void FaceDelegate::paintNames(QPainter& painter, const QStyleOptionViewItem& option,
                              const QRect& area, const ListRow& row) const {
    const auto [ground, plain, isSelected] = coloursOf(option);
    const QColor state =
        isSelected ? plain
                   : colourOf(row.isAway ? FaceState::Away : row.same.value_or(FaceState::Inactive),
                              ground);
    QFont font = option.font;
    font.setBold(row.isFamily);
    const QFontMetrics metrics(font);
    const int height = metrics.height();
    const int top = area.top() + (area.height() - 2 * height) / 2;
    painter.setFont(font);
    painter.setPen(plain);
    painter.drawText(QRect(area.left(), top, area.width(), height), Qt::AlignLeft,
                     metrics.elidedText(row.title, Qt::ElideRight, area.width()));
    painter.setFont(option.font);
    const double size = height * 0.5;
    paintMark(painter, QRectF(area.left() + 1, top + height + (height - size) / 2, size, size),
              row.same, state);
    painter.setPen(state);
    const int begin = static_cast<int>(size) + margin;
    const QRect below =
        QRect(area.left(), top + height, area.width(), height).adjusted(begin, 0, 0, 0);
    painter.drawText(below, Qt::AlignLeft, belowIn(row, option.fontMetrics, below.width()));
}

void FaceDelegate::paintSample(QPainter& painter, const QStyleOptionViewItem& option,
                               const QRect& area, const ListRow& row) const {
    if (area.width() <= 0 || !row.sample) {
        return;
    }
    const FaceTable& table = model_.listing().view().table;
    const ListedFace& face = table.faces()[*row.sample];
    const RowColours colours = coloursOf(option);
    const auto note = [&](const std::string& words) {
        QFont font = option.font;
        font.setItalic(true);
        painter.setFont(font);
        painter.setPen(colours.isSelected ? colours.text
                                          : colourOf(FaceState::Inactive, colours.ground));
        painter.drawText(area, Qt::AlignLeft | Qt::AlignVCenter,
                         QFontMetrics(font).elidedText(QString::fromStdString(words),
                                                       Qt::ElideRight, area.width()));
    };
    if (face.away) {
        note(translated("its folder is away"));
        return;
    }
    const bool isOwn = !text_.empty();
    preview::FaceLine line{table.pathOf(face), face.index,
                           isOwn ? text_ : table.families()[face.family].name, pixels_,
                           painter.device()->devicePixelRatioF()};
    line.others = {QString::fromStdString(line.text).toUpper().toStdString()};
    line.orOwn = !isOwn;
    // A family and its best face show the same line.
    const preview::SharedAnswer answer = samples_.line(*row.sample, line);
    if (answer == nullptr) {
        return;
    }
    if (!answer->problem.empty()) {
        note(translated("cannot be drawn"));
        return;
    }
    constexpr double capitals = 0.35; // half of their height
    preview::drawFace(painter, answer->picture, line.scale,
                      {QRectF(area), area.height() / 2.0 + capitals * pixels_,
                       preview::runsFromTheRight(answer->drawn)},
                      colours.text);
}

} // namespace manager
