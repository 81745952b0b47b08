// SPDX-License-Identifier: MIT
// Replaced faces in the saved file: what changes, and that nothing else does.
#include "drawings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <ostream>
#include <thread>
#include <utility>

namespace host::test {
namespace {

Face newFace(const char* family = "New Sans", int weight = 400, Slant slant = Slant::Upright) {
    Face face;
    face.family = family;
    face.weight = weight;
    face.slant = slant;
    face.style = styleText(weight, slant, 100);
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

std::string saved(const Document& document) {
    Folder folder;
    document.save(folder / "out.svg");
    return bytesOf(folder / "out.svg");
}

struct Case {
    const char* about;
    const char* body;
    const char* replaced; ///< "family" or "family/style"
    const char* result;
};
void PrintTo(const Case& test, std::ostream* stream) {
    *stream << test.body;
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
    {"TheLastOfSeveralDeclarations", "<text style='font-family:X;font-family:Old'>a</text>", "Old",
     "<text style='font-family:X;font-family:New Sans'>a</text>"},
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
    {"TextThatInheritsFromItsUse",
     "<defs><text id='t'>a<tspan>b</tspan></text></defs><g font-family='Old'><use href='#t'/><text "
     "font-weight='bold'>c</text></g>",
     "Old/Regular",
     "<defs><text id='t' style=\"font-family:'New Sans'\">a<tspan>b</tspan></text></defs>"
     "<g font-family='Old'><use href='#t'/><text font-weight='bold'>c</text></g>"},
    {"OnlyWhatWouldGoWrongIsDoneCarefully",
     "<style>.x tspan{font-weight:bold}</style><text class='x' font-family='Old'>a<tspan>b</tspan>"
     "</text><text font-family='Old'>c<tspan font-weight='bold'>d</tspan></text>",
     "Old/Regular",
     "<style>.x tspan{font-weight:bold}</style><text class='x' font-family='Old'><tspan style=\""
     "font-family:'New Sans' !important;font-style:normal !important;font-weight:normal !important;"
     "font-stretch:normal !important\">a</tspan><tspan>b</tspan></text><text font-family='Old'>"
     "<tspan style=\"font-family:'New Sans'\">c</tspan><tspan font-weight='bold'>d</tspan>"
     "</text>"},
    {"Rule", "<style>.a { font-family: Old; }\n.b{}</style><text class='a'>a</text>", "Old",
     "<style>.a { font-family: New Sans; }\n.b{}</style><text class='a'>a</text>"},
    {"RuleInCdata",
     "<style><![CDATA[.a>b{} .a{font-family:\"Old\",serif}]]></style><text class='a'>a</text>",
     "Old",
     "<style><![CDATA[.a>b{} .a{font-family:'New Sans',serif}]]></style><text class='a'>a</text>"},
    {"Shorthand", "<text style='font:bold 12px/1 Old, serif;a:b'>a</text>", "Old",
     "<text style='font:bold 12px/1 New Sans, serif;font-weight:normal;a:b'>a</text>"},
    {"WeightAndSlantWithIt",
     "<text font-family='Old' font-weight='bold' style='font-style:italic'>a</text>", "Old",
     "<text font-family='New Sans' font-weight='normal' style='font-style:normal'>a</text>"},
    {"TheHintWithIt",
     "<text style=\"font-family:Old;-inkscape-font-specification:'Old, Bold'\">a</text>", "Old",
     "<text style=\"font-family:New Sans;-inkscape-font-specification:'New Sans, Normal'\">a"
     "</text>"},
    {"NoPropertyThatBeginsAsTheHint",
     "<text style=\"font-family:Old;-inkscape-font-specification:A;-inkscape-font-specifications:B;"
     "-inkscape-font:C\">a</text>",
     "Old",
     "<text style=\"font-family:New Sans;-inkscape-font-specification:'New Sans, Normal';"
     "-inkscape-font-specifications:B;-inkscape-font:C\">a</text>"},
    {"PostScriptNameAsFamily", "<text font-family='Old-Bold'>a</text>", "Old-Bold",
     "<text font-family='New Sans'>a</text>"},
    {"NoDeclarationAtAll", "<text x='1'>a</text><text font-family='B'>b</text>", "sans-serif",
     "<text x='1' style=\"font-family:'New Sans'\">a</text><text font-family='B'>b</text>"},
    {"InheritedAndSharedValueGoesToTheElement",
     "<g font-family='Old, serif'><text style='a:b'>a</text><text font-weight='bold'>b</text></g>",
     "Old/Bold",
     "<g font-family='Old, serif'><text style='a:b'>a</text><text font-weight='normal' "
     "style=\"font-family:'New Sans', serif\">b</text></g>"},
    {"StyleAttributesGrow",
     "<g font-family='Old'><text style='a:b'>a</text><text font-weight='bold'>b</text></g>",
     "Old/Regular",
     "<g font-family='Old'><text style='a:b;font-family:\"New Sans\"'>a</text><text "
     "font-weight='bold'>b</text></g>"},
    {"TextBesideOtherTextGetsASpan",
     "<text font-family='Old'>a <tspan font-weight='bold'>b</tspan> c</text>", "Old/Regular",
     "<text font-family='Old'><tspan style=\"font-family:'New Sans'\">a </tspan><tspan "
     "font-weight='bold'>b</tspan><tspan style=\"font-family:'New Sans'\"> c</tspan></text>"},
    {"SharedRuleStays",
     "<style>.a{font-family:Old}</style><text class='a'>a</text><text class='a' "
     "font-style='italic'>b</text>",
     "Old/Italic",
     "<style>.a{font-family:Old}</style><text class='a'>a</text><text class='a' "
     "font-style='normal' style=\"font-family:'New Sans'\">b</text>"},
    {"SharedImportantRuleIsOutdone",
     "<style>.a{font-family:Old!important}</style><text class='a'>a</text><text class='a' "
     "font-style='italic'>b</text>",
     "Old/Italic",
     "<style>.a{font-family:Old!important}</style><text class='a'>a</text><text class='a' "
     "font-style='normal' style=\"font-family:'New Sans' !important\">b</text>"},
    {"HiddenTextKeepsItsFaceOnItsOwn",
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
    {"RulesThatWouldCatchASpanSpareIt",
     "<style>tspan{fill:red;font-size:50px}</style><g font-family='Old, serif'><text>a<tspan "
     "font-weight='bold'>b</tspan>c<tspan>d<tspan font-family='X' style='font-weight:300'>e"
     "</tspan></tspan></text></g>",
     "Old/Regular",
     "<style>tspan{fill:red;font-size:50px}</style><g font-family='Old, serif'><text style=\""
     "font-family:'New Sans', serif\">a<tspan font-weight='bold' style=\"font-family:'Old', serif"
     "\">b</tspan>c<tspan style=\"font-family:'New Sans', serif\">d<tspan font-family='X' "
     "style='font-weight:300'>e</tspan></tspan></text></g>"},
    {"RulesThatWouldCatchASpanSpareItWhenCareful",
     "<style>*{fill:red} text[style]{font-style:italic}</style><text font-family='Old'>a<tspan "
     "font-weight='bold'>b</tspan></text>",
     "Old/Regular",
     "<style>*{fill:red} text[style]{font-style:italic}</style><text font-family='Old' style=\""
     "font-family:'New Sans' !important;font-style:normal !important;font-weight:normal !important;"
     "font-stretch:normal !important\">a<tspan font-weight='bold' style=\"font-family:'Old';"
     "font-style:normal;font-stretch:normal\">b</tspan></text>"},
    {"HintsStayWhereRulesSpareASpan",
     "<style>*{a:b}</style><text style=\"font-family:Old;-inkscape-font-specification:'Old, "
     "Bold'\">a<tspan font-weight='bold'>b</tspan></text>",
     "Old/Regular",
     "<style>*{a:b}</style><text style=\"font-family:Old;-inkscape-font-specification:'Old, Bold';"
     "font-family:'New Sans';-inkscape-font-specification:'New Sans, Normal'\">a<tspan font-weight="
     "'bold' style=\"font-family:'Old';-inkscape-font-specification:'Old, "
     "Bold'\">b</tspan></text>"},
    {"SelectorsThatWouldCatchTheSpanMakeItCareful",
     "<style>tspan{font-weight:bold}</style><text font-family='Old'>a<tspan>b</tspan></text>",
     "Old/Regular",
     "<style>tspan{font-weight:bold}</style><text font-family='Old'><tspan style=\"font-family:"
     "'New Sans' !important;font-style:normal !important;font-weight:normal !important;"
     "font-stretch:normal !important\">a</tspan><tspan>b</tspan></text>"},
};

class AReplacedFace : public testing::TestWithParam<Case> {};

TEST_P(AReplacedFace, ChangesWhatDecidedItAndNothingElse) {
    Document document = read(GetParam().body);
    const std::string replaced = GetParam().replaced;
    replaceAll(document, replaced, newFace());
    const std::string result = saved(document);
    EXPECT_EQ(result, drawing(GetParam().result));
    EXPECT_EQ(visibleRuns(readSvg(result, "again.svg")).find(replaced + "/"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Places, AReplacedFace, testing::ValuesIn(cases),
                         [](const auto& test) { return test.param.about; });

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

TEST(AReplacedFace, KeepsTheEncodingOfTheFile) {
    Document document = readSvg("<?xml version='1.0' encoding='ISO-8859-1'?><svg "
                                "xmlns='http://www.w3.org/2000/svg'><text font-family='Old'>\xE4"
                                "</text></svg>",
                                "x.svg");
    replaceAll(document, "Old", newFace("\xD0\x96\xC3\xA4"));
    EXPECT_EQ(saved(document), "<?xml version='1.0' encoding='ISO-8859-1'?><svg "
                               "xmlns='http://www.w3.org/2000/svg'><text font-family='\"\\416 "
                               "\\E4 \"'>\xE4</text></svg>");
}

TEST(AReplacedFace, IsEscapedInAFileThatIsSaidToBeAscii) {
    for (const std::string name : {"us-ascii", "ASCII"}) {
        const std::string head = "<?xml version='1.0' encoding='" + name +
                                 "'?><svg xmlns='http://www.w3.org/2000/svg'><text font-family='";
        Document document = readSvg(head + "Old'>a</text></svg>", "x.svg");
        replaceAll(document, "Old", newFace("M\xC3\xBCller"));
        EXPECT_EQ(saved(document), head + "\"M\\FC ller\"'>a</text></svg>");
    }
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

TEST(AReplacedFace, IsRefusedWhereOnlyASpanWouldDoThatRulesWouldCatch) {
    Document document = read("<style>tspan{fill:red}</style><text font-family='Old'>a<tspan "
                             "font-weight='bold'>b</tspan>c</text>");
    document.replaceFace(0, newFace());
    try {
        saved(document);
        ADD_FAILURE();
    } catch (const DocumentError& error) {
        EXPECT_NE(std::string(error.what()).find("would catch the span"), std::string::npos);
    }
}

TEST(AReplacedFace, InAnEntityIsRefusedAndTheFileKept) {
    Document document = readSvg("<!DOCTYPE svg [<!ENTITY e '<text>x</text>'>]><svg "
                                "xmlns='http://www.w3.org/2000/svg'>&e;</svg>",
                                "x.svg");
    document.replaceFace(0, newFace());
    Folder folder;
    write(folder / "out.svg", "before");
    EXPECT_THROW(document.save(folder / "out.svg"), DocumentError);
    EXPECT_EQ(bytesOf(folder / "out.svg"), "before");
}

TEST(ASavedDrawing, IsUnchangedWhenNothingWasReplaced) {
    const std::string source = "\xEF\xBB\xBF<?xml version='1.0'?>\r\n<!-- x -->" +
                               drawing("<text\n>a</text >\r\n") + "\n\n";
    EXPECT_EQ(saved(readSvg(source, "x.svg")), source);
}

TEST(ASavedDrawing, IsTheVeryFileWhenNothingWasReplaced) {
    // The same character in two codes, of which a converter writes one.
    const std::string twice = "<?xml version='1.0' encoding='windows-31j'?><svg "
                              "xmlns='http://www.w3.org/2000/svg'><text>\xED\x40\xFA\x5C</text>"
                              "</svg>";
    EXPECT_EQ(saved(readSvg(twice, "x.svg")), twice);

    std::string packed(2000, '\0');
    z_stream stream{};
    ASSERT_EQ(deflateInit2(&stream, 0, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY), Z_OK);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(twice.data()));
    stream.avail_in = static_cast<uInt>(twice.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    ASSERT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    const Document document = readSvg(packed, "x.svgz");
    Folder folder;
    document.save(folder / "same.svgz");
    EXPECT_EQ(bytesOf(folder / "same.svgz"), packed);
    EXPECT_EQ(saved(document), twice);
}

TEST(ASavedDrawing, IsGzippedByItsNameElseAsItWas) {
    Folder folder;
    const Document plain = read("<text font-family='A'>a</text>");
    plain.save(folder / "packed.svgz");
    EXPECT_TRUE(bytesOf(folder / "packed.svgz").starts_with("\x1F\x8B"));
    const Document packed = readSvg(folder / "packed.svgz");
    packed.save(folder / "plain.svg");
    packed.save(folder / "other");
    EXPECT_EQ(bytesOf(folder / "plain.svg"), drawing("<text font-family='A'>a</text>"));
    EXPECT_TRUE(bytesOf(folder / "other").starts_with("\x1F\x8B"));
}

TEST(ASavedDrawing, ReplacesTheFileThatALinkLeadsToAndKeepsItsRights) {
    Folder folder;
    write(folder / "real.svg", "old");
    std::filesystem::permissions(folder / "real.svg", std::filesystem::perms{0640});
    std::filesystem::create_symlink(folder / "real.svg", folder / "link.svg");
    read("").save(folder / "link.svg");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.svg"));
    EXPECT_EQ(bytesOf(folder / "real.svg"), drawing(""));
    EXPECT_EQ(std::filesystem::status(folder / "real.svg").permissions(),
              std::filesystem::perms{0640});
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
}

TEST(ASavedDrawing, GoesThroughAPipeThatStaysOne) {
    Folder folder;
    const std::string pipe = (folder / "pipe.svg").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_symlink(pipe, folder / "link.svg");
    for (const char* name : {"pipe.svg", "link.svg"}) {
        std::string received;
        std::thread reader([&] { received = bytesOf(pipe); });
        read("").save(folder / name);
        reader.join();
        EXPECT_EQ(received, drawing("")) << name;
        EXPECT_TRUE(std::filesystem::is_fifo(pipe)) << name;
    }
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.svg"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
}

TEST(ASavedDrawing, GoesThroughALinkThatNamesADescriptor) {
    Folder folder;
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe(ends), 0);
    const std::filesystem::path link = folder / "output.svg";
    std::filesystem::create_symlink("/proc/self/fd/" + std::to_string(ends[1]), link);
    read("").save(link);
    ::close(ends[1]);
    std::string received(1000, '\0');
    received.resize(static_cast<std::size_t>(
        std::max<ssize_t>(0, ::read(ends[0], received.data(), received.size()))));
    ::close(ends[0]);
    EXPECT_EQ(received, drawing(""));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
}

TEST(ASavedDrawing, ThatCannotBeWrittenSaysSo) {
    Folder folder;
    std::filesystem::create_symlink("round.svg", folder / "round.svg");
    std::filesystem::create_directory(folder / "folder.svg");
    for (const auto& [name, reason] :
         {std::pair{"no/such/folder.svg", "cannot be written: No such file"},
          std::pair{"round.svg", "cannot be written: Too many levels of symbolic links"},
          std::pair{"folder.svg", "cannot be written: is not a regular file"}}) {
        try {
            read("").save(folder / name);
            ADD_FAILURE() << name;
        } catch (const DocumentError& error) {
            EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
        }
    }
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "round.svg"));
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

} // namespace
} // namespace host::test
