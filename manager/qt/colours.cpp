// SPDX-License-Identifier: MIT
#include "manager/qt/colours.h"

#include <QPainter>
#include <QStyleOptionButton>
#include <QStyleOptionViewItem>

#include <algorithm>
#include <cmath>

namespace manager {

namespace {

/// As the Web Content Accessibility Guidelines have it.
double luminanceOf(const QColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

/// `part` of `over`, the rest of `under`.
QColor mixed(const QColor& under, const QColor& over, double part) {
    const auto mix = [part](int from, int to) {
        return static_cast<int>(std::lround(from + (to - from) * part));
    };
    return {mix(under.red(), over.red()), mix(under.green(), over.green()),
            mix(under.blue(), over.blue())};
}

QColor hueOf(FaceState state) {
    switch (state) {
    case FaceState::Active:
        return {0x1d, 0x92, 0x4a};
    case FaceState::Conflicting:
        return {0xd4, 0x3a, 0x33};
    case FaceState::Shown:
        return {0x2c, 0x76, 0xcf};
    case FaceState::Away:
        return {0xa6, 0x70, 0x0c};
    case FaceState::Inactive:
        break;
    }
    return {0x76, 0x76, 0x76};
}

} // namespace

double contrastOf(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminanceOf(one), luminanceOf(other)});
    return (light + 0.05) / (dark + 0.05);
}

QColor readable(const QColor& wanted, const QColor& ground) {
    const QColor seen = mixed(ground, wanted, wanted.alphaF());
    const QColor black(Qt::black);
    const QColor white(Qt::white); // one of them can be read on anything
    const QColor& end = contrastOf(black, ground) > contrastOf(white, ground) ? black : white;
    constexpr int steps = 32;
    QColor colour = seen;
    for (int step = 1; step <= steps && contrastOf(colour, ground) < leastContrast; ++step) {
        colour = mixed(seen, end, static_cast<double>(step) / steps);
    }
    return colour;
}

QColor colourOf(FaceState state, const QColor& ground) {
    return readable(hueOf(state), ground);
}

RowColours coloursOf(const QStyleOptionViewItem& option) {
    const auto group = (option.state & QStyle::State_Enabled) == 0  ? QPalette::Disabled
                       : (option.state & QStyle::State_Active) != 0 ? QPalette::Active
                                                                    : QPalette::Inactive;
    const bool isSelected = (option.state & QStyle::State_Selected) != 0;
    const bool isAlternate = (option.features & QStyleOptionViewItem::Alternate) != 0;
    const QColor over = option.palette.color(group, isSelected    ? QPalette::Highlight
                                                    : isAlternate ? QPalette::AlternateBase
                                                                  : QPalette::Base);
    const QColor ground = mixed(option.palette.color(group, QPalette::Base), over, over.alphaF());
    const QColor text =
        option.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text);
    return {ground, readable(text, ground), isSelected};
}

void ReadableStyle::polish(QPalette& palette) {
    QProxyStyle::polish(palette);
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        const QColor base = palette.color(group, QPalette::Base);
        const QColor over = palette.color(group, QPalette::Highlight);
        palette.setColor(group, QPalette::Highlight,
                         readable(mixed(base, over, over.alphaF()),
                                  palette.color(group, QPalette::HighlightedText)));
        palette.setColor(group, QPalette::PlaceholderText,
                         readable(palette.color(group, QPalette::PlaceholderText), base));
    }
}

bool ReadableStyle::isToolkits() const {
    return baseStyle()->name() == QLatin1String("fusion");
}

void ReadableStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                  QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    // Its outline is the paper, a little darker.
    if (element == PE_IndicatorCheckBox && isToolkits()) {
        painter->save();
        painter->setPen(colourOf(FaceState::Inactive, option->palette.color(QPalette::Window)));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        painter->restore();
    }
}

QSize ReadableStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                      const QSize& size, const QWidget* widget) const {
    QSize needed = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (type == CT_PushButton && isToolkits()) {
        needed.rwidth() = std::max(needed.width(), size.width() + 2 * option->fontMetrics.height());
    }
    return needed;
}

} // namespace manager
