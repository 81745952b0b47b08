// SPDX-License-Identifier: MIT
// Colours that can be read, and the host's own pictures.
#include "host/qt/paintercanvas.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace host {

namespace {

double linear(double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

QColor mixed(const QColor& color, const QColor& with, float part) {
    const auto mix = [part](float one, float other) { return one + (other - one) * part; };
    return QColor::fromRgbF(mix(color.redF(), with.redF()), mix(color.greenF(), with.greenF()),
                            mix(color.blueF(), with.blueF()));
}

} // namespace

double contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor readable(QColor color, const QColor& background) {
    constexpr double enough = 4.5;
    constexpr int steps = 32;
    const QColor end = contrast(Qt::black, background) > contrast(Qt::white, background)
                           ? QColor(Qt::black)
                           : QColor(Qt::white);
    QColor result = color;
    for (int step = 1; step <= steps && contrast(result, background) < enough; ++step) {
        result = mixed(color, end, static_cast<float>(step) / steps);
    }
    return result;
}

PainterCanvas::PainterCanvas(QPainter& painter, const QPalette& palette, QPalette::ColorRole role,
                             const QPointF& origin)
    : painter_(painter), palette_(palette), role_(role), origin_(origin),
      background_(palette.color(role)) {}

QColor PainterCanvas::plain(const Color& color) const {
    if (const auto* const bytes = std::get_if<std::uint32_t>(&color)) {
        const auto byte = [bytes](unsigned shift) {
            return static_cast<int>((*bytes >> shift) & 0xFFU);
        };
        return {byte(24), byte(16), byte(8), byte(0)};
    }
    switch (std::get<ADMColor>(color)) {
    case kADMBackgroundColor:
        return palette_.color(role_);
    case kADMHighlightColor:
        return palette_.color(QPalette::Highlight);
    case kADMTextColor:
        break;
    }
    return palette_.color(background_ == palette_.color(QPalette::Highlight)
                              ? QPalette::HighlightedText
                          : role_ == QPalette::Base ? QPalette::Text
                                                    : QPalette::WindowText);
}

QColor PainterCanvas::inFront(const Color& color) const {
    return readable(plain(color), background_);
}

QPointF PainterCanvas::at(const ADMPoint& point) const {
    return origin_ + QPointF(point.h, point.v);
}

void PainterCanvas::fill(const Color& color, const ADMRect& rect) {
    background_ = plain(color);
    painter_.fillRect(QRectF(at({rect.left, rect.top}), at({rect.right, rect.bottom})),
                      background_);
}

void PainterCanvas::line(const Color& color, const ADMPoint& from, const ADMPoint& to) {
    painter_.setPen(inFront(color));
    painter_.drawLine(at(from), at(to));
}

void PainterCanvas::text(const Color& color, std::string_view utf8, const ADMPoint& point) {
    painter_.setPen(inFront(color));
    const QFontMetricsF metrics(painter_.font());
    painter_.drawText(at(point) + QPointF(0, metrics.ascent()),
                      QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size())));
}

bool PainterCanvas::picture(std::int32_t pictureID, const ADMPoint& point) {
    constexpr double size = pictureSize;
    QPolygonF triangle;
    if (pictureID == kADMExpandedPicture) {
        triangle << QPointF(1, 3) << QPointF(size - 1, 3) << QPointF(size / 2, size - 3);
    } else if (pictureID == kADMCollapsedPicture) {
        triangle << QPointF(3, 1) << QPointF(size - 3, size / 2) << QPointF(3, size - 1);
    } else {
        return false;
    }
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(inFront(kADMTextColor));
    painter_.drawPolygon(triangle.translated(at(point)));
    painter_.restore();
    return true;
}

} // namespace host
