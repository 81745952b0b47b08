// SPDX-License-Identifier: MIT
// Lists by mouse and keyboard, drawn by a plug-in, and as a screen reader tells them.
#include "windowfixture.h"

#include <QAccessible>
#include <QAccessibleInterface>
#include <QLineEdit>
#include <QListView>
#include <QTreeView>

#include <unistd.h>

#include <array>

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> heard;
const ADMDrawerSuite* drawerSuite = nullptr;
const ADMListEntrySuite4* entrySuite = nullptr;
const ADMTrackerSuite* trackerSuite = nullptr;

std::string textOf(ADMListEntryRef entry) {
    char text[64];
    entrySuite->GetText(entry, text, sizeof text);
    return text;
}

/// A triangle, the entry's text, a status in red.
void drawEntry(ADMListEntryRef entry, ADMDrawerRef drawer) {
    ADMHierarchyListRef children = nullptr;
    AIBoolean is = 0;
    ADMRect area{};
    drawerSuite->GetBoundsRect(drawer, &area);
    entrySuite->IsSelected(entry, &is);
    if (is != 0) {
        drawerSuite->SetADMColor(drawer, kADMHighlightColor);
        drawerSuite->FillRect(drawer, &area);
        drawerSuite->SetADMColor(drawer, kADMTextColor);
    }
    entrySuite->GetChildList(entry, &children);
    if (children != nullptr) {
        entrySuite->IsExpanded(entry, &is);
        const ADMPoint corner{3, 3};
        drawerSuite->DrawResPicture(drawer, is != 0 ? kADMExpandedPicture : kADMCollapsedPicture,
                                    &corner);
    }
    const ADMPoint name{20, 2};
    drawerSuite->DrawText(drawer, textOf(entry).c_str(), &name);
    const ADMPoint status{200, 2};
    drawerSuite->SetRGBColor(drawer, 0xcc3333ff);
    drawerSuite->DrawText(drawer, "unknown", &status);
}

AIBoolean trackEntry(ADMListEntryRef entry, ADMTrackerRef tracker) {
    std::uint32_t modifiers = 0;
    trackerSuite->GetModifiers(tracker, &modifiers);
    heard.push_back((modifiers != 0 ? "twice " : "once ") + textOf(entry));
    return 0;
}

void noteSelection(ADMItemRef item, ADMNotifierRef /*notifier*/) {
    std::string names;
    for (const Row* const row : Current<Dialogs>::object->find(item)->tree->selected()) {
        names += " " + row->text;
    }
    heard.push_back("selected" + names);
}

class AList : public WindowFixture {
protected:
    AList() {
        heard.clear();
        drawerSuite = suite<ADMDrawerSuite>();
        entrySuite = suite<ADMListEntrySuite4>();
        trackerSuite = suite<ADMTrackerSuite>();
        tree.draw = drawEntry;
        tree.track = trackEntry;
        tree.mask |= kADMButtonMask;
        tree.multiSelect = true;
        tree.top().entryHeight = 24;
        tree.item().notify = noteSelection;
        item(ref, 4).notify = noteSelection;
        for (const char* const name : {"Alpha", "Beta", "Gamma"}) {
            add(tree.top(), name);
        }
        RowList& children = dialogs.childrenOf(*tree.top().rows[1]);
        children.entryHeight = 40;
        children.indentation = -50;
        add(children, "Beta one");
        add(children, "Beta two");
    }
    Row& add(RowList& list, const std::string& text) {
        Row& row = dialogs.insertRow(list, list.rows.size());
        row.text = text;
        return row;
    }
    Row& top(std::size_t at) { return *tree.top().rows.at(at); }

    static QTreeView& view() { return shown<QTreeView>(7); }
    /// Where the row of this text is shown; empty where it is not.
    static QRect areaOf(const QString& text) {
        const QModelIndexList found =
            view().model()->match(view().model()->index(0, 0), Qt::DisplayRole, text, 1,
                                  Qt::MatchStartsWith | Qt::MatchRecursive);
        return found.isEmpty() ? QRect() : view().visualRect(found.front());
    }
    static void click(const QString& text, Qt::KeyboardModifiers keys = {}) {
        QTest::mouseClick(view().viewport(), Qt::LeftButton, keys, areaOf(text).center());
        settle();
    }
    static void press(QWidget& widget, int key) {
        QTest::keyClick(&widget, static_cast<Qt::Key>(key));
        settle();
    }
    std::vector<std::string> takeHeard() { return std::exchange(heard, {}); }

    ADMDialogRef ref = create();
    Tree& tree = *item(ref, 7).tree;
};

TEST_F(AList, TellsThePluginWhatTheMouseSelectsAndThenClicks) {
    look(ref, [&] {
        click("Gamma");
        EXPECT_THAT(takeHeard(), ElementsAre("selected Gamma", "once Gamma"));
        EXPECT_EQ(tree.active(), &top(2));
        click("Alpha", Qt::ControlModifier);
        EXPECT_THAT(takeHeard(), ElementsAre("selected Alpha Gamma", "once Alpha"));
        EXPECT_EQ(tree.active(), &top(0));
        click("Gamma");
        QTest::mouseDClick(view().viewport(), Qt::LeftButton, {}, areaOf("Gamma").center());
        settle();
        EXPECT_THAT(takeHeard(), ElementsAre("selected Gamma", "once Gamma", "twice Gamma"));
    });
}

TEST_F(AList, IsUsedByKeyboardAlone) {
    look(ref, [&] {
        view().setFocus();
        press(view(), Qt::Key_Down);
        press(view(), Qt::Key_Down);
        EXPECT_THAT(takeHeard(), testing::Contains("selected Beta"));
        press(view(), Qt::Key_Right);
        EXPECT_TRUE(top(1).expanded);
        press(view(), Qt::Key_Down);
        press(view(), Qt::Key_Return);
        EXPECT_THAT(takeHeard(), ElementsAre("selected Beta one", "twice Beta one"));
        press(view(), Qt::Key_Home);
        press(view(), Qt::Key_G);
        EXPECT_THAT(takeHeard(), ElementsAre("selected Alpha", "selected Gamma"));
        QTest::keyClick(&view(), Qt::Key_A, Qt::ControlModifier);
        settle();
        EXPECT_EQ(tree.selected().size(), 5U);
    });
}

TEST_F(AList, BeginsWithItsFirstRowByKeyboard) {
    Tree& flat = *item(ref, 4).tree;
    for (const char* const name : {"One", "Two", "Three"}) {
        add(flat.top(), name);
    }
    look(ref, [&] {
        for (const auto& [list, id, first, second] :
             {std::tuple(&tree, 7, "Alpha", "Beta"), {&flat, 4, "One", "Two"}}) {
            shown(id).setFocus();
            for (const Qt::Key key : {Qt::Key_Home, Qt::Key_Up, Qt::Key_Down}) {
                dialogs.select(*list, {}, nullptr);
                settle();
                heard.clear();
                press(shown(id), key);
                EXPECT_THAT(takeHeard(), ElementsAre("selected " + std::string(first))) << key;
            }
            press(shown(id), Qt::Key_Down);
            EXPECT_THAT(takeHeard(), ElementsAre("selected " + std::string(second)));
        }
    });
}

TEST_F(AList, SelectsItsOnlyRowByAnyKeyThatMoves) {
    Tree& flat = *item(ref, 4).tree;
    add(flat.top(), "Font");
    look(ref, [&] {
        shown(4).setFocus();
        for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_Home, Qt::Key_End}) {
            EXPECT_THAT(flat.selected(), IsEmpty());
            press(shown(4), key);
            EXPECT_THAT(takeHeard(), ElementsAre("selected Font")) << key;
            dialogs.select(flat, {}, nullptr);
            settle();
            heard.clear();
        }
        QTest::keyClick(&shown(4), Qt::Key_Down, Qt::ControlModifier);
        settle();
        EXPECT_THAT(heard, IsEmpty()) << "it moves without selecting";
    });
}

TEST_F(AList, OpensARowByItsTriangleWithoutSelectingIt) {
    look(ref, [&] {
        click("Beta");
        heard.clear();
        const QRect row = areaOf("Beta");
        for (const bool expanded : {true, false}) {
            QTest::mouseClick(view().viewport(), Qt::LeftButton, {},
                              {row.left() + 8, row.center().y()});
            settle();
            EXPECT_EQ(top(1).expanded, expanded);
            EXPECT_EQ(areaOf("Beta one").isValid(), expanded);
            EXPECT_THAT(heard, IsEmpty());
        }
        QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, {8, areaOf("Alpha").center().y()});
        settle();
        EXPECT_FALSE(top(0).expanded);
        EXPECT_THAT(heard, ElementsAre("selected Alpha", "once Alpha"));
    });
}

TEST_F(AList, HasRowsAsHighAsThePluginSays) {
    top(1).expanded = true;
    look(ref, [&] {
        EXPECT_EQ(areaOf("Alpha").height(), 24);
        EXPECT_EQ(areaOf("Beta one").height(), 40);
        tree.top().rows[1]->children->entryHeight = 60;
        dialogs.changed(tree.item());
        settle();
        EXPECT_EQ(areaOf("Beta one").height(), 60);
    });
}

TEST_F(AList, KeepsSelectionAndExpansionWhenRowsComeAndGo) {
    top(1).expanded = true;
    look(ref, [&] {
        click("Gamma");
        click("Beta two", Qt::ControlModifier);
        dialogs.removeRow(tree.top(), 0);
        add(tree.top(), "Delta").selected = false;
        settle();
        EXPECT_FALSE(areaOf("Alpha").isValid());
        EXPECT_TRUE(areaOf("Beta one").isValid());
        EXPECT_EQ(view().selectionModel()->selectedRows().size(), 2);
        EXPECT_EQ(view().currentIndex().data().toString(), "Beta two, unknown");
        heard.clear();
        top(0).expanded = false; // as a plug-in does
        dialogs.changed(tree.item());
        settle();
        EXPECT_FALSE(areaOf("Beta one").isValid());
        EXPECT_THAT(heard, IsEmpty());
        while (tree.top().rows.size() > 1) {
            dialogs.removeRow(tree.top(), 0);
        }
        settle();
        EXPECT_EQ(view().selectionModel()->selectedRows().size(), 0);
        EXPECT_EQ(view().currentIndex().data().toString(), "Delta, unknown") << "keys go on there";
    });
}

TEST_F(AList, DoesWhatTheUserDidBeforeNewsTakeTheRowAway) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    events.descriptor = [&] { return ends[0]; };
    events.dispatch = [&]() -> std::size_t {
        char byte = 0;
        EXPECT_EQ(read(ends[0], &byte, 1), 1);
        dialogs.removeRow(tree.top(), 2);
        return 1;
    };
    look(ref, [&] {
        QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, areaOf("Gamma").center());
        EXPECT_EQ(write(ends[1], "x", 1), 1);
        settle();
        EXPECT_THAT(heard, ElementsAre("selected Gamma", "once Gamma"));
        EXPECT_EQ(tree.top().rows.size(), 2U);
    });
    events.descriptor = {};
    close(ends[0]);
    close(ends[1]);
}

TEST_F(AList, IsDrawnNewBeforeADialogWithinComes) {
    const ADMDialogRef inner = create("inner");
    static std::function<void()> press;
    press = [&] {
        while (!tree.top().rows.empty()) {
            dialogs.removeRow(tree.top(), 0);
        }
        add(tree.top(), "new");
        look(inner, [] {
            for (QWidget* const each : QApplication::topLevelWidgets()) {
                each->grab();
            }
        });
    };
    item(ref, 3).notify = [](ADMItemRef, ADMNotifierRef) { press(); };
    look(ref, [&] {
        click("Beta");
        QTest::mouseClick(&shown(3), Qt::LeftButton);
        settle();
        EXPECT_TRUE(areaOf("new").isValid());
    });
    press = {};
}

TEST_F(AList, ShowsWhatThePluginDraws) {
    look(ref, [&] {
        click("Gamma");
        const QImage image = view().viewport()->grab().toImage();
        const auto reddish = [&](const QRect& row) {
            int count = 0;
            for (int y = row.top(); y < row.bottom(); ++y) {
                for (int x = 200; x < 300; ++x) {
                    const QColor color = image.pixelColor(x, y);
                    count += color.red() > color.green() + 80 && color.red() > color.blue() + 80;
                }
            }
            return count;
        };
        EXPECT_GT(reddish(areaOf("Alpha")), 20);
        EXPECT_GT(reddish(areaOf("Beta")), 20);
        EXPECT_EQ(reddish(areaOf("Alpha").translated(0, 200)), 0);
        EXPECT_EQ(image.pixelColor(areaOf("Gamma").right() - 2, areaOf("Gamma").center().y()),
                  view().palette().color(QPalette::Highlight));
    });
}

TEST_F(AList, TellsScreenReadersItsRowsWordsAndStates) {
    look(ref, [&] {
        view().setAccessibleName(QStringLiteral("Missing fonts"));
        QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(&view());
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(list->text(QAccessible::Name), "Missing fonts");
        QAccessibleInterface* const row = list->tableInterface()->cellAt(1, 0);
        ASSERT_NE(row, nullptr);
        EXPECT_EQ(row->text(QAccessible::Name), "Beta, unknown");
        EXPECT_TRUE(row->state().expandable);
        EXPECT_FALSE(row->state().expanded);
        EXPECT_FALSE(row->state().selected);
        press(view(), Qt::Key_Home);
        press(view(), Qt::Key_Down);
        press(view(), Qt::Key_Right);
        const std::array<std::tuple<const char*, bool, bool>, 4> rows{{
            {"Alpha, unknown", false, false},
            {"Beta, unknown", true, true},
            {"Beta one, unknown", false, false},
            {"Beta two, unknown", false, false},
        }};
        for (int at = 0; at < 4; ++at) {
            const auto& [name, expanded, selected] = rows.at(static_cast<std::size_t>(at));
            QAccessibleInterface* const cell = list->tableInterface()->cellAt(at, 0);
            EXPECT_EQ(cell->text(QAccessible::Name), name);
            EXPECT_EQ(cell->state().expanded, expanded) << name;
            EXPECT_EQ(cell->state().selected, selected) << name;
        }
    });
}

TEST_F(AList, OfManyTextsIsFilteredAndNeverHidesWhatIsChosen) {
    Tree& flat = *item(ref, 4).tree;
    for (int i = 0; i < 40; ++i) {
        add(flat.top(), "Font " + std::to_string(i));
    }
    EXPECT_EQ(show(ref,
                   [&] {
                       auto& list = shown<QListView>(4);
                       auto* const filter = window().findChild<QLineEdit*>();
                       ASSERT_NE(filter, nullptr);
                       EXPECT_EQ(filter->placeholderText(), "Filtern"); // as plug-ins are told
                       list.setCurrentIndex(list.model()->index(5, 0));
                       settle();
                       filter->setFocus();
                       QTest::keyClicks(filter, QStringLiteral("NT 3"));
                       settle();
                       EXPECT_EQ(list.model()->rowCount(), 11);
                       EXPECT_EQ(flat.active()->text, "Font 3");
                       press(*filter, Qt::Key_Down);
                       EXPECT_EQ(flat.active()->text, "Font 30");
                       filter->clear();
                       settle();
                       EXPECT_EQ(list.currentIndex().row(), 30);
                       QTest::keyClicks(filter, QStringLiteral("nothing"));
                       settle();
                       EXPECT_EQ(flat.active(), nullptr);
                       filter->clear();
                       list.scrollToTop();
                       const QPoint first = list.visualRect(list.model()->index(0, 0)).center();
                       QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, first);
                       QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, first);
                   }),
              1);
    EXPECT_EQ(flat.active()->text, "Font 0");
}

TEST_F(AList, OfFewTextsHasNoFilter) {
    add(item(ref, 4).tree->top(), "Font");
    look(ref, [&] { EXPECT_EQ(window().findChild<QLineEdit*>(), nullptr); });
}

} // namespace
} // namespace host::test
