// SPDX-License-Identifier: MIT
// Layouts: items and their places, and files that are none.
#include "host/adm/layout.h"
#include "host/core/translation.h"
#include "tests/support/folder.h"
#include "tests/support/repeated.h"

#include <gmock/gmock.h>

namespace host {
namespace {

std::string item(const std::string& type, int id, const std::string& more = "") {
    return "<item><widget class=\"" + type + "\"><property name=\"itemID\" stdset=\"0\"><number>" +
           std::to_string(id) + "</number></property>" + more + "</widget></item>";
}

std::string dialog(const std::string& content) {
    return "<?xml version=\"1.0\"?>\n<ui version=\"4.0\">\n<class>D</class>\n"
           "<widget class=\"QDialog\" name=\"D\">\n<property name=\"geometry\"><rect><x>0</x>"
           "<y>0</y><width>318</width><height>218</height></rect></property>\n"
           "<property name=\"windowTitle\"><string>Fonts &amp; more</string></property>\n" +
           content + "\n</widget>\n</ui>\n";
}

class ALayout : public AFolder {
protected:
    Layout read(const std::string& content) const { return readLayout(file("1.ui", content)); }
    static std::vector<std::int32_t> edges(const ADMRect& rect) {
        return {rect.left, rect.top, rect.right, rect.bottom};
    }
};

TEST_F(ALayout, HasItsNumberedWidgetsWhereTheirBoxesPutThem) {
    const Layout layout = read(dialog(
        "<layout class=\"QVBoxLayout\">"
        "<item><layout class=\"QHBoxLayout\" stretch=\"2,1\">" +
        item("QLabel", 9, "<property name=\"text\"><string>Family</string></property>") +
        item("QLabel", 10) + "</layout></item>" + item("QTreeView", 7) +
        "<item><widget class=\"QWidget\"><layout class=\"QHBoxLayout\">"
        "<item><spacer name=\"s\"/></item>" +
        item("QPushButton", 2) + item("QPushButton", 1) + "</layout></widget></item></layout>"));
    EXPECT_EQ(layout.title, "Fonts & more");
    EXPECT_THAT(edges(layout.bounds), testing::ElementsAre(0, 0, 318, 218));
    struct Expected {
        std::int32_t id;
        ItemKind kind;
        std::vector<std::int32_t> edges;
    };
    const std::vector<Expected> expected{
        {9, ItemKind::StaticText, {9, 9, 178, 29}}, // 134 to share: two parts and one
        {10, ItemKind::StaticText, {184, 9, 309, 29}},
        {7, ItemKind::HierarchyList, {9, 35, 309, 175}},
        {2, ItemKind::PushButton, {103, 181, 203, 209}},
        {1, ItemKind::PushButton, {209, 181, 309, 209}},
    };
    ASSERT_EQ(layout.items.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(expected[i].id);
        EXPECT_EQ(layout.items[i].id, expected[i].id);
        EXPECT_EQ(layout.items[i].kind, expected[i].kind);
        EXPECT_EQ(edges(layout.items[i].bounds), expected[i].edges);
    }
    EXPECT_EQ(layout.items.front().text, "Family");
}

TEST_F(ALayout, HasTextsInTheUsersLanguageButForThoseThatPluginsReplace) {
    const auto label = [](int id, const std::string& attributes) {
        return item("QLabel", id,
                    "<property name=\"text\"><string" + attributes + ">Fonts</string></property>");
    };
    chooseLanguage("de_DE");
    const Layout layout =
        read(dialog("<layout>" + label(1, "") + label(2, " notr=\"true\"") + "</layout>"));
    chooseLanguage("en_US");
    EXPECT_EQ(layout.items[0].text, "Schriften");
    EXPECT_EQ(layout.items[1].text, "Fonts");
}

struct BadLayout {
    const char* name;
    std::string content;
    const char* problem; ///< behind the file's name
};

class ABadLayout : public ALayout, public testing::WithParamInterface<BadLayout> {};

TEST_P(ABadLayout, IsToldByFileAndLine) {
    EXPECT_THAT([&] { std::ignore = read(GetParam().content); },
                testing::ThrowsMessage<LayoutError>(
                    testing::HasSubstr("1.ui" + std::string(GetParam().problem))));
}

const std::vector<BadLayout> badLayouts{
    {"BrokenXml", "<ui>\n<widget", ":2: "},
    {"AnotherDocument", "<svg/>", ":1: this is no layout of a dialog"},
    {"NoWidget", "<ui/>", ":1: this is no layout of a dialog"},
    {"NoSize", "<ui>\n<widget class=\"QDialog\"/></ui>", ":2: the dialog has no width"},
    {"AnUnknownClass", dialog("<layout>" + item("QSlider", 3) + "</layout>"),
     ":7: a QSlider is no item"},
    {"ANumberTwice", dialog("<layout>" + item("QLabel", 3) + item("QLabel", 3) + "</layout>"),
     ":7: there is another item 3"},
    {"ANumberOfNothing", dialog("<layout>" + item("QLabel", 0) + "</layout>"),
     ":7: the number of an item is at least 1"},
    {"NoBottom",
     dialog(repeated("<layout class=\"QVBoxLayout\"><item>", 100) +
            repeated("</item></layout>", 100)),
     ":7: layouts are nested too deeply"},
};
INSTANTIATE_TEST_SUITE_P(Files, ABadLayout, testing::ValuesIn(badLayouts),
                         [](const auto& test) { return test.param.name; });

TEST_F(ALayout, ThatIsMissingIsToldByItsFile) {
    EXPECT_THAT([&] { std::ignore = readLayout(folder / "missing.ui"); },
                testing::ThrowsMessage<LayoutError>(testing::HasSubstr("missing.ui")));
}

} // namespace
} // namespace host
