// SPDX-License-Identifier: MIT
// The program's own window, from the command line to its pictures.
#include "manager/qt/colours.h"
#include "tests/manager/qt/windowfixture.h"

#include <QImage>

#include <gmock/gmock.h>
#include <map>

using namespace manager;
using namespace managertest;
using testing::HasSubstr;

namespace {

class PicturesOfTheWindow : public TheLibrarysWindow {
protected:
    struct Ending {
        int status;
        std::string problems;
    };
    static Ending show(const QStringList& arguments) {
        QProcess process;
        process.start(QStringLiteral(GLYPHORA_PROGRAM), QStringList{"show"} + arguments);
        EXPECT_TRUE(process.waitForFinished(60'000));
        return {process.exitCode(), process.readAllStandardError().toStdString()};
    }
    std::string draw(const std::string& name, const std::string& family) {
        const std::string path = sandbox_.root() + "/" + name;
        writeBytes(path, R"(<svg xmlns="http://www.w3.org/2000/svg"><text font-family=")" + family +
                             R"(">x</text></svg>)");
        return path;
    }
    [[nodiscard]] QImage picture(const std::string& view) const {
        return QImage(QString::fromStdString(folder_ + "/" + view + ".png"));
    }

    std::string folder_ = sandbox_.root() + "/pictures";
    QStringList toFolder_{QStringLiteral("--pictures"), QString::fromStdString(folder_)};
};

/// The colour that most of a picture's coloured pixels have: what is behind a selection.
QColor selectionOf(const QImage& image) {
    std::map<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            counts[pixel] += QColor(pixel).saturation() > 0x40 ? 1 : 0;
        }
    }
    return std::ranges::max_element(counts, {}, [](const auto& entry) { return entry.second; })
        ->first;
}

TEST_F(PicturesOfTheWindow, ShowTheDrawingThatIsNamed) {
    const std::string poster = draw("poster.svg", "Alpha");
    const Ending ending = show(toFolder_ + QStringList{QString::fromStdString(poster)});
    EXPECT_EQ(ending.status, 0) << ending.problems;
    for (const char* const end : {"", "-dark"}) {
        const QImage drawing = picture(std::string("drawing") + end);
        ASSERT_FALSE(drawing.isNull());
        EXPECT_NE(drawing, picture(std::string("library") + end));
        EXPECT_TRUE(picture(std::string("duplicates") + end).isNull()) << "there are none";
        EXPECT_GE(contrastOf(selectionOf(drawing), Qt::white), leastContrast);
    }
}

TEST_F(PicturesOfTheWindow, ShowWhatIsSearchedFor) {
    const Ending ending = show(toFolder_ + QStringList{QStringLiteral("alpha")});
    EXPECT_EQ(ending.status, 0) << ending.problems;
    EXPECT_FALSE(picture("search-dark").isNull());
    EXPECT_NE(picture("search"), picture("library"));
    EXPECT_NE(picture("search"), picture("nothing"));
}

TEST_F(PicturesOfTheWindow, TellOfADrawingThatCannotBeShown) {
    const std::string own = draw("own.svg", "serif");
    EXPECT_EQ(show(toFolder_ + QStringList{QString::fromStdString(own)}).status, 0);
    EXPECT_FALSE(picture("library").isNull());
    EXPECT_TRUE(picture("drawing").isNull());

    const std::string bad = sandbox_.root() + "/bad.svg";
    writeBytes(bad, "no drawing");
    const Ending ending = show(toFolder_ + QStringList{QString::fromStdString(bad)});
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.problems, HasSubstr(bad + ":1:1: "));
    const Ending both = show({QString::fromStdString(own), QStringLiteral("alpha")});
    EXPECT_EQ(both.status, 2);
    EXPECT_THAT(both.problems, HasSubstr("not both"));
}

} // namespace
