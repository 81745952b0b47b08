// SPDX-License-Identifier: MIT
// Draw routines: what they draw is recorded as they drew it, and measured without a screen.
#include "dialogfixture.h"

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t red = 0xCC3333FF;

class ADrawer : public DialogFixture {
protected:
    ADrawer() {
        drawers = suite<ADMDrawerSuite>();
        ADMItemRef item = nullptr;
        ADMHierarchyListRef list = nullptr;
        suite<ADMDialogSuite>()->GetItem(ref, 7, &item);
        suite<ADMItemSuite>()->GetHierarchyList(item, &list);
        suite<ADMHierarchyListSuite>()->InsertEntry(list, 0, &entry);
        suite<ADMListEntrySuite4>()->SetText(entry, "its text");
    }
    /// Draws the row by `routine`.
    const RecordingCanvas& drawn(ADMListEntryDrawProc routine) {
        canvas = {};
        dialogs.find(ref)->item(7)->tree->draw = routine;
        dialogs.draw(*dialogs.find(entry), canvas, 100, 19);
        return canvas;
    }

    static inline const ADMDrawerSuite* drawers = nullptr;
    ADMDialogRef ref = create();
    ADMListEntryRef entry = nullptr;
    RecordingCanvas canvas;
};

TEST_F(ADrawer, DrawsInTheColourOfTheMoment) {
    const auto text = [](const Color& color, const char* words, std::int32_t left) {
        return Drawn{Drawn::Kind::Text, color, {left, 2, left, 2}, words, 0};
    };
    EXPECT_THAT(
        drawn([](ADMListEntryRef, ADMDrawerRef drawer) {
            ADMRect bounds{};
            drawers->GetBoundsRect(drawer, &bounds);
            drawers->SetADMColor(drawer, kADMHighlightColor);
            drawers->FillRect(drawer, &bounds);
            drawers->SetADMColor(drawer, kADMTextColor);
            const ADMPoint left{3, 2};
            drawers->DrawText(drawer, "Grün", &left);
            drawers->SetRGBColor(drawer, red);
            const ADMPoint right{50, 2};
            // A pair of units, and the first half of one.
            drawers->DrawTextUTF16(drawer, u"a\U0001F600\xD83D", 4, &right);
            drawers->DrawLine(drawer, &left, &right);
            drawers->DrawResPicture(drawer, kADMExpandedPicture, &left);
        }).drawn(),
        ElementsAre(
            Drawn{Drawn::Kind::Fill, kADMHighlightColor, {0, 0, 100, 19}, {}, 0},
            text(kADMTextColor, "Grün", 3), text(red, "a\U0001F600\uFFFD", 50),
            Drawn{Drawn::Kind::Line, red, {3, 2, 50, 2}, {}, 0},
            Drawn{Drawn::Kind::Picture, kADMTextColor, {3, 2, 3, 2}, {}, kADMExpandedPicture}));
    EXPECT_EQ(canvas.words(), "Grün, a\U0001F600\uFFFD");
}

TEST_F(ADrawer, RefusesWhatItCannotDraw) {
    EXPECT_THAT(drawn([](ADMListEntryRef, ADMDrawerRef drawer) {
                    const ADMPoint point{};
                    EXPECT_EQ(drawers->SetADMColor(drawer, static_cast<ADMColor>(3)),
                              kBadParameterErr);
                    EXPECT_EQ(drawers->DrawResPicture(drawer, 1, &point), kBadParameterErr);
                    EXPECT_EQ(drawers->DrawTextUTF16(drawer, u"", -1, &point), kBadParameterErr);
                    EXPECT_EQ(drawers->DrawText(drawer, nullptr, &point), kBadParameterErr);
                    EXPECT_EQ(drawers->DrawText(nullptr, "text", &point), kBadParameterErr);
                    std::int32_t width = 0;
                    EXPECT_EQ(drawers->GetTextWidth(drawer, "text", -1, &width), kBadParameterErr);
                }).drawn(),
                IsEmpty());
}

TEST_F(ADrawer, MeasuresOutsideOfADrawingToo) {
    ADMDrawerRef drawer = nullptr;
    EXPECT_EQ(suite<ADMListEntrySuite4>()->GetMeasuringDrawer(entry, &drawer), kNoErr);
    std::int32_t width = 0;
    EXPECT_EQ(drawers->GetTextWidth(drawer, "Grün!", 5, &width), kNoErr);
    EXPECT_EQ(width, 4 * 7) << "four characters in five bytes";
    std::int32_t height = 0;
    EXPECT_EQ(drawers->GetLineHeight(drawer, &height), kNoErr);
    EXPECT_EQ(height, 16);
    const ADMPoint point{};
    EXPECT_EQ(drawers->DrawText(drawer, "nowhere", &point), kNoErr);
    EXPECT_EQ(drawers->DrawResPicture(drawer, kADMExpandedPicture, &point), kNoErr);
}

TEST_F(ADrawer, LivesAsLongAsTheRoutineWhichARowNeedNotHave) {
    EXPECT_EQ(drawn(nullptr).words(), "its text");
    static ADMDrawerRef kept;
    drawn([](ADMListEntryRef, ADMDrawerRef drawer) { kept = drawer; });
    const ADMPoint point{};
    EXPECT_EQ(drawers->DrawText(kept, "late", &point), kBadParameterErr);
}

TEST(ARecord, SaysItsTextsLineByLine) {
    RecordingCanvas canvas;
    for (const auto& [text, h, v] : {std::tuple{"second", 0, 20}, std::tuple{"column two", 80, 2},
                                     std::tuple{"column one", 3, 2}, std::tuple{"", 1, 2}}) {
        canvas.text(kADMTextColor, text, {h, v});
    }
    canvas.fill(red, {0, 0, 9, 9});
    EXPECT_EQ(canvas.words(), "column one, column two second");
}

} // namespace
} // namespace host::test
