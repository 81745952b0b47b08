// SPDX-License-Identifier: MIT
// What faces are shown on.
#pragma once

#include "manager/qt/colours.h"

#include <QColor>
#include <QPalette>

#include <cstdint>

namespace manager {

enum class Paper : std::uint8_t { AsTheWindow, Light, Dark };

struct PaperColours {
    QColor paper;
    QColor ink;
    QColor label; ///< of what is not the face's; with a contrast of at least 4.5 to 1
};

[[nodiscard]] inline PaperColours coloursOf(Paper paper, const QPalette& palette) {
    PaperColours colours;
    if (paper == Paper::AsTheWindow) {
        colours.paper = palette.color(QPalette::Base);
        colours.ink = palette.color(QPalette::Text);
    } else {
        const bool dark = paper == Paper::Dark;
        colours.paper = dark ? QColor(0x1b, 0x1b, 0x1d) : QColor(Qt::white);
        colours.ink = dark ? QColor(0xf0, 0xf0, 0xf0) : QColor(Qt::black);
    }
    colours.ink = readable(colours.ink, colours.paper);
    colours.label = colourOf(FaceState::Inactive, colours.paper);
    return colours;
}

} // namespace manager
