// SPDX-License-Identifier: MIT
// The words that show a replacement.
#include "applicationfixture.h"

#include "host/suites/documentsamples.h"

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ASample : public ApplicationFixture {
protected:
    std::vector<std::string> texts(const std::vector<RowTexts>& rows = {}) const {
        std::vector<std::string> result;
        for (const Sample& sample : source.samples(rows)) {
            EXPECT_FALSE(sample.standIn.file.empty());
            result.push_back(sample.text);
        }
        return result;
    }
    static MadeRun run(const std::string& family, const std::string& style,
                       const std::string& text) {
        return {named(family, style), true, text};
    }

    FontSource source = fontSourceOf(application);
};

TEST_F(ASample, IsInTheLackingFacesThatRowsName) {
    EXPECT_THAT(texts(), IsEmpty()) << "there is no document";
    Face embedded = named("Brought", "Regular");
    embedded.origin = FaceOrigin::Embedded;
    open(makeDocument({{{run("Quay", "Regular", "PIER 7"), run("Alpha", "Regular", "there"),
                         run("Quay", "Bold", "bold"), run("Old", "Regular", "old")},
                        {{embedded, true, "brought"},
                         {named("Quay", "Regular"), false, "unseen"},
                         run("Quay", "Regular", "PIER 7"),
                         run("Quay", "Bold", "PIER 7")}}}));
    const struct {
        std::vector<RowTexts> rows;
        std::vector<std::string> expected;
    } cases[] = {
        {{{"Quay", "Regular", "Not found"}}, {"PIER 7"}},
        {{{"Quay", "Bold"}, {"Old", "Regular"}}, {"bold", "old", "PIER 7"}},
        {{{"Qua\u2026", "Bo\u2026"}}, {"bold", "PIER 7"}},
        {{{"Quay"}}, {"PIER 7", "bold", "PIER 7"}},
        {{{"Alpha", "Regular"}}, {"PIER 7", "bold", "old", "PIER 7"}},
        {{{"\u2026", ""}}, {"PIER 7", "bold", "old", "PIER 7"}},
    };
    for (const auto& [rows, expected] : cases) {
        EXPECT_EQ(texts(rows), expected) << rows.front().front();
    }
    EXPECT_EQ(source.samples({}).at(1).lacking, "Quay Bold");
}

TEST_F(ASample, IsALineOfModerateLength) {
    std::vector<MadeRun> runs{
        run("Quay", "Regular", "  two\n\t lines \n"),
        run("Quay", "Regular", std::string(60, 'a') + " " + std::string(60, 'b')),
        run("Quay", "Regular", std::string(79, 'a') + "\u6e2f\u6e2f\u6e2f")};
    open(makeDocument({{runs}}));
    EXPECT_THAT(texts(),
                ElementsAre("two lines", std::string(60, 'a'), std::string(79, 'a') + "\u6e2f"));
    for (int i = 0; i < 40; ++i) {
        runs.push_back(run("Quay", "Regular", std::to_string(i)));
    }
    open(makeDocument({{runs}}));
    EXPECT_EQ(texts().size(), 12U);
}

TEST_F(ASample, IsShownInTheFaceThatThePluginWillNameToTheHost) {
    const std::optional<FaceFile> face = source.face("The Alpha Bold");
    ASSERT_TRUE(face);
    EXPECT_EQ(face->file, "/fonts/Alpha-Bold");
    EXPECT_FALSE(source.face("Quay"));
    EXPECT_EQ(source.someCharacters(*face), "");
}

} // namespace
} // namespace host::test
