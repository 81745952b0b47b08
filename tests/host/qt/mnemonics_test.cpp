// SPDX-License-Identifier: MIT
// The letters of buttons: in the plug-in's texts of both languages, and pressed.
#include "host/core/stringlists.h"
#include "host/qt/mnemonics.h"
#include "windowfixture.h"

#include <QAccessible>
#include <QListView>
#include <QPushButton>

#include <set>

namespace host::test {
namespace {

class MnemonicsOfList : public testing::TestWithParam<std::int32_t> {
protected:
    QString text(std::int32_t index) {
        return QString::fromStdString(*lists_.find(GetParam(), index));
    }

private:
    StringLists lists_{BUNDLE_TEXTS, [](std::string_view problem) { ADD_FAILURE() << problem; }};
};

TEST_P(MnemonicsOfList, AreOneForEachButtonAndStay) {
    const std::vector<QString> texts{text(5), text(6), text(8), text(7), text(10), text(9)};
    const std::vector<QChar> letters = chooseMnemonics(texts, {});
    EXPECT_EQ(std::set<QChar>(letters.begin(), letters.end()).size(), texts.size());
    EXPECT_THAT(letters, testing::Not(testing::Contains(QChar())));

    std::vector<QString> otherTexts = texts;
    otherTexts[2] = text(17);
    EXPECT_EQ(chooseMnemonics(otherTexts, letters), letters);
}

INSTANTIATE_TEST_SUITE_P(Languages, MnemonicsOfList, testing::Values(17000, 18000),
                         testing::PrintToStringParamName());

struct MarkedTexts {
    const char* name;
    std::vector<QString> texts;
    std::vector<QChar> before;
    std::vector<QString> labels;
};

class Mnemonics : public testing::TestWithParam<MarkedTexts> {};

TEST_P(Mnemonics, AreMarked) {
    const std::vector<QChar> letters = chooseMnemonics(GetParam().texts, GetParam().before);
    for (std::size_t i = 0; i < letters.size(); ++i) {
        EXPECT_EQ(labelOf(GetParam().texts[i], letters[i]).toStdString(),
                  GetParam().labels[i].toStdString());
    }
}

const std::vector<MarkedTexts> markedTexts{
    {"WordsFirst", {"Ab", "A cab", "Cb"}, {}, {"&Ab", "A &cab", "C&b"}},
    {"NoneLeft", {"a", "A", "1 \u5B57"}, {}, {"&a", "A", "1 \u5B57"}},
    {"AnAmpersand", {"&", "Smith & Sons", "Sons & m"}, {}, {"&&", "&Smith && Sons", "Sons && &m"}},
    {"KeptOnesFirst", {"Show", "Sell"}, {{}, 'S'}, {"S&how", "&Sell"}},
    {"LostOnes", {"Buy", "Stop"}, {'S', 'B'}, {"&Buy", "&Stop"}},
    {"Umlauts", {"\u00C4\u00F6", "\u00E4\u00F6"}, {}, {"&\u00C4\u00F6", "\u00E4&\u00F6"}},
};
INSTANTIATE_TEST_SUITE_P(Texts, Mnemonics, testing::ValuesIn(markedTexts),
                         [](const auto& test) { return test.param.name; });

using AMnemonic = WindowFixture;

TEST_F(AMnemonic, PressesItsButtonWithAltAloneAndIsNoPartOfItsName) {
    const ADMDialogRef ref = create();
    item(ref, 3).text = "Smith & Sons";
    dialogs.insertRow(item(ref, 4).tree->top(), 0).text = "s";
    static std::vector<std::int32_t> pressed;
    pressed.clear();
    item(ref, 3).notify = [](ADMItemRef, ADMNotifierRef) { pressed.push_back(3); };
    look(ref, [&] {
        QListView& list = shown<QListView>(4);
        list.setFocus();
        QTest::keyClick(&list, Qt::Key_S);
        settle();
        EXPECT_TRUE(pressed.empty());
        QTest::keyClick(&list, Qt::Key_S, Qt::AltModifier);
        EXPECT_TRUE(QTest::qWaitFor([] { return !pressed.empty(); })); // it goes down, then up
        EXPECT_EQ(QAccessible::queryAccessibleInterface(&shown(3))->text(QAccessible::Name),
                  "Smith & Sons");
    });
}

} // namespace
} // namespace host::test
