// SPDX-License-Identifier: MIT
// Replaced faces in the saved file: what changes, and that nothing else does.
#include "drawings.h"
#include "faces/stylewords.h"
#include "host/documents/svg/faceedits.h"
#include "host/documents/svg/svgdrawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

namespace host::test {
namespace {

Face newFace(const char* family = "New Sans", int weight = 400, Slant slant = Slant::Upright) {
    Face face;
    face.family = family;
    face.weight = weight;
    face.slant = slant;
    face.style = faces::styleText(face.look());
    return face;
}

/// Replaces all runs of a family, or of a family and style.
void replaceAll(Document& document, std::string_view old, const Face& face) {
    for (RunId id = 0; id < document.runs().size(); ++id) {
        const Face& current = document.faceOf(document.run(id));
        if (current.family == old || current.family + "/" + current.style == old) {
            document.replaceFace(id, face);
        }
    }
}

struct Case {
    const char* about;
    const char* body;
    const char* replaced; ///< "family" or "family/style"
    const char* result;
};
void PrintTo(const Case& test, std::ostream* stream) {
    *stream << test.about;
}

// The new face is "New Sans", regular. It is quoted where the old one was.
const Case cases[] = {
    {"Attribute", "<text font-family='Old'>a</text>", "Old",
     "<text font-family='New Sans'>a</text>"},
    {"AttributeWithFallbacks", "<g font-family=\"'Old', Other , serif\"><text>a</text></g>", "Old",
     "<g font-family=\"'New Sans', Other , serif\"><text>a</text></g>"},
    {"AttributeWithEntities", "<text font-family='A &amp; B,&quot;C&quot;'>a</text>", "A & B",
     "<text font-family='New Sans,&quot;C&quot;'>a</text>"},
    {"InlineStyle", "<text style=\"fill:red; font-family : 'Old', serif ;x:y\">a</text>", "Old",
     "<text style=\"fill:red; font-family : 'New Sans', serif ;x:y\">a</text>"},
    {"InlineStyleInEntities", "<text style='font-family:&apos;Old&apos;;a:b'>a</text>", "Old",
     "<text style='font-family:\"New Sans\";a:b'>a</text>"},
    {"LastOfSeveral", "<text style='font-family:X;font-family:Old'>a</text>", "Old",
     "<text style='font-family:X;font-family:New Sans'>a</text>"},
    {"ImportantShorthand", "<text style='font:bold 1px Old!important'>a</text>", "Old",
     "<text style='font:bold 1px New Sans!important;font-weight:normal !important'>a</text>"},
    {"ImportantDeclaration", "<text style='font-family:Old!important;font-family:X'>a</text>",
     "Old", "<text style='font-family:New Sans!important;font-family:X'>a</text>"},
    {"EntitiesAtTheEndOfAStyle",
     "<g font-weight='bold'><text style=\"font-family:&quot;Old&quot;\">a</text><text>b</text></g>",
     "Old",
     "<g font-weight='bold'><text style=\"font-family:'New Sans';font-weight:normal\">a</text>"
     "<text>b</text></g>"},
    {"CommentsStay",
     "<style>.a{font-weight:/*x*/bold;font: bold /*&amp;*/ 1px /* \"A\", */ Old /*y*/, B}</style>"
     "<text class='a' font-style='/* z */ italic'>a</text>",
     "Old",
     "<style>.a{font-weight:/*x*/bold;font: bold /*&amp;*/ 1px /* \"A\", */ New Sans /*y*/, B;"
     "font-weight:normal}</style><text class='a' font-style='/* z */ italic'>a</text>"},
    {"InheritedFromItsUse",
     "<defs><text id='t'>a<tspan>b</tspan></text></defs><g font-family='Old'><use href='#t'/><text "
     "font-weight='bold'>c</text></g>",
     "Old/Regular",
     "<defs><text id='t' style=\"font-family:'New Sans'\">a<tspan>b</tspan></text></defs>"
     "<g font-family='Old'><use href='#t'/><text font-weight='bold'>c</text></g>"},
    {"CarefulWhereNeeded",
     "<style>.x tspan{font-weight:bold}</style><text class='x' font-family='Old'>a<tspan>b</tspan>"
     "</text><text font-family='Old'>c<tspan font-weight='bold'>d</tspan></text>",
     "Old/Regular",
     "<style>.x tspan{font-weight:bold}</style><text class='x' font-family='Old'><tspan style=\""
     "font-family:'New Sans' !important;font-style:normal !important;font-weight:normal !important;"
     "font-stretch:normal !important\">a</tspan><tspan>b</tspan></text><text font-family='Old'>"
     "<tspan style=\"font-family:'New Sans'\">c</tspan><tspan font-weight='bold'>d</tspan>"
     "</text>"},
    {"Rule", "<style>.a { font-family: Old; }\r\n.b{}</style><text class='a'>a</text>", "Old",
     "<style>.a { font-family: New Sans; }\r\n.b{}</style><text class='a'>a</text>"},
    {"RuleOfEntitiesAndComments",
     "<style><!-- .b{} -->.a{font-family:&#x4F;l&#100;}</style><text class='a'>a</text>", "Old",
     "<style><!-- .b{} -->.a{font-family:New Sans}</style><text class='a'>a</text>"},
    {"RulesWithinDecideTheirs",
     "<style>.b{font-family:B}</style><g font-family='Old'><text>a<tspan class='b'>b</tspan></text>"
     "<text font-weight='bold'>c</text></g>",
     "Old/Regular",
     "<style>.b{font-family:B}</style><g font-family='Old'><text style=\"font-family:'New Sans'\">a"
     "<tspan class='b'>b</tspan></text><text font-weight='bold'>c</text></g>"},
    {"RuleInCdata",
     "<style><![CDATA[.a>b{}\r\n.a{font-family:\"Old\",serif}\r]]></style><text class='a'>a"
     "</text>",
     "Old",
     "<style><![CDATA[.a>b{}\r\n.a{font-family:'New Sans',serif}\r]]></style><text class='a'>a"
     "</text>"},
    {"Shorthand", "<text style='font:bold 12px/1 Old, serif;a:b'>a</text>", "Old",
     "<text style='font:bold 12px/1 New Sans, serif;font-weight:normal;a:b'>a</text>"},
    {"WeightAndSlantWithIt",
     "<text font-family='Old' font-weight='bold' style='font-style:italic'>a</text>", "Old",
     "<text font-family='New Sans' font-weight='normal' style='font-style:normal'>a</text>"},
    {"TheHintWithIt",
     "<text style=\"font-family:Old;-inkscape-font-specification:'Old, Bold'\">a</text>", "Old",
     "<text style=\"font-family:New Sans;-inkscape-font-specification:'New Sans, Normal'\">a"
     "</text>"},
    {"NoneThatBeginsAsTheHint",
     "<text style=\"font-family:Old;-inkscape-font-specification:A;-inkscape-font-specifications:B;"
     "-inkscape-font:C\">a</text>",
     "Old",
     "<text style=\"font-family:New Sans;-inkscape-font-specification:'New Sans, Normal';"
     "-inkscape-font-specifications:B;-inkscape-font:C\">a</text>"},
    {"PostScriptNameAsFamily", "<text font-family='Old-Bold'>a</text>", "Old-Bold",
     "<text font-family='New Sans'>a</text>"},
    {"NoDeclarationAtAll", "<text x='1'>a</text><text font-family='B'>b</text>", "sans-serif",
     "<text x='1' style=\"font-family:'New Sans'\">a</text><text font-family='B'>b</text>"},
    {"InheritedAndShared",
     "<g font-family='Old, serif'><text style='a:b'>a</text><text font-weight='bold'>b</text></g>",
     "Old/Bold",
     "<g font-family='Old, serif'><text style='a:b'>a</text><text font-weight='normal' "
     "style=\"font-family:'New Sans', serif\">b</text></g>"},
    {"StyleAttributesGrow",
     "<g font-family='Old'><text style='a:b'>a</text><text font-weight='bold'>b</text></g>",
     "Old/Regular",
     "<g font-family='Old'><text style='a:b;font-family:\"New Sans\"'>a</text><text "
     "font-weight='bold'>b</text></g>"},
    {"BesideOtherTextASpan",
     "<text font-family='Old'>a <tspan font-weight='bold'>b</tspan> c</text>", "Old/Regular",
     "<text font-family='Old'><tspan style=\"font-family:'New Sans'\">a </tspan><tspan "
     "font-weight='bold'>b</tspan><tspan style=\"font-family:'New Sans'\"> c</tspan></text>"},
    {"SharedRuleStays",
     "<style>.a{font-family:Old}</style><text class='a'>a</text><text class='a' "
     "font-style='italic'>b</text>",
     "Old/Italic",
     "<style>.a{font-family:Old}</style><text class='a'>a</text><text class='a' "
     "font-style='normal' style=\"font-family:'New Sans'\">b</text>"},
    {"ImportantRuleIsOutdone",
     "<style>.a{font-family:Old!important}</style><text class='a'>a</text><text class='a' "
     "font-style='italic'>b</text>",
     "Old/Italic",
     "<style>.a{font-family:Old!important}</style><text class='a'>a</text><text class='a' "
     "font-style='normal' style=\"font-family:'New Sans' !important\">b</text>"},
    {"HiddenTextKeepsItsFace",
     "<g font-family='Old'><text>a</text><text display='none' font-weight='bold'>b</text></g>",
     "Old/Regular",
     "<g font-family='Old'><text style=\"font-family:'New Sans'\">a</text><text display='none' "
     "font-weight='bold'>b</text></g>"},
    {"FlowedTextInAPrefix",
     "<s:flowRoot xmlns:s='http://www.w3.org/2000/svg' font-family='Old'><s:flowPara>a"
     "<s:flowSpan font-weight='bold'>b</s:flowSpan></s:flowPara></s:flowRoot>",
     "Old/Regular",
     "<s:flowRoot xmlns:s='http://www.w3.org/2000/svg' font-family='Old'><s:flowPara>"
     "<s:flowSpan style=\"font-family:'New Sans'\">a</s:flowSpan>"
     "<s:flowSpan font-weight='bold'>b</s:flowSpan></s:flowPara></s:flowRoot>"},
    {"ReferencedText",
     "<text id='t' font-family='B'>x</text><text font-family='Old'><tref xlink:href='#t'/></text>",
     "Old",
     "<text id='t' font-family='B'>x</text><text font-family='New Sans'><tref "
     "xlink:href='#t'/></text>"},
    {"ReferencedBlanksAtTheEnd",
     "<text id='t' xml:space='preserve'> </text><text font-family='Old'>a<tspan "
     "font-weight='bold'><tref xlink:href='#t'/></tspan></text>",
     "Old",
     "<text id='t' xml:space='preserve'> </text><text font-family='New Sans'>a<tspan "
     "font-weight='bold'><tref xlink:href='#t'/></tspan></text>"},
    {"RulesForSpansSpareIt",
     "<style>tspan{fill:red;font-size:50px}</style><g font-family='Old, serif'><text>a<tspan "
     "font-weight='bold'>b</tspan>c<tspan>d<tspan font-family='X' style='font-weight:300'>e"
     "</tspan></tspan></text></g>",
     "Old/Regular",
     "<style>tspan{fill:red;font-size:50px}</style><g font-family='Old, serif'><text style=\""
     "font-family:'New Sans', serif\">a<tspan font-weight='bold' style=\"font-family:'Old', serif"
     "\">b</tspan>c<tspan style=\"font-family:'New Sans', serif\">d<tspan font-family='X' "
     "style='font-weight:300'>e</tspan></tspan></text></g>"},
    {"ImportantRulesForSpans",
     "<style>*{a:b} .a{font-family:Old!important}</style><text class='a'>a<tspan "
     "font-weight='bold'>b</tspan></text>",
     "Old/Regular",
     "<style>*{a:b} .a{font-family:Old!important}</style><text class='a' style=\"font-family:"
     "'New Sans' !important\">a<tspan font-weight='bold' style=\"font-family:'Old'\">b</tspan>"
     "</text>"},
    {"RulesForSpansWhenCareful",
     "<style>*{fill:red} text[style]{font-style:italic}</style><text font-family='Old'>a<tspan "
     "font-weight='bold'>b</tspan></text>",
     "Old/Regular",
     "<style>*{fill:red} text[style]{font-style:italic}</style><text font-family='Old' style=\""
     "font-family:'New Sans' !important;font-style:normal !important;font-weight:normal !important;"
     "font-stretch:normal !important\">a<tspan font-weight='bold' style=\"font-family:'Old';"
     "font-style:normal;font-stretch:normal\">b</tspan></text>"},
    {"HintsByRulesForSpans",
     "<style>*{a:b}</style><text style=\"font-family:Old;-inkscape-font-specification:'Old, "
     "Bold'\">a<tspan font-weight='bold'>b</tspan></text>",
     "Old/Regular",
     "<style>*{a:b}</style><text style=\"font-family:Old;-inkscape-font-specification:'Old, Bold';"
     "font-family:'New Sans';-inkscape-font-specification:'New Sans, Normal'\">a<tspan font-weight="
     "'bold' style=\"font-family:'Old';-inkscape-font-specification:'Old, "
     "Bold'\">b</tspan></text>"},
    {"SelectorsForTheSpan",
     "<style>tspan{font-weight:bold}</style><text font-family='Old'>a<tspan>b</tspan></text>",
     "Old/Regular",
     "<style>tspan{font-weight:bold}</style><text font-family='Old'><tspan style=\"font-family:"
     "'New Sans' !important;font-style:normal !important;font-weight:normal !important;"
     "font-stretch:normal !important\">a</tspan><tspan>b</tspan></text>"},
};

class AReplacedFace : public testing::TestWithParam<Case> {};

TEST_P(AReplacedFace, ChangesThere) {
    Document document = read(GetParam().body);
    const std::string replaced = GetParam().replaced;
    replaceAll(document, replaced, newFace());
    const std::string result = saved(document);
    EXPECT_EQ(result, drawing(GetParam().result));
    EXPECT_EQ(visibleRuns(readSvg(result, "again.svg")).find(replaced + "/"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Places, AReplacedFace, testing::ValuesIn(cases), nameOfCase);

TEST(AReplacedFace, IsWrittenWithAllItHas) {
    Document document = read("<text font-family='Old'>a</text>");
    Face face = newFace("It's \"M\xC3\xBCller\" & <Co>", 650, Slant::Oblique);
    face.stretch = 110.5;
    replaceAll(document, "Old", face);
    const Document again = readSvg(saved(document), "again.svg");
    ASSERT_EQ(again.runs().size(), 1U);
    const Face& read = again.faceOf(again.run(0));
    EXPECT_EQ(read.family, face.family);
    EXPECT_EQ(read.weight, 650);
    EXPECT_EQ(read.slant, Slant::Oblique);
    EXPECT_EQ(read.stretch, 110.5);
}

std::string inEncoding(const std::string& name, const std::string& family,
                       const std::string& text = "a") {
    return "<?xml version='1.0' encoding='" + name +
           "'?><svg xmlns='http://www.w3.org/2000/svg'><text font-family='" + family + "'>" + text +
           "</text></svg>";
}

TEST(AReplacedFace, KeepsTheEncodingOfTheFile) {
    Document document = readSvg(inEncoding("ISO-8859-1", "Old", "\xE4"), "x.svg");
    replaceAll(document, "Old", newFace("\xD0\x96\xC3\xA4"));
    EXPECT_EQ(saved(document), inEncoding("ISO-8859-1", "\"\\416 \\e4 \"", "\xE4"));
}

TEST(AReplacedFace, IsRefusedWhereTheEncodingLosesOtherText) {
    // A converter takes this form of a letter for the letter itself when it writes.
    Document document = readSvg(inEncoding("IBM1046", "Old", "\x83"), "x.svg");
    replaceAll(document, "Old", newFace("New"));
    EXPECT_THROW(static_cast<void>(saved(document)), DocumentError);
}

TEST(AReplacedFace, IsEscapedInAFileThatIsSaidToBeAscii) {
    for (const std::string name : {"us-ascii", "ASCII"}) {
        Document document = readSvg(inEncoding(name, "Old"), "x.svg");
        replaceAll(document, "Old", newFace("M\xC3\xBCller"));
        EXPECT_EQ(saved(document), inEncoding(name, "\"M\\fc ller\""));
    }
}

TEST(AReplacedFace, IsQuotedWhereItsFamilyWouldReadDifferently) {
    for (const std::string family :
         {"New  Sans", "2nd", "inherit", "Initial", "unset", "revert", "serif"}) {
        Document document = read("<text font-family='Old, B'>a</text>");
        replaceAll(document, "Old", newFace(family.c_str()));
        EXPECT_EQ(saved(document), drawing("<text font-family='\"" + family + "\", B'>a</text>"));
    }
}

/// Any text with a style of its own is bold. Done carefully, "a" leaves the rule that it shares
/// with "b" as it is, for which "b" gets a style; and so on to "c", which would be an attempt too
/// many.
TEST(AReplacedFace, IsWrittenWithCareWhenOneRepairBreaksTheNext) {
    Document document = read(
        "<style>text[style]{font-weight:bold} svg{font-style:italic;font-stretch:condensed}</style>"
        "<g font-family='Old'><text font-stretch='normal'>a</text>"
        "<text font-weight='300' font-style='normal' font-stretch='normal'>k</text></g>"
        "<text font-family='Old'>b</text><text font-family='Old' font-style='normal'>c</text>");
    for (const RunId id : {0U, 2U, 3U}) {
        document.replaceFace(id, newFace());
    }
    EXPECT_EQ(visibleRuns(readSvg(saved(document), "x.svg")),
              "New Sans/Regular:a|Old/Light:k|New Sans/Regular:b|New Sans/Regular:c");
}

TEST(AReplacedFace, MayBeOneOfTheDocument) {
    Document document = read("<text font-family='A'>a</text><text font-family='B'>b</text>"
                             "<text font-family='C'>c</text><text font-family='D'>d</text>");
    for (RunId id = 1; id < document.runs().size(); ++id) {
        document.replaceFace(id, document.face(0));
    }
    EXPECT_EQ(visibleRuns(document), "A/Regular:a|A/Regular:b|A/Regular:c|A/Regular:d");
}

TEST(AReplacedFace, OfRunsThatDifferIsToldApart) {
    Document document = read("<g font-family='Old'><text>a</text><text>b</text></g>");
    document.replaceFace(0, newFace("A"));
    document.replaceFace(1, newFace("B"));
    EXPECT_EQ(visibleRuns(readSvg(saved(document), "x.svg")), "A/Regular:a|B/Regular:b");
}

TEST(AReplacedFace, IsRefusedWhereRulesWouldCatchItsOnlySpan) {
    Document document = read("<style>tspan{fill:red}</style><text font-family='Old'>a<tspan "
                             "font-weight='bold'>b</tspan>c</text>");
    document.replaceFace(0, newFace());
    EXPECT_THAT([&] { saved(document); },
                testing::ThrowsMessage<DocumentError>(testing::HasSubstr("would catch the span")));
}

TEST(AReplacedFace, InAnEntityIsRefusedAndTheFileKept) {
    Document document = readSvg("<!DOCTYPE svg [<!ENTITY e '<text>x</text>'>]><svg "
                                "xmlns='http://www.w3.org/2000/svg'>&e;</svg>",
                                "x.svg");
    document.replaceFace(0, newFace());
    Folder folder;
    write(folder / "out.svg", "before");
    EXPECT_THROW(document.save(folder / "out.svg"), DocumentError);
    EXPECT_EQ(contentOf(folder / "out.svg"), "before");
}

TEST(AReplacedFace, IsRefusedWhereTwoEditsOverlap) {
    const std::string source = drawing("<text font-family='Old'>a</text>");
    const svg::Drawing old = svg::readDrawing(source, "x.svg", {});
    const auto family = css::Property::Family;
    svg::FaceEdits edits(source, old.tree, old.styles, true);
    for (const char* name : {"A", "B"}) {
        EXPECT_TRUE(edits.changeDeclaration(family, old.styles.elements.back().origin(family),
                                            {name, false, 0}));
    }
    EXPECT_THROW(static_cast<void>(edits.apply("x.svg")), DocumentError);
}

TEST(ADocument, CountsReplacementsOfRunsOnly) {
    Document document = read("<text font-family='A'>a</text>");
    document.replaceFace(0, Face(document.face(0)));
    EXPECT_FALSE(document.modified());
    document.replaceFace(0, newFace());
    EXPECT_TRUE(document.modified());
    EXPECT_TRUE(document.run(0).replaced);
    EXPECT_THROW(document.replaceFace(1, newFace()), std::out_of_range);
}

TEST(ADocument, TakesStepsBackAndMakesThemAgainByteForByte) {
    Document document = read("<text font-family='A' >a</text><text style='font-family:B'>b</text>");
    std::vector<std::string> states{saved(document)};
    const auto endStep = [&] {
        EXPECT_TRUE(document.endStep());
        EXPECT_FALSE(document.endStep());
        states.push_back(saved(document));
    };
    EXPECT_FALSE(document.endStep() || document.undo() || document.redo());
    document.replaceFace(0, newFace("X"));
    document.replaceFace(0, newFace("Y"));
    endStep();
    document.replaceFace(0, newFace("Z"));
    document.replaceFace(1, newFace("Z"));
    endStep();
    for (std::size_t round = 0; round < 2; ++round) {
        EXPECT_TRUE(document.undo());
        EXPECT_FALSE(document.run(1).replaced);
        EXPECT_EQ(saved(document), states[1]);
        EXPECT_TRUE(document.undo());
        EXPECT_FALSE(document.undo() || document.modified());
        EXPECT_EQ(saved(document), states[0]);
        EXPECT_TRUE(document.redo());
        EXPECT_EQ(saved(document), states[1]);
        EXPECT_TRUE(document.redo());
        EXPECT_FALSE(document.redo());
        EXPECT_EQ(saved(document), states[2]);
    }
    EXPECT_TRUE(document.undo());
    document.replaceFace(0, newFace("W"));
    EXPECT_FALSE(document.redo()) << "another way was taken";
    EXPECT_TRUE(document.undo());
    EXPECT_EQ(saved(document), states[1]);
}

} // namespace
} // namespace host::test
