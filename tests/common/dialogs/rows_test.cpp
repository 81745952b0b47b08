// SPDX-License-Identifier: MIT
// Which rows there are, and which buttons can be used by what is selected.
#include "dialogfixture.h"

using testing::ElementsAre;

namespace {

using TheRows = ADialog;

TEST_F(TheRows, AreTheMissingFontsWithTheirCandidates) {
    answer({{"Aa", 1, true}, {"Bb"}, {"Cc", 2, false, {"21", "22"}}});
    run([&](host::Dialog& dialog) {
        EXPECT_THAT(families(dialog), ElementsAre("Bb", "Cc"));
        const auto& font = *static_cast<UserDataContainer*>(row(dialog, "Bb").userData);
        EXPECT_EQ(font.kind, UserDataContainer::fontRow);
        EXPECT_EQ(font.text, "7");
        EXPECT_EQ(row(dialog, "Bb").text, "");
        EXPECT_EQ(row(dialog, "Bb").children, nullptr);
        EXPECT_EQ(row(dialog, "Cc").children->rows.size(), 2U);
        const host::Row& candidate = row(dialog, "Cc 1");
        EXPECT_EQ(static_cast<UserDataContainer*>(candidate.userData)->kind,
                  UserDataContainer::candidateRow);
        EXPECT_EQ(static_cast<UserDataContainer*>(candidate.userData)->text, "22");
        EXPECT_EQ(candidate.text, "In 22");
        EXPECT_EQ(&infoOf(candidate), &infoOf(row(dialog, "Cc")));
    });
}

TEST_F(TheRows, HaveTheirSizes) {
    const std::string longName(104, 'x'); // fits into 742, a line of its own below "In"
    answer({{"Aa", 1, false, {"21", longName}}, {"Bb", 1, false, {longName, "21"}}});
    run([&](host::Dialog& dialog) {
        const host::Item& list = item(dialog, fontListItem);
        const std::int32_t width = list.bounds.right - list.bounds.left;
        EXPECT_EQ(list.tree->top().entryWidth, width);
        EXPECT_EQ(list.tree->top().entryHeight, 19);
        const host::RowList& candidates = *row(dialog, "Aa").children;
        EXPECT_EQ(candidates.indentation, -50);
        EXPECT_EQ(candidates.entryWidth, width);
        EXPECT_EQ(candidates.entryHeight, 2 * 16 + 3);
        EXPECT_EQ(row(dialog, "Bb").children->entryHeight, 2 * 16 + 3) << "the highest one's";
    });
}

TEST_F(TheRows, StayOpenOrClosed) {
    answer(
        {{"Aa", 1, false, {"21"}}, {"Bb", 2, false, {"21", "22"}}, {"Cc", 2, false, {"21", "22"}}});
    GlyphoraDialog glyphora;
    run(glyphora, [&](host::Dialog& dialog) {
        EXPECT_FALSE(row(dialog, "Aa").expanded);
        dialogs.setExpanded(row(dialog, "Aa"), true);
        dialogs.setExpanded(row(dialog, "Bb"), true);
        answer({{"Aa", 1, false, {"21"}}, {"Bb", 2, true}, {"Cc", 1, false, {"21"}}});
        glyphora.OnGLYNotify({});
        EXPECT_THAT(families(dialog), ElementsAre("Aa", "Cc"));
        EXPECT_TRUE(row(dialog, "Aa").expanded);
        EXPECT_FALSE(row(dialog, "Cc").expanded);
        answer({{"Bb", 2, false, {"21", "22"}}});
        glyphora.OnGLYNotify({});
        EXPECT_TRUE(row(dialog, "Aa").expanded);
        EXPECT_FALSE(row(dialog, "Bb").expanded) << "it was not there meanwhile";
    });
}

TEST_F(TheRows, AreMadeAnewOnlyAfterTheFirstQuestion) {
    const scripted::Answer first = platform.answers[0];
    answer({{"Aa", 1, true}});
    platform.answers.push_front(first);
    const host::CallSite& invalidate = *host::CallSite::find("ADM Item Suite", "Invalidate");
    const std::uint64_t before = invalidate.count();
    run([&](host::Dialog& dialog) {
        EXPECT_EQ(invalidate.count() - before, 2U) << "when it is laid out, and with its rows";
        EXPECT_TRUE(fonts[0]->font.isActive) << "the dialog's own question has been answered";
        EXPECT_EQ(families(dialog).size(), 3U);
        EXPECT_THAT(sent(), ElementsAre(testing::AllOf(testing::HasSubstr("fontRequest"),
                                                       testing::HasSubstr("Present-Regular"))));
    });
}

TEST_F(TheRows, AreManyInLittleTime) {
    fonts.clear();
    for (int i = 0; i < 2000; ++i) {
        fonts.emplace_back(new GLY::GLYFontInfo);
        fonts.back()->font.fontInfos = {{"1", "In one"}, {"2", "In two"}, {"3", "In three"}};
    }
    GlyphoraDialog glyphora;
    run(glyphora, [&](host::Dialog& dialog) {
        const auto calls = [] {
            std::uint64_t sum = 0;
            for (const host::CallSite::Count& each : host::CallSite::counts()) {
                sum += each.count;
            }
            return sum;
        };
        const std::uint64_t before = calls();
        glyphora.synchronizeDialog();
        EXPECT_EQ(rows(dialog).size(), 2000U);
        EXPECT_LT(calls() - before, 2000U * 3 * 20);
    });
}

using TheButtons = ADialog;

TEST_F(TheButtons, HaveTheTextsOfTheList) {
    run([&](host::Dialog& dialog) {
        const std::pair<int, const char*> texts[] = {
            {1, "OK"},       {2, "Cancel"}, {3, "Show"},   {4, "Buy"},    {5, "Activate"},
            {6, "Replace…"}, {8, "Status"}, {9, "Family"}, {10, "Style"}, {11, "Type"}};
        for (const auto& [id, text] : texts) {
            EXPECT_EQ(item(dialog, id).text, text);
        }
        select(dialog, {"Aa"});
        EXPECT_EQ(item(dialog, activateButton).text, "Activate Selected");
        select(dialog, {});
        EXPECT_EQ(item(dialog, activateButton).text, "Activate");
    });
}

TEST_F(TheButtons, AreEnabledByTheSelection) {
    // Aa and Cc are known to the font manager, Bb is not.
    answer({{"Aa", 1}, {"Bb", 0, false, {"20"}}, {"Cc", 2, false, {"21", "22"}}});
    using Names = std::vector<std::string>;
    const std::tuple<Names, const char*> cases[] = {
        {Names(), "activate"},
        {{"Aa"}, "show buy activate replace"},
        {{"Bb"}, "buy replace"},
        {{"Cc 0"}, "show buy activate"},
        {{"Bb 0"}, "buy"},
        {{"Aa", "Cc"}, "show activate replace"},
        {{"Aa", "Bb"}, "show activate replace"},
        {{"Bb", "Bb 0"}, ""},
        {{"Bb", "Cc 0", "Cc 1"}, "show activate"},
        {Names(), "activate"},
    };
    run([&](host::Dialog& dialog) {
        const auto enabled = [&] {
            std::string names;
            const std::pair<int, const char*> buttons[] = {{showButton, "show"},
                                                           {buyButton, "buy"},
                                                           {activateButton, "activate"},
                                                           {replaceButton, "replace"}};
            for (const auto& [id, name] : buttons) {
                if (item(dialog, id).enabled) {
                    names += (names.empty() ? "" : " ") + std::string(name);
                }
            }
            return names;
        };
        EXPECT_EQ(enabled(), "activate");
        for (const auto& [names, expected] : cases) {
            SCOPED_TRACE(testing::PrintToString(names));
            select(dialog, names);
            EXPECT_EQ(enabled(), expected);
        }
    });
}

} // namespace
