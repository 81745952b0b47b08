// SPDX-License-Identifier: MIT
// Drawings whose fonts are replaced, over a list of fonts that the test makes up.
#include "host/replace/replacing.h"

#include "host/documents/svg/svgreader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

InstalledFace font(const char* family, const char* style, int weight = 400,
                   Slant slant = Slant::Upright) {
    InstalledFace face;
    face.family = family;
    face.style = style;
    face.postScriptName = conventionalPostScriptName(family, style);
    face.fullName = std::string(family) + " " + style;
    face.file = "/" + face.postScriptName;
    face.weight = weight;
    face.slant = slant;
    return face;
}

std::vector<InstalledFace> installed() {
    std::vector<InstalledFace> fonts{
        font("New", "Regular"), font("New", "Bold", 700), font("Rob", "Black", 900),
        font("Rob", "Black Italic", 900, Slant::Italic), font("Odd Face", "Wide Awake")};
    fonts[0].fullName = "New"; // as plain faces have it
    fonts[2].aliases = {{"Rob Black", "Regular"}};
    fonts[3].aliases = {{"Rob Black", "Italic"}};
    return fonts;
}

class AReplacement : public testing::Test {
protected:
    Document drawing(const std::string& texts) {
        return readSvg("<svg xmlns='http://www.w3.org/2000/svg'>" + texts + "</svg>", "d.svg");
    }
    /// What the rules make of one text in each of some faces.
    std::vector<std::string> replaced(Document& document, const std::vector<const char*>& rules) {
        ReplacementTable table;
        for (const char* const rule : rules) {
            table.add(rule, "t:1");
        }
        std::vector<std::string> result;
        for (const ReplacedFace& face : replaceFaces(document, table, catalogue_)) {
            result.push_back(face.from + ">" + face.to + " " + std::to_string(face.runs));
        }
        return result;
    }
    Catalogue catalogue_{installed};
};

TEST_F(AReplacement, TakesTheFaceOfAFamilyOrTheOneThatIsNamed) {
    const std::string old = "<text font-family='Old'>a</text>";
    const std::string bold = "<text font-family='Old' font-weight='bold'>b</text>";
    const std::string italic = "<text font-family='Old' font-style='italic'>i</text>";
    const struct {
        std::string texts;
        std::vector<const char*> rules;
        std::vector<std::string> result;
    } cases[] = {
        {old + bold + old, {"Old=New"}, {"Old Regular>New Regular 2", "Old Bold>New Bold 1"}},
        {old + bold,
         {"Old Bold=New", "Old=New Bold"},
         {"Old Regular>New Bold 1", "Old Bold>New Bold 1"}},
        {old + bold + italic,
         {"Old=Rob Black"},
         {"Old Regular>Rob Black 1", "Old Bold>Rob Black 1", "Old Italic>Rob Black Italic 1"}},
        {old, {"Old=rob-black"}, {}},
        {old, {"Old=Rob-Black"}, {"Old Regular>Rob Black 1"}},
        {old, {"Old=Odd Face Wide Awake"}, {"Old Regular>Odd Face Wide Awake 1"}},
        {old + bold, {"Other=New"}, {}},
        {"<text font-family='New'>a</text>", {"*=New"}, {}},
        {"<text font-family='sans-serif'>a</text>",
         {"sans-serif=New"},
         {"sans-serif Regular>New Regular 1"}},
        {"<text font-family='Old' visibility='hidden'>a</text>",
         {"Old=New"},
         {"Old Regular>New Regular 1"}},
    };
    for (const auto& [texts, rules, result] : cases) {
        Document document = drawing(texts);
        if (std::string(rules[0]).ends_with("rob-black")) { // case counts in PostScript names
            EXPECT_THROW(replaced(document, rules), DocumentError);
            continue;
        }
        EXPECT_EQ(replaced(document, rules), result) << rules[0];
        EXPECT_EQ(document.modified(), !result.empty());
    }
}

TEST_F(AReplacement, LeavesADrawingAloneThatCannotHaveTheFace) {
    const std::string old = "<text font-family='Fine'>f</text><text font-family='Old' "
                            "font-style='italic'>a</text>";
    const struct {
        std::string texts;
        const char* rule;
        const char* reason;
    } cases[] = {
        {old, "Old=Nothing", "d.svg: the desktop has no font Nothing (t:1)"},
        {old, "Old=New", "d.svg: the desktop has New, but not in Italic for Old Italic (t:1)"},
        {"<text font-family='Rob-Black'>a</text>", "Rob-Black=New",
         "but not in Black for Rob-Black"},
        {"<style>@font-face { font-family: new; src: url(data:,x) }</style>"
         "<text font-family='Old'>a</text>",
         "Old=New", "brings a family New along"},
    };
    for (const auto& [texts, rule, reason] : cases) {
        Document document = drawing(texts);
        try {
            replaced(document, {"Fine=Odd Face Wide Awake", rule});
            ADD_FAILURE() << reason;
        } catch (const DocumentError& problem) {
            EXPECT_THAT(problem.what(), HasSubstr(reason));
        }
        EXPECT_FALSE(document.modified());
    }
}

TEST_F(AReplacement, IsOneStep) {
    Document document = drawing("<text font-family='A'>a</text><text font-family='B'>b</text>");
    EXPECT_EQ(replaced(document, {"A=New"}).size(), 1U);
    EXPECT_EQ(replaced(document, {"B=New"}).size(), 1U);
    EXPECT_TRUE(document.undo());
    EXPECT_EQ(document.faceOf(document.run(0)).family, "New");
    EXPECT_EQ(document.faceOf(document.run(1)).family, "B");
}

TEST_F(AReplacement, LeavesFacesThatTheDrawingBringsAlong) {
    Document document = drawing("<style>@font-face { font-family: Own; src: url(data:,x) }</style>"
                                "<text font-family='Own'>a</text><text font-family='Old'>a</text>");
    EXPECT_THAT(replaced(document, {"*=New"}), ElementsAre("Old Regular>New Regular 1"));
}

} // namespace
} // namespace host
