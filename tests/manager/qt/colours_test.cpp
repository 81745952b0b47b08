// SPDX-License-Identifier: MIT
// Colours on what the desktop's themes have behind them.
#include "manager/qt/colours.h"
#include "manager/qt/paper.h"
#include "tests/manager/qt/windowfixture.h"

#include <QStyleOptionViewItem>

#include <gtest/gtest.h>
#include <set>

using namespace manager;
using namespace managertest;

namespace {

constexpr std::array states{FaceState::Inactive, FaceState::Active, FaceState::Conflicting,
                            FaceState::Shown, FaceState::Away};

struct Theme {
    const char* name;
    QRgb base;
    QRgb text;
    QRgb alternate;
    QRgb highlight;
    QRgb highlighted;
};

constexpr std::array themes{
    Theme{"light", 0xffffffff, 0xff000000, 0xfff5f5f5, 0xff308cc6, 0xffffffff},
    Theme{"dark", 0xff1f1f22, 0xffeeeeee, 0xff2b2b2e, 0xff2f6fb5, 0xffffffff},
    Theme{"high contrast, black", 0xff000000, 0xffffff00, 0xff101010, 0xff00ff00, 0xff000000},
    Theme{"high contrast, white", 0xffffffff, 0xff000000, 0xffffffff, 0xff000000, 0xffffffff},
    Theme{"cream", 0xfffdf6e3, 0xff657b83, 0xffeee8d5, 0xff268bd2, 0xfffdf6e3},
    Theme{"grey", 0xff777777, 0xff888888, 0xff808080, 0xff777777, 0xff777777},
    Theme{"coloured", 0xff2c76cf, 0xffffffff, 0xff1d924a, 0xffd43a33, 0xffa6700c},
    Theme{"clear selection", 0xffffffff, 0x99000000, 0xfff5f5f5, 0x30308cc6, 0xffffffff},
};

QPalette paletteOf(const Theme& theme) {
    QPalette palette;
    palette.setColor(QPalette::Base, QColor::fromRgba(theme.base));
    palette.setColor(QPalette::Text, QColor::fromRgba(theme.text));
    palette.setColor(QPalette::AlternateBase, QColor::fromRgba(theme.alternate));
    palette.setColor(QPalette::Highlight, QColor::fromRgba(theme.highlight));
    palette.setColor(QPalette::HighlightedText, QColor::fromRgba(theme.highlighted));
    return palette;
}

TEST(Colours, AreToldApartByWhatAnEyeNeeds) {
    EXPECT_DOUBLE_EQ(contrastOf(Qt::black, Qt::white), 21);
    EXPECT_DOUBLE_EQ(contrastOf(Qt::white, Qt::white), 1);
    EXPECT_NEAR(contrastOf(Qt::white, QColor(0x76, 0x76, 0x76)), 4.54, 0.005);
    EXPECT_NEAR(contrastOf(QColor(0xc8, 0x1e, 0x1e), Qt::white), 5.7, 0.1);
    EXPECT_EQ(readable(Qt::yellow, Qt::black), QColor(Qt::yellow)) << "it can be read as it is";
    EXPECT_GT(readable(QColor(0, 0, 0, 0x33), Qt::black).lightness(), 0x50);
}

TEST(Colours, CanBeReadOnEveryRowOfEveryTheme) {
    for (const Theme& theme : themes) {
        for (const auto row : {QStyle::State_None, QStyle::State_Selected}) {
            for (const auto feature :
                 {QStyleOptionViewItem::None, QStyleOptionViewItem::Alternate}) {
                QStyleOptionViewItem option;
                option.palette = paletteOf(theme);
                option.state = QStyle::State_Enabled | QStyle::State_Active | row;
                option.features = feature;
                const RowColours colours = coloursOf(option);
                SCOPED_TRACE(std::string(theme.name) + " " + colours.ground.name().toStdString());
                EXPECT_EQ(colours.ground.alpha(), 255);
                EXPECT_GE(contrastOf(colours.text, colours.ground), leastContrast);
                std::set<QRgb> different;
                for (const FaceState state : states) {
                    const QColor colour = colourOf(state, colours.ground);
                    EXPECT_GE(contrastOf(colour, colours.ground), leastContrast);
                    different.insert(colour.rgb());
                }
                if (contrastOf(colours.ground, Qt::white) < 1.1) {
                    EXPECT_EQ(different.size(), states.size()) << "there is room for hues";
                }
            }
        }
        for (const Paper paper : {Paper::AsTheWindow, Paper::Light, Paper::Dark}) {
            const PaperColours colours = coloursOf(paper, paletteOf(theme));
            EXPECT_GE(contrastOf(colours.ink, colours.paper), leastContrast) << theme.name;
            EXPECT_GE(contrastOf(colours.label, colours.paper), leastContrast) << theme.name;
        }
    }
}

TEST(Colours, OfAThemesSelectionsAndHintsAreMadeReadable) {
    ReadableStyle style;
    for (const Theme& theme : themes) {
        SCOPED_TRACE(theme.name);
        const QPalette wanted = paletteOf(theme);
        QPalette palette = wanted;
        style.polish(palette);
        const QColor text = palette.color(QPalette::HighlightedText);
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            const QColor ground = palette.color(group, QPalette::Highlight);
            EXPECT_EQ(ground.alpha(), 255);
            EXPECT_GE(contrastOf(ground, text), leastContrast);
            EXPECT_GE(contrastOf(palette.color(group, QPalette::PlaceholderText),
                                 palette.color(group, QPalette::Base)),
                      leastContrast);
        }
        EXPECT_EQ(text, wanted.color(QPalette::HighlightedText)) << "only the ground gives way";
        const QColor before = wanted.color(QPalette::Highlight);
        if (before.alpha() == 255 && contrastOf(before, text) >= leastContrast) {
            EXPECT_EQ(palette.color(QPalette::Highlight), before) << "it was readable";
        }
    }
}

TEST_F(TheLibrarysWindow, FollowsTheDesktopsThemeWhileItIsOpen) {
    open();
    glyphora({QStringLiteral("activate"), QStringLiteral("Beta")});
    ASSERT_TRUE(await([this] { return heard(1).ends_with(", active"); }));
    choose(0);
    const auto has = [](const QImage& image, const QColor& colour) {
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixel(x, y) == colour.rgb()) {
                    return true;
                }
            }
        }
        return false;
    };
    for (const Theme& theme : themes) {
        SCOPED_TRACE(theme.name);
        window_->setPalette(paletteOf(theme));
        QApplication::processEvents();
        QTreeView& list = window_->list();
        const QModelIndex beta = window_->model().index(1, 0);
        const QImage row = list.viewport()->grab(list.visualRect(beta)).toImage();
        EXPECT_TRUE(has(row, QColor::fromRgba(theme.base)));
        EXPECT_TRUE(has(row, colourOf(FaceState::Active, QColor::fromRgba(theme.base))));
    }
}

} // namespace
