// SPDX-License-Identifier: MIT
// The colours of states: a pair for light and dark, each with a contrast of at least 4.5 to 1.
#pragma once

#include "manager/view/facestates.h"

#include <QColor>
#include <QPalette>

namespace manager {

[[nodiscard]] inline bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

[[nodiscard]] inline QColor colourOf(FaceState state, bool dark) {
    switch (state) {
    case FaceState::Active:
        return dark ? QColor(0x7b, 0xdc, 0x95) : QColor(0x0a, 0x6b, 0x2d);
    case FaceState::Conflicting:
        return dark ? QColor(0xff, 0x9a, 0x90) : QColor(0xb3, 0x1d, 0x1d);
    case FaceState::Shown:
        return dark ? QColor(0x93, 0xc0, 0xff) : QColor(0x0b, 0x55, 0xa3);
    case FaceState::Away:
        return dark ? QColor(0xe8, 0xbd, 0x6a) : QColor(0x7a, 0x4f, 0x00);
    case FaceState::Inactive:
        break;
    }
    return dark ? QColor(0xb4, 0xb4, 0xb4) : QColor(0x5c, 0x5c, 0x5c);
}

} // namespace manager
