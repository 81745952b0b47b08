// SPDX-License-Identifier: MIT
// Dialogs as windows: shown, ended, one within another, and served.
#include "windowfixture.h"

#include <QAccessible>
#include <QLabel>
#include <QMessageBox>
#include <QPixmap>
#include <QPushButton>

#include <unistd.h>

#include <array>
#include <stdexcept>
#include <tuple>

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// What the routines of a test do.
std::function<void()> noted;
std::function<AIBoolean()> ticked;

void notifyItem(ADMItemRef /*item*/, ADMNotifierRef /*notifier*/) {
    noted();
}
AIBoolean tick(ADMDialogRef /*dialog*/, ADMTimerRef /*timer*/) {
    return ticked();
}

class AWindow : public WindowFixture {
protected:
    ~AWindow() override {
        noted = {};
        ticked = {};
    }
    void setNotify(ADMDialogRef ref, std::int32_t id) { item(ref, id).notify = notifyItem; }
    void addTimer(ADMDialogRef ref) {
        ADMTimerRef timer = nullptr;
        EXPECT_EQ(dialogs.addTimer(*dialogs.find(ref), 1, tick, nullptr, timer), kNoErr);
    }

    const ADMDialogSuite* dialogSuite = suite<ADMDialogSuite>();
    const ADMItemSuite* itemSuite = suite<ADMItemSuite>();
};

TEST_F(AWindow, ShowsTextsAsTheyStandAndFollowsTheModel) {
    const ADMDialogRef ref = create("Fonts & more");
    item(ref, 3).text = "Smith & Sons";
    item(ref, 8).text = "<b>bold</b>";
    noted = [&] {
        itemSuite->SetText(item(ref, 8).handle, "pressed");
        itemSuite->Enable(item(ref, 3).handle, 0);
        dialogSuite->SetText(ref, "another");
    };
    setNotify(ref, 3);
    look(ref, [&] {
        EXPECT_EQ(window().windowTitle(), "Fonts & more");
        EXPECT_EQ(shown<QLabel>(8).text(), "<b>bold</b>");
        EXPECT_EQ(shown<QLabel>(8).textFormat(), Qt::PlainText);
        QTest::mouseClick(&shown(3), Qt::LeftButton);
        settle();
        EXPECT_EQ(shown<QLabel>(8).text(), "pressed");
        EXPECT_EQ(window().windowTitle(), "another");
        QAccessibleInterface* const button = QAccessible::queryAccessibleInterface(&shown(3));
        EXPECT_EQ(button->text(QAccessible::Name), "Smith & Sons");
        EXPECT_TRUE(button->state().disabled);
        QAccessibleInterface* const text = QAccessible::queryAccessibleInterface(&shown(8));
        EXPECT_EQ(text->text(QAccessible::Name), "pressed");
    });
}

TEST_F(AWindow, HasTheTextsOfItsLayoutInTheUsersLanguage) {
    folder.write("1.ui",
                 "<ui version=\"4.0\"><widget class=\"QDialog\"><property name=\"geometry\">"
                 "<rect><width>300</width><height>400</height></rect></property><property "
                 "name=\"accessibleName\"><string>Fonts</string></property></widget></ui>");
    look(create(), [&] { EXPECT_EQ(window().accessibleName(), "Schriften"); });
}

TEST_F(AWindow, TellsTrackRoutinesOfClicksOnItemsAndBesideThem) {
    static std::vector<std::string> clicks;
    static const ADMTrackerSuite* trackers = nullptr;
    clicks.clear();
    trackers = suite<ADMTrackerSuite>();
    const auto note = [](const char* what, ADMTrackerRef tracker) {
        std::uint32_t modifiers = 0;
        trackers->GetModifiers(tracker, &modifiers);
        clicks.push_back(std::string(what) +
                         ((modifiers & kADMDoubleClickModifier) != 0 ? " twice" : ""));
    };
    static const std::function<void(const char*, ADMTrackerRef)> noteIt = note;
    const ADMDialogRef ref = create();
    item(ref, 8).text = item(ref, 9).text = "text";
    Dialog& dialog = *dialogs.find(ref);
    dialog.mask = item(ref, 3).mask = item(ref, 8).mask = kADMButtonMask;
    dialog.track = [](ADMDialogRef, ADMTrackerRef tracker) -> AIBoolean {
        noteIt("dialog", tracker);
        return 0;
    };
    item(ref, 3).track = item(ref, 8).track = [](ADMItemRef, ADMTrackerRef tracker) -> AIBoolean {
        noteIt("item", tracker);
        return 0;
    };
    noted = [&] { clicks.emplace_back("pressed"); };
    setNotify(ref, 3);
    look(ref, [&] {
        QTest::mouseClick(&shown(3), Qt::LeftButton);
        QTest::mouseClick(&shown(8), Qt::LeftButton);
        QTest::mouseDClick(&shown(8), Qt::LeftButton);
        QTest::mouseRelease(&shown(8), Qt::LeftButton);
        QTest::mouseClick(&shown(9), Qt::LeftButton);
        QTest::mouseClick(&window(), Qt::LeftButton, {}, QPoint(1, 1));
        QTest::mouseClick(&window(), Qt::RightButton, {}, QPoint(1, 1));
        settle();
    });
    EXPECT_THAT(clicks, ElementsAre("item", "pressed", "item", "item twice", "dialog"));
}

TEST_F(AWindow, EndsByKeyboardAndMouse) {
    const ADMDialogRef ref = create();
    const std::pair<std::function<void()>, std::int32_t> ways[] = {
        {escape, 2},
        {[] { window().close(); }, 2},
        {[] { QTest::keyClick(&shown(1), Qt::Key_Space); }, 1},
        {[] { QTest::mouseClick(&shown(1), Qt::LeftButton); }, 1},
        {[] {
             shown<QPushButton>(1).setDefault(true);
             shown(8).setFocus();
             QTest::keyClick(&window(), Qt::Key_Return);
         },
         1},
    };
    for (const auto& [way, id] : ways) {
        EXPECT_EQ(show(ref, way), id);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    }
}

TEST_F(AWindow, EndsThoseWithinItFirst) {
    const ADMDialogRef outer = create("outer");
    const ADMDialogRef inner = create("inner");
    std::vector<std::string> ended;
    setNotify(outer, 3);
    setNotify(inner, 3);
    addTimer(outer);
    noted = [&] {
        if (dialogs.running().size() == 1) {
            show(inner, [] { QTest::mouseClick(&shown(3), Qt::LeftButton); });
            ended.emplace_back("inner");
            return;
        }
        ticks = 1;
        windows->showAlert({AlertKind::Message, "owner", "", "alert"});
        ended.emplace_back("alert");
    };
    ticked = [&] {
        EXPECT_NE(qobject_cast<QMessageBox*>(&window()), nullptr);
        dialogSuite->EndModal(outer, 3, 0);
        return AIBoolean{0};
    };
    EXPECT_EQ(show(outer, [] { QTest::mouseClick(&shown(3), Qt::LeftButton); }), 3);
    EXPECT_THAT(ended, ElementsAre("alert", "inner"));
}

TEST_F(AWindow, ShowsAlertsAsTheirTextsStand) {
    const std::tuple<Alert, const char*, QMessageBox::Icon> alerts[] = {
        {{AlertKind::About, "owner", "About it", "<b>a</b>\nb"},
         "About it",
         QMessageBox::Information},
        {{AlertKind::Error, "owner", "", "a & b"}, "owner", QMessageBox::Critical},
        {{AlertKind::Message, "owner", "", "a"}, "owner", QMessageBox::Information},
    };
    for (const auto& [alert, title, icon] : alerts) {
        bool shown = false;
        QTimer::singleShot(0, qApp, [&, &text = alert.text, &caption = title, &kind = icon] {
            const auto& box = dynamic_cast<const QMessageBox&>(window());
            EXPECT_EQ(box.windowTitle(), caption);
            EXPECT_EQ(box.text().toStdString(), text);
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_EQ(box.icon(), kind);
            shown = true;
            escape();
        });
        windows->showAlert(alert);
        EXPECT_TRUE(shown);
    }
}

TEST_F(AWindow, LeavesTheEnvironmentToApplicationsThatAreLaunched) {
    EXPECT_EQ(QApplication::platformName(), "offscreen");
    EXPECT_FALSE(qEnvironmentVariableIsSet("QT_QPA_PLATFORM"));
}

TEST_F(AWindow, ServesTimersAndTheDesktopWhileItIsOpen) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    events.descriptor = [&] { return ends[0]; };
    const ADMDialogRef ref = create();
    addTimer(ref);
    handler = [&](std::string_view caller, std::string_view /*selector*/, void*) {
        if (caller == "AI Timer") {
            EXPECT_EQ(write(ends[1], "x", 1), 1);
        }
        return kNoErr;
    };
    AITimerHandle timer = nullptr;
    suite<AITimerSuite>()->AddTimer(owner.ref(), "t", 2, &timer);
    ticked = [&] {
        ticks = 2; // the plug-in's timer is next, and it causes an event
        return AIBoolean{0};
    };
    unsigned dispatched = 0;
    events.dispatch = [&]() -> std::size_t {
        char byte = 0;
        EXPECT_EQ(read(ends[0], &byte, 1), 1);
        if (++dispatched == 1) {
            EXPECT_EQ(write(ends[1], "x", 1), 1);
            throw std::runtime_error("an event that throws");
        }
        dialogs.endModal(*dialogs.find(ref), 9, false);
        return 1;
    };
    EXPECT_EQ(show(ref, [this] { ticks = 1; }), 9);
    EXPECT_THAT(frontend.errors, ElementsAre("an event that throws"));
    events.descriptor = {};
    close(ends[0]);
    close(ends[1]);
}

TEST_F(AWindow, EndsWhenARoutineThrowsAndTheNextOneRuns) {
    const ADMDialogRef ref = create();
    setNotify(ref, 3);
    noted = [] { throw std::runtime_error("thrown by a routine"); };
    EXPECT_EQ(show(ref, [] { QTest::mouseClick(&shown(3), Qt::LeftButton); }), 2);
    EXPECT_THAT(frontend.misbehaviour, ElementsAre(HasSubstr("threw an exception")));
    EXPECT_EQ(show(ref, [] { QTest::mouseClick(&shown(1), Qt::LeftButton); }), 1);
}

/// Presses 3, then whatever runs then gets 1 after a tick.
class Presser : public DialogUser {
public:
    explicit Presser(Dialogs& dialogs) : dialogs_(dialogs) {}

    void begun(Dialog& dialog) override { seen.push_back("begun " + dialog.title); }
    std::uint32_t act(Dialog& dialog) override {
        if (++asked == 2) {
            return 1;
        }
        dialogs_.press(*dialog.item(asked == 1 ? 3 : 1));
        return 0;
    }
    void ended(Dialog& dialog) override {
        seen.push_back("ended by " + std::to_string(dialog.ending->item));
        EXPECT_EQ(dialogs_.running().back(), &dialog);
    }

    int asked = 0;
    std::vector<std::string> seen;

private:
    Dialogs& dialogs_;
};

TEST_F(AWindow, IsUsedBySomebodyElse) {
    const ADMDialogRef ref = create("outer");
    const ADMDialogRef inner = create("inner");
    Presser presser(dialogs);
    windows->setUser(&presser);
    setNotify(ref, 3);
    noted = [&] { EXPECT_EQ(run(inner), 1); };
    EXPECT_EQ(run(ref), 1);
    EXPECT_THAT(presser.seen,
                ElementsAre("begun outer", "begun inner", "ended by 1", "ended by 1"));
    EXPECT_EQ(presser.asked, 4);
    windows->setUser(nullptr);
}

TEST_F(AWindow, IsNotShownWhenItCannotBeMadeOrIsHidden) {
    folder.write("1.ui",
                 "<ui version=\"4.0\"><widget class=\"QDialog\"><property name=\"geometry\">"
                 "<rect><width>300</width><height>400</height></rect></property>"
                 "<layout class=\"NoSuchLayout\">" +
                     widget("QPushButton", 1) + "</layout></widget></ui>");
    EXPECT_EQ(run(create()), kADMCancelItemID);
    EXPECT_THAT(frontend.errors,
                ElementsAre((folder / "1.ui").string() + ": item 1 cannot be shown"));

    folder.write("1.ui", layoutText());
    const ADMDialogRef hidden = create();
    dialogSuite->Show(hidden, 0);
    show(hidden, [&] {
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        dialogs.giveUp(*dialogs.find(hidden));
    });
}

TEST_F(AWindow, TellsTheModelWhereItemsAre) {
    const ADMDialogRef ref = create();
    look(ref, [&] {
        window().resize(700, 650);
        settle();
        const Item& text = item(ref, 9);
        const QRect area = shown(9).geometry();
        EXPECT_EQ(text.bounds.left, area.left());
        EXPECT_EQ(text.bounds.right, area.left() + area.width());
        EXPECT_GT(text.bounds.left, 300);
        const QWidget& rows = *shown<QTreeView>(7).viewport();
        EXPECT_EQ(item(ref, 7).bounds.left, rows.mapTo(&window(), QPoint()).x());
        EXPECT_EQ(dialogs.find(ref)->bounds.right - dialogs.find(ref)->bounds.left, 700);
    });
}

TEST_F(AWindow, IsKeptOnTheScreenUnlessThePluginWillNot) {
    const ADMRect outside{-500, -700, 0, 0};
    for (const bool forced : {true, false}) {
        const ADMDialogRef ref = create();
        dialogSuite->ForceOnScreen(ref, static_cast<AIBoolean>(forced));
        dialogSuite->SetBoundsRect(ref, &outside);
        look(ref, [&] {
            EXPECT_EQ(window().size(), QSize(500, 700));
            EXPECT_EQ(window().pos().x() >= 0, forced);
        });
    }
}

TEST_F(AWindow, IsSavedAsPicturesWhenShownAndBeforeItCloses) {
    windows->savePictures(folder.path());
    const ADMDialogRef ref = create();
    look(ref, [&] {
        item(ref, 8).text = "something else";
        dialogs.changed(item(ref, 8));
    });
    const QImage before(QString::fromStdString((folder / "01-shown.png").string()));
    const QImage after(QString::fromStdString((folder / "02-closing.png").string()));
    EXPECT_EQ(before.size(), QSize(500, 700));
    EXPECT_EQ(after.size(), QSize(500, 700));
    EXPECT_NE(before, after);
    windows->savePictures(folder / "nowhere");
    show(ref, escape);
    EXPECT_THAT(frontend.errors, testing::Each(HasSubstr("nowhere")));
    EXPECT_EQ(frontend.errors.size(), 2U);
}

} // namespace
} // namespace host::test
