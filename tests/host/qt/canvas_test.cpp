// SPDX-License-Identifier: MIT
// What routines draw, on light and on dark.
#include "host/qt/paintercanvas.h"

#include <QImage>
#include <QPainter>
#include <QPalette>

#include <gtest/gtest.h>

#include <cstdint>

namespace host::test {
namespace {

QPalette paletteOf(QColor base, QColor text, QColor highlight, QColor highlightedText) {
    QPalette palette;
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, highlightedText);
    return palette;
}

struct Look {
    const char* name;
    QPalette palette;
};
const Look looks[] = {
    {"light", paletteOf(Qt::white, Qt::black, QColor(48, 140, 198), Qt::white)},
    {"dark", paletteOf(QColor(35, 38, 41), QColor(239, 240, 241), QColor(61, 174, 233), Qt::black)},
};

/// The image that `draw` gives, 40 pixels square.
template <typename Draw>
QImage drawn(const QPalette& palette, Draw draw) {
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(palette.color(QPalette::Base));
    QPainter painter(&image);
    PainterCanvas canvas(painter, palette, QPalette::Base, {10, 10});
    draw(canvas);
    return image;
}

TEST(ACanvas, KeepsColoursReadableOnWhateverIsBehindThem) {
    EXPECT_EQ(readable(QColor(0xa0, 0, 0), Qt::white), QColor(0xa0, 0, 0));
    EXPECT_DOUBLE_EQ(contrast(Qt::black, Qt::white), 21.0);
    for (const auto& [name, palette] : looks) {
        for (const QPalette::ColorRole role : {QPalette::Base, QPalette::Highlight}) {
            const QColor behind = palette.color(role);
            for (const std::uint32_t rgb : {0xcc3333U, 0x339966U, 0xe58f1cU, 0x00ff00U}) {
                SCOPED_TRACE(testing::Message() << name << " " << role << " " << std::hex << rgb);
                const QImage image = drawn(palette, [&](PainterCanvas& canvas) {
                    canvas.fill(role == QPalette::Base ? kADMBackgroundColor : kADMHighlightColor,
                                {-10, -10, 30, 30});
                    canvas.line((rgb << 8U) | 0xFFU, {0, 5}, {20, 5});
                });
                EXPECT_EQ(image.pixelColor(0, 0), behind);
                EXPECT_GE(contrast(image.pixelColor(20, 15), behind), 4.5);
            }
        }
    }
}

TEST(ACanvas, DrawsTrianglesInTheColourOfText) {
    for (const auto& [name, palette] : looks) {
        for (const std::int32_t id : {kADMExpandedPicture, kADMCollapsedPicture}) {
            SCOPED_TRACE(testing::Message() << name << " " << id);
            const QImage image = drawn(palette, [id](PainterCanvas& canvas) {
                EXPECT_TRUE(canvas.picture(id, {0, 0}));
            });
            const QColor text = palette.color(QPalette::Text);
            EXPECT_EQ(image.pixelColor(15, 15), text);
            EXPECT_EQ(image.pixelColor(18, 14) == text, id == kADMExpandedPicture);
            EXPECT_EQ(image.pixelColor(14, 18) == text, id == kADMCollapsedPicture);
        }
    }
    drawn(looks[0].palette, [](PainterCanvas& canvas) { EXPECT_FALSE(canvas.picture(5, {})); });
}

} // namespace
} // namespace host::test
