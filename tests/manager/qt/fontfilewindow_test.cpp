// SPDX-License-Identifier: MIT
// Font files that are opened by themselves.
#include "manager/qt/guests.h"
#include "manager/qt/progressline.h"
#include "manager/qt/windows.h"
#include "tests/manager/qt/windowfixture.h"

#include <gmock/gmock.h>

using namespace manager;
using namespace managertest;
using testing::HasSubstr;

namespace {

class AWindowOfFontFiles : public TheLibrarysWindow {
protected:
    std::string write(const std::string& name, const std::string& bytes) {
        const std::string path = sandbox_.root() + "/" + name;
        writeBytes(path, bytes);
        return path;
    }
    FontFileWindow& openFiles(const std::vector<std::string>& files) {
        windows_.open({.files = files});
        FontFileWindow& window = *windows_.fontFiles().back();
        EXPECT_TRUE(awaitActive(window));
        EXPECT_TRUE(await([&] { return window.isRead(); }));
        return window;
    }
    static bool awaitStanding(FontFileWindow& window, const std::string& words) {
        return await(
            [&] { return window.standing().toStdString().find(words) != std::string::npos; });
    }
    static void press(QPushButton& button) { QTest::keyClick(&button, Qt::Key_Space); }

    std::string runtime_ = sandbox_.root() + "/runtime";
    testsupport::Variable runtimeFolder_{"XDG_RUNTIME_DIR", runtime_};
    bool isMade_ = std::filesystem::create_directory(runtime_);
    Windows windows_{{.places = sandbox_.places(), .program = GLYPHORA_PROGRAM, .request = {}}};
    std::string other_ =
        write("other.ttf", testsupport::makeFont({"Other", "Regular", "Other-Regular"}));
};

TEST_F(AWindowOfFontFiles, ActivatesForTheSessionAndAddsOnWish) {
    FontFileWindow& window = openFiles({other_});
    EXPECT_TRUE(window.list().isHidden());
    EXPECT_TRUE(window.showButton().isHidden());
    EXPECT_TRUE(awaitStanding(window, "not in the library"));

    press(window.switchButton());
    ASSERT_TRUE(awaitStanding(window, "until logout")) << window.problems().toStdString();
    EXPECT_THAT(window.standing().toStdString(), HasSubstr("not in the library"));
    EXPECT_FALSE(std::filesystem::exists(sandbox_.places().singleFonts()));
    press(window.switchButton());
    ASSERT_TRUE(await([&] { return !window.standing().contains("until logout"); }));

    press(window.addButton());
    ASSERT_TRUE(awaitStanding(window, sandbox_.places().singleFonts() + "/other.ttf"))
        << window.problems().toStdString();
    EXPECT_TRUE(window.addButton().isHidden());
    EXPECT_EQ(windows_.library(), nullptr);
    press(window.showButton());
    ASSERT_NE(windows_.library(), nullptr);
    EXPECT_EQ(windows_.library()->searchField().text(), "Other");
}

TEST_F(AWindowOfFontFiles, ListsTheFacesOfSeveralAndTellsWhatIsNoFont) {
    const std::string pair = write(
        "pair.ttc",
        testsupport::makeCollection({{"Pair", "Regular", "Pair"}, {"Pair", "Bold", "Pair-Bold"}}));
    const std::string bad = write("bad.otf", "OTTO, but no font");
    FontFileWindow& window = openFiles({bad, pair, sandbox_.root() + "/absent.ttf"});
    EXPECT_THAT(window.problems().toStdString(), HasSubstr(bad + ": "));
    EXPECT_THAT(window.problems().toStdString(), HasSubstr("/absent.ttf: "));
    ASSERT_EQ(window.list().count(), 2);
    EXPECT_EQ(window.list().item(1)->text(), "Pair Bold");
    window.list().setCurrentRow(1);
    window.pane().views().setCurrentWidget(&window.pane().characters());
    EXPECT_TRUE(
        await([&] { return window.pane().characters().grid().characters().rowCount() != 0; }));

    FontFileWindow& nothing = openFiles({bad});
    EXPECT_THAT(nothing.problems().toStdString(), HasSubstr(bad + ": "));
    EXPECT_FALSE(nothing.addButton().isEnabled());
    EXPECT_FALSE(nothing.switchButton().isEnabled());
    QTest::keyClick(&nothing, Qt::Key_Escape);
    EXPECT_TRUE(await([this] { return windows_.fontFiles().size() == 1; }));
}

TEST_F(AWindowOfFontFiles, ListsWhatIsTheSameUnderOneNameOnce) {
    const std::string vary =
        write("vary.ttf", testsupport::makeFont({.family = "Vary", .instances = {"Demi"}}));
    FontFileWindow& window = openFiles({vary});
    std::vector<std::string> names;
    for (int row = 0; row < window.list().count(); ++row) {
        names.push_back(window.list().item(row)->text().toStdString());
    }
    EXPECT_THAT(names, testing::ElementsAre("Vary Regular", "Vary Demi"));
}

TEST_F(AWindowOfFontFiles, IsOpenedByWhoComesLaterOncePerFile) {
    ASSERT_FALSE(handOver({}));
    const Guests guests([this](const WindowRequest& request) { windows_.open(request); });
    const auto show = [](const QStringList& arguments) {
        QProcess later;
        later.start(QStringLiteral(GLYPHORA_PROGRAM), QStringList{"show"} + arguments);
        EXPECT_TRUE(await([&] { return later.state() == QProcess::NotRunning; }));
        EXPECT_EQ(later.exitCode(), 0);
    };
    const std::string second = write("a\ttab.ttf", testsupport::makeFont({}));
    show({QString::fromStdString(other_)});
    show({QString::fromStdString(second), QString::fromStdString(other_)});
    ASSERT_EQ(windows_.fontFiles().size(), 2U);
    EXPECT_EQ(windows_.fontFiles()[1]->files(), (std::vector{second, other_}));
    show({QString::fromStdString(other_)});
    EXPECT_EQ(windows_.fontFiles().size(), 2U);
    EXPECT_TRUE(awaitActive(*windows_.fontFiles()[0]));
    EXPECT_EQ(windows_.library(), nullptr);

    const QString poster =
        QString::fromStdString(write("a\tposter.SVG", R"(<svg xmlns="http://www.w3.org/2000/svg">
            <text font-family="Nobody">x</text></svg>)"));
    const auto titleOfFirst = [this] {
        const FaceModel& model = windows_.library()->model();
        return model.row(model.index(0, 0)).title.toStdString();
    };
    show({poster, QString::fromStdString(other_)});
    EXPECT_EQ(windows_.fontFiles().size(), 2U);
    ASSERT_NE(windows_.library(), nullptr);
    EXPECT_TRUE(await([&] { return titleOfFirst() == "Nobody Regular"; })) << titleOfFirst();
    windows_.library()->sidebar().choose({});
    show({poster});
    EXPECT_TRUE(await([&] { return titleOfFirst() == "Nobody Regular"; })) << titleOfFirst();
}

TEST_F(AWindowOfFontFiles, IsClosedAtOnceAndGoesWhenItsCommandHasEnded) {
    const auto addAndClose = [](FontFileWindow& window) {
        press(window.addButton());
        ASSERT_TRUE(await([&] { return window.progress().isVisible(); }));
        window.close();
        EXPECT_FALSE(window.isVisible());
    };
    const QPointer<FontFileWindow> first = &openFiles({other_});
    const std::string second =
        write("second.ttf", testsupport::makeFont({"Second", "Regular", "Second-Regular"}));
    const QPointer<FontFileWindow> again = &openFiles({second});
    std::optional<FileLock> scanning(sandbox_.places().scanLock()); // which is waited for
    addAndClose(*first);
    addAndClose(*again);
    EXPECT_EQ(&openFiles({second}), again) << "as it is there still";
    EXPECT_TRUE(first);
    scanning.reset();
    EXPECT_TRUE(await([&] { return first.isNull(); }));
    EXPECT_TRUE(awaitStanding(*again, sandbox_.places().singleFonts() + "/second.ttf"));
    EXPECT_FALSE(again->progress().isVisible());
    EXPECT_TRUE(std::filesystem::exists(sandbox_.places().singleFonts() + "/other.ttf"));
}

TEST_F(AWindowOfFontFiles, CanBeUsedOnWhereTheLibraryCannotBeRead) {
    FontFileWindow& window = openFiles({other_});
    std::filesystem::remove_all(sandbox_.places().database());
    std::filesystem::create_directory(sandbox_.places().database());
    press(window.switchButton());
    ASSERT_TRUE(await([&] { return !window.problems().isEmpty(); }));
    EXPECT_TRUE(await([&] { return window.switchButton().isEnabled(); }));
}

} // namespace
