// SPDX-License-Identifier: MIT
// Colours that can be read on whatever the desktop's theme has behind them: each has a contrast of
// at least 4.5 to 1.
#pragma once

#include "manager/view/facestates.h"

#include <QColor>
#include <QPalette>
#include <QProxyStyle>

class QStyleOptionViewItem;

namespace manager {

inline constexpr double leastContrast = 4.5;

/// From 1, of two that are alike, to 21. Both are opaque.
[[nodiscard]] double contrastOf(const QColor& one, const QColor& other);

/// `wanted` as it looks on `ground`, which is opaque; where that cannot be read, as much lighter or
/// darker as it needs.
[[nodiscard]] QColor readable(const QColor& wanted, const QColor& ground);

/// Of a state's word and mark.
[[nodiscard]] QColor colourOf(FaceState state, const QColor& ground);

/// What is behind a row of a list, and the text on it.
struct RowColours {
    QColor ground;
    QColor text;
    bool isSelected = false;
};
[[nodiscard]] RowColours coloursOf(const QStyleOptionViewItem& option);

/// The desktop's style, its palette made readable where themes neglect it: what is behind a
/// selection is moved away from the text on it, and hints in fields from their ground. The
/// toolkit's own style, which others follow, gets boxes with an outline that can be seen, and air
/// in buttons.
class ReadableStyle : public QProxyStyle {
public:
    using QProxyStyle::polish;
    void polish(QPalette& palette) override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;

private:
    [[nodiscard]] bool isToolkits() const;
};

} // namespace manager
