// SPDX-License-Identifier: MIT
// What the rows look like.
#include "dialogfixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using host::Drawn;

class TheLook : public ADialog {
protected:
    std::vector<Drawn> drawn(host::Row& row, std::int32_t width = 740, std::int32_t height = 19) {
        host::RecordingCanvas canvas;
        dialogs.draw(row, canvas, width, height);
        return canvas.drawn();
    }
    static std::vector<std::string> textsOf(const std::vector<Drawn>& drawn) {
        std::vector<std::string> texts;
        for (const Drawn& each : drawn) {
            if (each.kind == Drawn::Kind::Text && !each.text.empty()) {
                texts.push_back(each.text);
            }
        }
        return texts;
    }
};

TEST_F(TheLook, TellsTheStatusInWordsAndColours) {
    struct Case {
        int installed;
        std::uint32_t count;
        int replaced;
        const char* text;
        std::uint32_t color;
    };
    const Case cases[] = {
        {0, 0, 0, "Not found", 0xcc3333ff},        {1, 0, 0, "In library", 0xcc3333ff},
        {0, 1, 0, "Not found", 0xcc3333ff},        {1, 1, 0, "In library", 0x339966ff},
        {1, 2, 0, "Several matches", 0xe58f1cff},  {0, 3, 0, "Several matches", 0xe58f1cff},
        {1, 1, 1, "Will be replaced", 0x00ff00ff}, {0, 2, 1, "Will be replaced", 0x00ff00ff},
    };
    run([&](host::Dialog& dialog) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.text) + std::to_string(c.count));
            GLY::GLYFontInfo& info = infoOf(row(dialog, "Aa"));
            info.installed = c.installed;
            info.font.count = c.count;
            info.replaced = c.replaced;
            const std::vector<Drawn> all = drawn(row(dialog, "Aa"));
            ASSERT_FALSE(all.empty());
            EXPECT_EQ(all.back().text, c.text);
            EXPECT_EQ(all.back().color, host::Color(c.color));
        }
    });
}

TEST_F(TheLook, HasColumnsBelowTheirHeadings) {
    run([&](host::Dialog& dialog) {
        const std::int32_t list = item(dialog, fontListItem).bounds.left;
        host::Row& font = row(dialog, "Bb");
        GLY::GLYFontInfo& info = infoOf(font);
        info.font.familyName = "Bb日本\U0001F600";
        const std::vector<Drawn> all = drawn(font);
        EXPECT_THAT(textsOf(all),
                    ElementsAre("Bb日本\U0001F600", "Regular", "OpenType TrueType", "Not found"));
        const std::int32_t lefts[] = {20, item(dialog, styleHeading).bounds.left - list,
                                      item(dialog, technologyHeading).bounds.left - list,
                                      item(dialog, statusHeading).bounds.left - list};
        std::size_t column = 0;
        for (const Drawn& each : all) {
            if (each.kind == Drawn::Kind::Text && !each.text.empty()) {
                EXPECT_EQ(each.area.left, lefts[column++]);
                EXPECT_EQ(each.area.top, 1) << "in the middle of 19, 16 high";
            }
        }
        info.font.familyName = std::string(100, 'x');
        const std::string cut = textsOf(drawn(font))[0];
        EXPECT_TRUE(cut.ends_with("x…"));
        EXPECT_LE(20 + dialogs.metrics().width(cut), lefts[1] - 5);
        EXPECT_GT(20 + dialogs.metrics().width(cut) + 7, lefts[1] - 5);
        const ADMRect& bounds = item(dialog, fontListItem).bounds;
        item(dialog, statusHeading).bounds.left = bounds.right - 8 * 7;
        EXPECT_EQ(textsOf(drawn(font)).back(), "Not fou…") << "the last column ends with the list";
    });
}

TEST_F(TheLook, ShowsWhetherCandidatesAreBelow) {
    run([&](host::Dialog& dialog) {
        const auto pictures = [&](host::Row& row) {
            std::vector<std::int32_t> numbers;
            for (const Drawn& each : drawn(row)) {
                if (each.kind == Drawn::Kind::Picture) {
                    numbers.push_back(each.pictureID);
                }
            }
            return numbers;
        };
        EXPECT_THAT(pictures(row(dialog, "Bb")), IsEmpty());
        EXPECT_THAT(pictures(row(dialog, "Cc")), ElementsAre(-16097));
        dialogs.setExpanded(row(dialog, "Cc"), true);
        EXPECT_THAT(pictures(row(dialog, "Cc")), ElementsAre(-16096));
        EXPECT_THAT(pictures(row(dialog, "Cc 0")), IsEmpty());
    });
}

TEST_F(TheLook, WrapsTheTextsOfCandidates) {
    run([&](host::Dialog& dialog) {
        host::Row& candidate = row(dialog, "Cc 0");
        candidate.text = std::string(97, 'a') + " b"; // seven pixels each: wider than 690
        const std::vector<Drawn> all = drawn(candidate, 740, 35);
        ASSERT_EQ(all.size(), 2U);
        EXPECT_EQ(all[0].text, std::string(97, 'a'));
        EXPECT_EQ(all[1].text, "b");
        EXPECT_EQ(all[0].area.left, 0);
        EXPECT_EQ(all[1].area.top - all[0].area.top, 16);
        candidate.text = std::string(1021, 'c') + "日";
        EXPECT_EQ(textsOf(drawn(candidate)).back().find_first_not_of('c'), std::string::npos)
            << "a character that does not fit into the buffer goes as a whole";
    });
}

TEST_F(TheLook, MarksWhatIsSelected) {
    run([&](host::Dialog& dialog) {
        EXPECT_NE(drawn(row(dialog, "Aa"))[0].kind, Drawn::Kind::Fill);
        select(dialog, {"Aa"});
        const std::vector<Drawn> all = drawn(row(dialog, "Aa"), 500, 20);
        ASSERT_EQ(all[0].kind, Drawn::Kind::Fill);
        EXPECT_EQ(all[0].color, host::Color(kADMHighlightColor));
        EXPECT_EQ(all[0].area.right, 500);
        EXPECT_EQ(all[0].area.bottom, 20);
        EXPECT_EQ(all[1].color, host::Color(kADMTextColor));
    });
}

TEST_F(TheLook, LeavesTheDrawerItsLastColour) {
    static ADMListEntryDrawProc routine = nullptr;
    static host::Dialogs* all = nullptr;
    static host::Color color = kADMTextColor;
    all = &dialogs;
    run([&](host::Dialog& dialog) {
        host::Tree& tree = *item(dialog, fontListItem).tree;
        routine = std::exchange(tree.draw, [](ADMListEntryRef entry, ADMDrawerRef drawer) {
            routine(entry, drawer);
            color = all->find(drawer)->color;
        });
        drawn(row(dialog, "Cc"));
        EXPECT_EQ(color, host::Color(0xff777777));
    });
}

} // namespace
