// SPDX-License-Identifier: MIT
// Real windows in memory, for dialogs of a plug-in within the test.
#pragma once

#include "host/qt/windows.h"
#include "system/displays.h"
#include "tests/host/adm/dialogfixture.h"

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QWidget>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace host::test {

class WindowFixture : public DialogFixture {
protected:
    /// Layout 1: texts 8 and 9 above a tree 7, a flat list 4, and buttons 1, 2 and 3.
    WindowFixture() {
        folder.write("1.ui", R"(<ui version="4.0"><widget class="QDialog" name="dialog">
            <property name="geometry"><rect><width>500</width><height>700</height></rect></property>
            <layout class="QVBoxLayout"><item><layout class="QHBoxLayout" stretch="1,1">)" +
                                 widget("QLabel", 8) + widget("QLabel", 9) + "</layout></item>" +
                                 widget("QTreeView", 7) + widget("QListView", 4) +
                                 widget("QPushButton", 1) + widget("QPushButton", 2) +
                                 widget("QPushButton", 3) + "</layout></widget></ui>");
        dialogs.setView(windows.get());
    }
    ~WindowFixture() override { dialogs.setView(nullptr); }

    static std::string widget(const std::string& type, int id) {
        return "<item><widget class=\"" + type + "\" name=\"item" + std::to_string(id) +
               "\"><property name=\"itemID\" stdset=\"0\"><number>" + std::to_string(id) +
               "</number></property></widget></item>";
    }

    /// Runs the dialog and does `steps` while it is shown; the item that ended it.
    std::int32_t show(ADMDialogRef ref, const std::function<void()>& steps) {
        QTimer begin;
        begin.setSingleShot(true);
        bool begun = false;
        QObject::connect(&begin, &QTimer::timeout, qApp, [&] {
            begun = true;
            steps();
        });
        begin.start();
        const std::int32_t ended = run(ref);
        EXPECT_TRUE(begun) << "it has never run";
        return ended;
    }
    /// Closes it after them.
    void look(ADMDialogRef ref, const std::function<void()>& steps) {
        show(ref, [&] {
            steps();
            escape();
        });
    }
    static QWidget& window() { return *QApplication::activeModalWidget(); }
    template <typename Widget = QWidget>
    static Widget& shown(int id) {
        return *window().findChild<Widget*>(QStringLiteral("item%1").arg(id));
    }
    Item& item(ADMDialogRef ref, std::int32_t id) { return *dialogs.find(ref)->item(id); }
    static void settle() {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
    static void escape() { QTest::keyClick(&window(), Qt::Key_Escape); }

    testsupport::Variable fontconfig{
        "FONTCONFIG_FILE",
        folder
            .write("fonts.conf",
                   "<?xml version='1.0'?><fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir>"
                   "<cachedir>" +
                       (folder / "cache").string() + "</cachedir></fontconfig>")
            .string()};
    testsupport::Variable platform{"QT_QPA_PLATFORM", std::nullopt};
    DesktopEvents events;
    FontSource fonts;
    std::unique_ptr<Windows> windows{glyphoraMakeWindows(
        dialogs,
        {[this](const std::string& name) { return fonts.face ? fonts.face(name) : std::nullopt; },
         [this](const FaceFile& face) { return fonts.someCharacters(face); },
         [this](const std::vector<RowTexts>& rows) {
             return fonts.samples ? fonts.samples(rows) : std::vector<Sample>();
         }},
        {[this] { return events.descriptor ? events.descriptor() : -1; },
         [this] { return events.dispatch(); }},
        sys::offscreenPlatform)};
};

} // namespace host::test
