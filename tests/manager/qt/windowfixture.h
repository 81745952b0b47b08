// SPDX-License-Identifier: MIT
// The window with a library of its own, on a bus of its own.
#pragma once

#include "manager/qt/librarywindow.h"
#include "system/displays.h"
#include "tests/manager/sandbox.h"
#include "tests/support/await.h"
#include "tests/support/fontmaker.h"
#include "tests/support/privatebus/privatebus.h"

#include <QAccessible>
#include <QApplication>
#include <QProcess>
#include <QStatusBar>
#include <QTest>

#include <algorithm>
#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <memory>

namespace managertest {

inline QApplication& application() {
    static std::string platform = sys::offscreenPlatform;
    static char name[] = "glyphora";
    static char option[] = "-platform";
    static std::array<char*, 4> arguments{name, option, platform.data(), nullptr};
    static int count = 3;
    static auto& one = *new QApplication(count, arguments.data()); // outlives statics
    return one;
}

inline bool await(const std::function<bool()>& condition) {
    return testsupport::await([&] {
        QApplication::processEvents();
        return condition();
    });
}

inline bool awaitActive(QWidget& window) {
    constexpr int patience = 60'000; // milliseconds
    return QTest::qWaitForWindowActive(&window, patience);
}

class TheLibrarysWindow : public testing::Test {
protected:
    TheLibrarysWindow() {
        application();
        for (const char* style : {"Bold", "Regular"}) {
            sandbox_.write(std::string("alpha-") + style + ".ttf",
                           testsupport::makeFont({"Alpha", style, std::string("Alpha-") + style}));
        }
        sandbox_.write("beta.ttf", testsupport::makeFont({"Beta", "Regular", "Beta-Regular"}));
        glyphora({QStringLiteral("add"), QString::fromStdString(sandbox_.library())});
    }

    static void glyphora(const QStringList& arguments) {
        QProcess process;
        process.start(QStringLiteral(GLYPHORA_PROGRAM), arguments);
        ASSERT_TRUE(process.waitForFinished(60'000));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    }

    void removeIndex() {
        // Nobody begins another one before all of it is gone.
        const manager::FileLock opening(sandbox_.places().database() + ".lock");
        for (const char* const end : {"", "-wal", "-shm"}) {
            std::filesystem::remove(sandbox_.places().database() + end);
        }
    }

    void open(const manager::WindowRequest& request = {}) {
        window_ = std::make_unique<manager::LibraryWindow>(
            manager::WindowOptions{sandbox_.places(), GLYPHORA_PROGRAM, request});
        window_->resize(manager::LibraryWindow::wantedSize); // the screen is small
        window_->show();
        ASSERT_TRUE(awaitActive(*window_));
        ASSERT_TRUE(await([this] { return window_->model().rowCount() != 0; }));
    }
    /// What a screen reader hears of a family, by its place.
    std::string heard(int row) {
        QApplication::processEvents();
        static_cast<void>(window_->list().visualRect(window_->model().index(0, 0))); // lays it out
        QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(&window_->list());
        QAccessibleInterface* const cell = list->tableInterface()->cellAt(row, 0);
        return cell == nullptr ? "" : cell->text(QAccessible::Name).toStdString();
    }
    /// Whether it comes to hear these, by their places, all at the same time: one may come before
    /// another.
    testing::AssertionResult awaitHeard(const std::map<int, std::string>& expected) {
        const auto isHeard = [this](const auto& row) { return heard(row.first) == row.second; };
        if (await([&] { return std::ranges::all_of(expected, isHeard); })) {
            return testing::AssertionSuccess();
        }
        auto failure = testing::AssertionFailure() << "heard is";
        for (const auto& [row, words] : expected) {
            failure << " \"" << heard(row) << "\"";
        }
        return failure;
    }
    /// Whether the window comes to tell all of these; what it tells last may come after what it
    /// shows.
    testing::AssertionResult awaitTold(const std::vector<std::string>& parts) {
        const auto told = [this] {
            return (window_->problems().text() + '\n' + window_->statusBar()->currentMessage())
                .toStdString();
        };
        const auto isTold = [&](const std::string& part) {
            return told().find(part) != std::string::npos;
        };
        return await([&] { return std::ranges::all_of(parts, isTold); })
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << "told is \"" << told() << "\"";
    }
    /// Whether all that was done in the window has come to its end, also what is undone.
    bool finishDeeds() {
        const auto isFinished = std::make_shared<bool>(false);
        window_->deeds().run({QStringLiteral("status"), QStringLiteral("--json")},
                             [isFinished](const QJsonObject&) { *isFinished = true; });
        return await([&] { return *isFinished; });
    }
    void choose(int row) {
        window_->list().selectionModel()->setCurrentIndex(window_->model().index(row, 0),
                                                          QItemSelectionModel::ClearAndSelect);
    }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&window_->list(), static_cast<Qt::Key>(key), modifiers);
    }

    testsupport::PrivateBus bus_;
    Sandbox sandbox_;
    testsupport::Variable config_{"XDG_CONFIG_HOME", sandbox_.root() + "/config"};
    std::unique_ptr<manager::LibraryWindow> window_;
};

} // namespace managertest
