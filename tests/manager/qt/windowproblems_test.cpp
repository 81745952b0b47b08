// SPDX-License-Identifier: MIT
// What the window tells of what went wrong: how long, to whom, and how it is closed.
#include "manager/qt/colours.h"
#include "tests/manager/qt/windowfixture.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>

#include <gmock/gmock.h>

#include <vector>

using namespace manager;

namespace managertest {

namespace {

class TheWindowsProblems : public TheLibrarysWindow {
protected:
    /// Lets the window add a file, to the end.
    void add(const std::string& file) {
        window_->deeds().run(
            {QStringLiteral("add"), QStringLiteral("--json"), QString::fromStdString(file)});
        ASSERT_TRUE(finishDeeds());
    }
    [[nodiscard]] std::vector<std::string> told() const {
        std::vector<std::string> lines;
        const QStringList all = window_->problems().text().split('\n', Qt::SkipEmptyParts);
        for (const QString& line : all) {
            lines.push_back(line.toStdString());
        }
        return lines;
    }
    [[nodiscard]] QPlainTextEdit& text() const {
        return *window_->problems().findChild<QPlainTextEdit*>();
    }
};

TEST_F(TheWindowsProblems, StayUntilTheSameDeedSucceeds) {
    using testing::ElementsAre;
    using testing::HasSubstr;
    const std::string one = sandbox_.root() + "/one.ttf"; // not yet there
    const std::string two = sandbox_.root() + "/two.ttf";
    open();
    EXPECT_FALSE(window_->problems().isVisible());
    add(one);
    EXPECT_TRUE(window_->problems().isVisible());
    add(two);
    const auto both = ElementsAre(HasSubstr("one.ttf"), HasSubstr("two.ttf"));
    EXPECT_THAT(told(), both);
    choose(1);
    press(Qt::Key_Return, Qt::ControlModifier);
    window_->groupDeeds().add({GroupKind::Tag, "mine"}, {{1, {}}});
    ASSERT_TRUE(finishDeeds());
    EXPECT_THAT(told(), both) << "other deeds that succeed";
    add(one);
    EXPECT_THAT(told(), ElementsAre(HasSubstr("two.ttf"), HasSubstr("one.ttf")));
    writeBytes(one, testsupport::makeFont({"One", "Regular", "One"}));
    add(one);
    EXPECT_THAT(told(), ElementsAre(HasSubstr("two.ttf")));
    writeBytes(two, testsupport::makeFont({"Two", "Regular", "Two"}));
    add(two);
    EXPECT_FALSE(window_->problems().isVisible());
}

TEST_F(TheWindowsProblems, AreHeardReadCopiedAndClosedByKeys) {
    open();
    ProblemList& problems = window_->problems();
    problems.show(QStringLiteral("first"), {QStringLiteral("old")});
    const int low = text().height();
    problems.show(QStringLiteral("second"), {QStringLiteral("<b>x"), QStringLiteral("y")});
    EXPECT_GT(text().height(), low);
    EXPECT_TRUE(await([this] { return text().verticalScrollBar()->maximum() == 0; })) << "all fit";
    QAccessibleInterface* const heard = QAccessible::queryAccessibleInterface(&problems);
    EXPECT_EQ(heard->role(), QAccessible::AlertMessage);
    EXPECT_EQ(heard->text(QAccessible::Name), QStringLiteral("<b>x\ny")) << "what is new";
    EXPECT_EQ(told(), (std::vector<std::string>{"old", "<b>x", "y"}));

    text().setFocus();
    QTest::keyClick(&text(), Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(&text(), Qt::Key_Home, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(text().textCursor().selectedText().size(), 10);
    QTest::keyClick(&text(), Qt::Key_Tab);
    auto* const close = problems.findChild<QPushButton*>();
    ASSERT_TRUE(close->hasFocus());
    EXPECT_EQ(QAccessible::queryAccessibleInterface(close)->text(QAccessible::Name),
              QStringLiteral("Close the list of problems"));
    QTest::keyClick(close, Qt::Key_Space);
    EXPECT_FALSE(problems.isVisible());

    QStringList many;
    for (int line = 0; line < 50; ++line) {
        many.push_back(QString::number(line));
    }
    problems.show(QStringLiteral("third"), many);
    EXPECT_EQ(told().size(), 50U) << "nothing of before";
    EXPECT_LT(text().height(), 10 * low);
    EXPECT_TRUE(await([this] { return text().verticalScrollBar()->maximum() > 0; }));
    press(Qt::Key_Escape); // in the list of fonts
    EXPECT_FALSE(problems.isVisible());
    EXPECT_TRUE(told().empty());
    problems.show(QStringLiteral("third"), {});
    EXPECT_FALSE(problems.isVisible());
}

TEST_F(TheWindowsProblems, AreInTheUsersLanguage) {
    const testsupport::Variable locale("LC_ALL", "de_DE.UTF-8");
    open();
    const std::string odd = sandbox_.write("../outside/%1.odt", "no font");
    window_->deeds().run({QStringLiteral("collection"), QStringLiteral("remove"),
                          QStringLiteral("--json"), QStringLiteral("mine"),
                          QStringLiteral("Beta")});
    add(sandbox_.library());
    add(odd);
    EXPECT_THAT(told(), testing::ElementsAre(
                            "mine: eine Sammlung dieses Namens gibt es nicht",
                            sandbox_.library() + ": ist schon in der Bibliothek",
                            odd + ": kann nicht hinzugefügt werden: weder ein Ordner noch, dem "
                                  "Namen nach, eine Schriftdatei oder ein Archiv"));
}

TEST_F(TheWindowsProblems, CanBeReadOnLightAndDark) {
    open();
    for (const Qt::GlobalColor ground : {Qt::white, Qt::black, Qt::darkGray}) {
        QPalette colours = window_->palette();
        colours.setColor(QPalette::Base, ground);
        window_->setPalette(colours);
        const QPalette seen = text().palette();
        EXPECT_EQ(seen.color(QPalette::Base), QColor(ground));
        EXPECT_GE(contrastOf(seen.color(QPalette::Text), ground), leastContrast);
    }
}

} // namespace

} // namespace managertest
