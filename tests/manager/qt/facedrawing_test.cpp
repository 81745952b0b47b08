// SPDX-License-Identifier: MIT
// Where a line in its face stands, and how it ends where there is no room for all of it.
#include "manager/qt/facedelegate.h"
#include "preview/qt/faces.h"
#include "tests/manager/qt/windowfixture.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRectF>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

using namespace manager;

namespace managertest {

namespace {

constexpr int room = 100;
constexpr int height = 20;

/// What is seen of a line that covers all of its `width`, black on white; of a screen of `scale`.
QImage drawn(int width, bool fromTheRight, int scale = 1) {
    preview::Picture line;
    line.width = static_cast<std::uint32_t>(width * scale);
    line.height = static_cast<std::uint32_t>(height * scale);
    line.baseline = height * scale;
    line.pixels = std::string(std::size_t{line.width} * line.height, '\xFF');
    QImage image(3 * room * scale, height * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    QPainter painter(&image);
    const double taken = preview::drawFace(
        painter, line, scale, {QRectF(room, 0, room, height), height, fromTheRight}, Qt::black);
    EXPECT_EQ(taken, std::min(width, room));
    return image;
}

TEST(ALine, FadesWhereItGoesOnWithoutRoom) {
    for (const int scale : {1, 2}) {
        for (const bool fromTheRight : {false, true}) {
            SCOPED_TRACE(testing::Message() << scale << fromTheRight);
            const QImage image = drawn(2 * room, fromTheRight, scale);
            const auto lightness = [&](int x) { // from where its text begins
                const int place = fromTheRight ? 2 * room - 1 - x : room + x;
                return image.pixelColor(place * scale, height * scale / 2).lightness();
            };
            EXPECT_EQ(lightness(0), 0);
            EXPECT_EQ(lightness(room - height - 2), 0);
            EXPECT_GT(lightness(room - height / 4), lightness(room - height / 2));
            EXPECT_GT(lightness(room - 1), 0xD0);
            EXPECT_EQ(lightness(room), 0xFF);
            EXPECT_EQ(lightness(-1), 0xFF);
        }
    }
}

TEST(ALine, BeginsAtItsSideWhereThereIsRoom) {
    constexpr int width = room / 2;
    for (const bool fromTheRight : {false, true}) {
        const QImage image = drawn(width, fromTheRight);
        for (int x = 0; x < 3 * room; ++x) {
            const int begin = fromTheRight ? 2 * room - width : room;
            EXPECT_EQ(image.pixelColor(x, height / 2) == Qt::black, x >= begin && x < begin + width)
                << fromTheRight << x;
        }
    }
}

TEST(ALine, StandsInCapitalsWhereAFaceHasNoOtherLetters) {
    application();
    Sandbox sandbox;
    const std::string file = sandbox.write("a.ttf", testsupport::makeFont({}));
    preview::Faces faces;
    int changes = 0;
    Samples samples(faces, [&changes](Samples::Key key) { changes += key == 7 ? 1 : 100; });
    const auto read = [&](const std::string& text) {
        preview::FaceLine line{file, 0, text, 24};
        line.others = {QString::fromStdString(text).toUpper().toStdString()};
        preview::SharedAnswer answer;
        samples.clear();
        EXPECT_TRUE(await([&] { return (answer = samples.line(7, line)) != nullptr; }));
        return *answer;
    };
    const preview::Answer capitals = read("LILY");
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(read("l\u0131ly").picture.pixels, capitals.picture.pixels) << "a letter is missing";
    EXPECT_EQ(read("l\u0416\u0131").missing, U"\u0416\u0131") << "a capital is missing, too";
    EXPECT_LT(changes, 100);
}

TEST(TheSecondLineOfARow, LosesItsLesserPartBeforeTheOtherIsCut) {
    application();
    const Sandbox sandbox; // its fonts
    const QFontMetrics metrics((QFont()));
    ListRow row;
    row.state = "shown by the desktop";
    row.detail = "/folder/of/copies";
    for (const bool isDetailFirst : {false, true}) {
        row.isDetailFirst = isDetailFirst;
        const QString first = isDetailFirst ? row.detail : row.state;
        const int all = metrics.horizontalAdvance(row.below());
        EXPECT_TRUE(row.below().startsWith(first));
        EXPECT_EQ(belowIn(row, metrics, all), row.below());
        EXPECT_EQ(belowIn(row, metrics, all - 1), first);
        const QString cut = belowIn(row, metrics, metrics.horizontalAdvance(first) - 1);
        EXPECT_TRUE(cut.contains("…") && cut.endsWith("…") != isDetailFirst) << cut.toStdString();
    }
    row.same = FaceState::Active;
    row.state = wordOf(FaceState::Active) + ": until logout";
    EXPECT_EQ(belowIn(row, metrics, metrics.horizontalAdvance(row.below()) - 1),
              row.detail + " · " + wordOf(FaceState::Active));
}

} // namespace

} // namespace managertest
