// SPDX-License-Identifier: MIT
// The window while the world around it changes: its server, its disks, other sessions, a display.
#include "manager/cli/announce.h"
#include "manager/cli/libraryops.h"
#include "manager/qt/guests.h"
#include "tests/manager/qt/windowfixture.h"
#include "tests/support/xserver.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <optional>
#include <sstream>

using namespace manager;

namespace managertest {

namespace {

class TheWindowsWorld : public TheLibrarysWindow {
protected:
    ~TheWindowsWorld() override {
        for (QProcess* const process : {&server_, &other_}) {
            process->kill();
            process->waitForFinished();
        }
    }
    void serve() {
        server_.start(QStringLiteral(GLYPHORA_PROGRAM), {"serve"});
        ASSERT_TRUE(await([this] {
            const auto known = findServer();
            return known && server_.processId() != 0;
        }));
    }
    /// What a program of another environment prints in the end.
    static std::string run(const QProcessEnvironment& environment, const QString& program,
                           const QStringList& arguments) {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished(60'000));
        const std::string printed = process.readAll().toStdString();
        EXPECT_EQ(process.exitCode(), 0) << printed;
        return printed;
    }

    /// Of this process; 0: there is none.
    static pid_t childCalled(const std::string& name) {
        std::istringstream children(testsupport::contentOf("/proc/thread-self/children"));
        pid_t child = 0;
        while (children >> child) {
            if (testsupport::contentOf("/proc/" + std::to_string(child) + "/comm") == name + "\n") {
                return child;
            }
        }
        return 0;
    }

    QProcess server_;
    QProcess other_;
};

TEST_F(TheWindowsWorld, WorksOnWhenItsServerIsKilledAndWithTheNextOne) {
    serve();
    open();
    server_.kill();
    ASSERT_TRUE(await([this] { return server_.state() == QProcess::NotRunning; }));
    choose(1);
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(awaitHeard({{1, "Beta, 1 style, active"}}));
    ASSERT_TRUE(await([] { return !findServer(); }));
    serve();
    int families = 2;
    for (const char* const name : {"Gamma", "Omega"}) { // one may be found when it begins
        sandbox_.write(std::string(name) + ".ttf", testsupport::makeFont({name, "Regular", name}));
        ++families;
        EXPECT_TRUE(await([&] { return window_->model().rowCount() == families; })) << name;
    }
    EXPECT_EQ(heard(1), "Beta, 1 style, active");
    EXPECT_EQ(window_->list().currentIndex().row(), 1);
}

TEST_F(TheWindowsWorld, HasAServerThatWatchesItsFolders) {
    open();
    window_->needServer(GLYPHORA_PROGRAM);
    ASSERT_TRUE(await([] { return findServer().has_value(); }));
    const pid_t server = *findServer();
    sandbox_.write("gamma.ttf", testsupport::makeFont({"Gamma", "Regular", "Gamma-Regular"}));
    EXPECT_TRUE(await([this] { return window_->model().rowCount() == 3; }));
    window_->needServer("/bin/false"); // there is one
    window_->finishReading();
    EXPECT_EQ(findServer(), server);
    EXPECT_EQ(kill(server, SIGTERM), 0);
    EXPECT_TRUE(await([] { return !findServer(); }));
}

TEST_F(TheWindowsWorld, TellsWhyItsLibraryCannotBeReadAndTriesAgain) {
    const std::string file = sandbox_.places().database();
    const std::string whole = readBytes(file);
    for (const char* const damaged : {"no index of fonts", ""}) { // the latter would be a new one
        writeBytes(file, damaged);
        window_ = std::make_unique<LibraryWindow>(
            WindowOptions{sandbox_.places(), GLYPHORA_PROGRAM, WindowRequest{}});
        std::vector<std::string> told;
        window_->whenShown([&](const QString& problem) { told.push_back(problem.toStdString()); });
        window_->show();
        ASSERT_TRUE(await([&] { return !told.empty(); }));
        EXPECT_THAT(told.front(), testing::HasSubstr(file + ": "));
        EXPECT_THAT(window_->empty().toStdString(), testing::EndsWith(told.front()));
        ASSERT_TRUE(window_->way().isVisible());
        writeBytes(file, whole);
        QTest::mouseClick(&window_->way(), Qt::LeftButton);
        EXPECT_TRUE(await([this] { // one that was begun before fails once more
            return window_->list().isVisible() && window_->model().rowCount() == 2;
        })) << window_->empty().toStdString();
        window_.reset();
    }
}

TEST_F(TheWindowsWorld, KeepsWhatIsKnownOfAFolderThatIsUnplugged) {
    glyphora({QStringLiteral("activate"), QStringLiteral("Beta")});
    serve();
    open();
    const std::string elsewhere = sandbox_.root() + "/elsewhere";
    for (int time = 0; time < 2; ++time) {
        std::filesystem::rename(sandbox_.library(), elsewhere);
        EXPECT_TRUE(
            awaitHeard({{0, "Alpha, 2 styles, away"}, {1, "Beta, 1 style, active (away)"}}));
        choose(0);
        EXPECT_FALSE(window_->list().actions().front()->isEnabled()) << "it cannot be activated";
        std::filesystem::rename(elsewhere, sandbox_.library());
        EXPECT_TRUE(awaitHeard({{0, "Alpha, 2 styles, inactive"}, {1, "Beta, 1 style, active"}}));
    }
}

TEST_F(TheWindowsWorld, DrawsTheBeginningOfATextThatIsTooLong) {
    open();
    choose(1);
    auto* const own = window_->pane().findChild<QLineEdit*>();
    // The umlaut lies on both sides of the limit.
    own->setText(QString(preview::maximumText - 1, QLatin1Char('H')) + QChar(0xC4));
    do {
        static_cast<void>(window_->grab());
    } while (window_->finishLines());
    EXPECT_EQ(heard(1), "Beta, 1 style, inactive");
    EXPECT_EQ(own->accessibleDescription(),
              QStringLiteral("Only the beginning of this long text is drawn."));
    own->setText(QString(preview::maximumText, QLatin1Char('H')));
    EXPECT_EQ(own->accessibleDescription(), QString());
}

// Each is tried with a text of its own, which has all lines drawn anew.
TEST_F(TheWindowsWorld, MarksAFaceThatIsCutAndDrawsTheRest) {
    open();
    choose(1);
    auto* const own = window_->pane().findChild<QLineEdit*>();
    const auto draw = [this] {
        do {
            static_cast<void>(window_->grab());
        } while (window_->finishLines());
    };
    draw();
    const pid_t drawing = childCalled("glyphora-previe");
    ASSERT_NE(drawing, 0);
    std::filesystem::resize_file(sandbox_.library() + "/beta.ttf", 200);
    own->setText(QStringLiteral("cut short"));
    draw();
    EXPECT_EQ(heard(0), "Alpha, 2 styles, inactive");
    EXPECT_EQ(heard(1), "Beta, 1 style, cannot be drawn, inactive");
    EXPECT_TRUE(await([this] { // hearing may have laid it out anew
        return window_->pane().waterfall().accessibleDescription() ==
               QStringLiteral("Beta Regular: cut short, cannot be drawn");
    }));
    EXPECT_EQ(childCalled("glyphora-previe"), drawing);

    // Now the process goes, too, with the line that it is at.
    sandbox_.write("beta.ttf", testsupport::makeFont({"Beta", "Regular", "Beta-Regular"}));
    draw();
    kill(drawing, SIGSTOP);
    own->setText(QStringLiteral("fatal"));
    static_cast<void>(window_->grab());
    QApplication::processEvents();
    kill(drawing, SIGBUS);
    kill(drawing, SIGCONT);
    draw();
    const auto isMarked = [this](int row) {
        return heard(row).find("cannot be drawn") != std::string::npos;
    };
    EXPECT_NE(isMarked(0), isMarked(1)) << heard(0) << ", " << heard(1);
    EXPECT_NE(childCalled("glyphora-previe"), drawing);
}

TEST_F(TheWindowsWorld, HasOtherSessionsHaveTheirOwnWindows) {
    ASSERT_FALSE(handOver({}));
    open({.search = "alpha"});
    const Guests guests([this](const WindowRequest& request) { window_->open(request); });
    const auto here = QProcessEnvironment::systemEnvironment();
    const testsupport::PrivateBus bus;
    auto there = QProcessEnvironment::systemEnvironment();
    there.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    ASSERT_NE(here.value("DBUS_SESSION_BUS_ADDRESS"), there.value("DBUS_SESSION_BUS_ADDRESS"));
    // Of two in another session one has the window, and the other hands over to it and ends.
    for (QProcess* const process : {&server_, &other_}) {
        process->setProcessEnvironment(there);
        process->start(QStringLiteral(GLYPHORA_PROGRAM), {"show", "beta"});
        ASSERT_TRUE(process->waitForStarted());
    }
    const auto ended = [this] {
        return (server_.state() == QProcess::NotRunning ? 1 : 0) +
               (other_.state() == QProcess::NotRunning ? 1 : 0);
    };
    ASSERT_TRUE(await([&] { return ended() != 0; }));
    QProcess& first = server_.state() == QProcess::NotRunning ? server_ : other_;
    EXPECT_EQ(first.exitCode(), 0) << first.readAllStandardError().toStdString();
    run(there, QStringLiteral(GLYPHORA_PROGRAM), {"show"}); // the other has stayed: it takes this
    EXPECT_EQ(ended(), 1);
    EXPECT_EQ(window_->searchField().text(), QStringLiteral("alpha"));
}

TEST_F(TheWindowsWorld, IsShownWhileAScanIsOwed) {
    removeIndex();
    static_cast<void>(openKnown(sandbox_.places()));
    std::optional<FileLock> scanning(sandbox_.places().scanLock());
    ASSERT_FALSE(handOver({}));
    window_ =
        std::make_unique<LibraryWindow>(WindowOptions{sandbox_.places(), GLYPHORA_PROGRAM, {}});
    const Guests guests([this](const WindowRequest& request) { window_->open(request); });
    other_.start(QStringLiteral(GLYPHORA_PROGRAM), {"show", "beta"});
    ASSERT_TRUE(await([this] { return other_.state() == QProcess::NotRunning; }));
    EXPECT_EQ(other_.exitCode(), 0) << other_.readAllStandardError().toStdString();
    EXPECT_EQ(window_->searchField().text(), QStringLiteral("beta"));
    EXPECT_EQ(window_->model().rowCount(), 0);
    scanning.reset();
    EXPECT_TRUE(await([this] { return window_->model().rowCount() == 1; }));
}

TEST_F(TheWindowsWorld, IsUsedByTheKeysOfAnXServer) {
    const testsupport::XServer x;
    auto there = QProcessEnvironment::systemEnvironment();
    there.insert(QStringLiteral("DISPLAY"), QString::fromStdString(x.display()));
    there.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    other_.setProcessEnvironment(there);
    other_.start(QStringLiteral(GLYPHORA_PROGRAM), {"show"});
    const auto press = [&](const QStringList& keys) {
        run(there, QStringLiteral("xdotool"),
            QStringList{"search", "--sync", "--onlyvisible", "--name", "Glyphora Font Library",
                        "windowfocus", "--sync", "key", "--window", "0"} +
                keys);
    };
    const auto isActive = [&](const QString& name) {
        return run(there, QStringLiteral(GLYPHORA_PROGRAM), {"search", "--json", name})
                   .find("\"state\": \"active\"") != std::string::npos;
    };
    // The library may come after the keys: then they are pressed again.
    ASSERT_TRUE(await([&] {
        press({"ctrl+f", "ctrl+a", "b", "e", "t", "a", "Return", "Home", "ctrl+Return"});
        return isActive("Beta");
    }));
    EXPECT_FALSE(isActive("Alpha"));
    press({"ctrl+w"});
    EXPECT_TRUE(await([this] { return other_.state() == QProcess::NotRunning; }));
    EXPECT_EQ(other_.exitCode(), 0) << other_.readAllStandardError().toStdString();
}

} // namespace

} // namespace managertest
