// SPDX-License-Identifier: MIT
#include "manager/qt/flowlayout.h"

#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace manager {

FlowLayout::FlowLayout(QWidget* parent) : QLayout(parent) {
    setContentsMargins(8, 0, 8, 0);
    setSpacing(6);
}

FlowLayout::~FlowLayout() = default;

void FlowLayout::clear() {
    for (const auto& item : items_) {
        item->widget()->hide();
        item->widget()->deleteLater();
    }
    items_.clear();
    invalidate();
}

void FlowLayout::addItem(QLayoutItem* item) {
    items_.emplace_back(item);
}

QLayoutItem* FlowLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)].get() : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
    if (index < 0 || index >= count()) {
        return nullptr;
    }
    const auto place = items_.begin() + index;
    QLayoutItem* const item = place->release();
    items_.erase(place);
    return item;
}

int FlowLayout::heightForWidth(int width) const {
    return arrange({0, 0, width, 0}, false);
}

QSize FlowLayout::minimumSize() const {
    QSize size;
    for (const auto& item : items_) {
        size = size.expandedTo(item->minimumSize());
    }
    const QMargins margins = contentsMargins();
    return size + QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
}

void FlowLayout::setGeometry(const QRect& area) {
    QLayout::setGeometry(area);
    arrange(area, true);
}

int FlowLayout::arrange(const QRect& area, bool move) const {
    const QMargins margins = contentsMargins();
    const QRect inner = area.marginsRemoved(margins);
    int x = inner.x();
    int y = inner.y();
    int height = 0;
    for (const auto& item : items_) {
        const QSize size = item->sizeHint();
        if (x > inner.x() && x + size.width() > inner.right() + 1) {
            x = inner.x();
            y += height + spacing();
            height = 0;
        }
        if (move) {
            const QRect place(x, y, std::min(size.width(), inner.width()), size.height());
            item->setGeometry(QStyle::visualRect(parentWidget()->layoutDirection(), area, place));
        }
        x += size.width() + spacing();
        height = std::max(height, size.height());
    }
    return y + height + margins.bottom() - area.y();
}

} // namespace manager
