// SPDX-License-Identifier: MIT
// Draws on a window in the colours of its palette.
#pragma once

#include "host/adm/drawing.h"

#include <QColor>
#include <QPalette>
#include <QPointF>

class QPainter;

namespace host {

/// The nearest to `color` that can be read on `background`: the contrast is at least 4.5, of both
/// as if they were opaque.
[[nodiscard]] QColor readable(QColor color, const QColor& background);
/// From 1 to 21, by the luminance that the Web Content Accessibility Guidelines define.
[[nodiscard]] double contrast(const QColor& one, const QColor& other);

/// [main-thread]
class PainterCanvas : public Canvas {
public:
    static constexpr int pictureSize = 12;

    /// Coordinates are relative to `origin`; `role` is the colour of what is there. `painter` and
    /// `palette` outlive it.
    PainterCanvas(QPainter& painter, const QPalette& palette, QPalette::ColorRole role,
                  const QPointF& origin);

    void fill(const Color& color, const ADMRect& rect) override;
    void line(const Color& color, const ADMPoint& from, const ADMPoint& to) override;
    void text(const Color& color, std::string_view utf8, const ADMPoint& point) override;
    bool picture(std::int32_t pictureID, const ADMPoint& point) override;

private:
    QColor plain(const Color& color) const;
    /// For what must be told from what was filled last.
    QColor inFront(const Color& color) const;
    QPointF at(const ADMPoint& point) const;

    QPainter& painter_;
    const QPalette& palette_;
    QPalette::ColorRole role_;
    QPointF origin_;
    QColor background_;
};

} // namespace host
