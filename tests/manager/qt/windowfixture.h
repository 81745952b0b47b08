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
#include <QTest>

#include <array>
#include <gtest/gtest.h>

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

    void open(const manager::WindowRequest& request = {}) {
        window_ = std::make_unique<manager::LibraryWindow>(
            manager::WindowOptions{sandbox_.places(), GLYPHORA_PROGRAM, request});
        window_->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
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
    void choose(int row) { window_->list().setCurrentIndex(window_->model().index(row, 0)); }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&window_->list(), static_cast<Qt::Key>(key), modifiers);
    }

    testsupport::PrivateBus bus_;
    Sandbox sandbox_;
    testsupport::Variable config_{"XDG_CONFIG_HOME", sandbox_.root() + "/config"};
    std::unique_ptr<manager::LibraryWindow> window_;
};

} // namespace managertest
