// SPDX-License-Identifier: MIT
// What is a run of text, what is in it, and whether it counts.
#include "drawings.h"

#include <gtest/gtest.h>

#include <ostream>

namespace host::test {
namespace {

struct Case {
    const char* about;
    const char* body;
    const char* runs;
};
void PrintTo(const Case& test, std::ostream* stream) {
    *stream << test.body;
}

const Case cases[] = {
    {"SpansOfOneFaceAreOneRun", "<text font-family='A'>a <tspan fill='red'>b</tspan> c</text>",
     "A/Regular:a b c"},
    {"AFaceEndsARun", "<text font-family='A'>a <tspan font-weight='bold'>b</tspan> c</text>",
     "A/Regular:a |A/Bold:b|A/Regular: c"},
    {"FramesDoNotShareARun", "<text font-family='A'>a</text><text font-family='A'>b</text>",
     "A/Regular:a|A/Regular:b"},
    {"BlanksCollapse", "<text font-family='A'>\n  a\n\tb  <tspan>  c</tspan>\n</text>",
     "A/Regular:a b c"},
    {"BlanksArePreservedOnDemand",
     "<text font-family='A' xml:space='preserve'>  a\n b <tspan xml:space='default'> c </tspan>"
     "</text>",
     "A/Regular:  a  b c"},
    {"BlankRunsCarryNoFont",
     "<text font-family='A'> <tspan font-family='B'>b</tspan> &#xA0;&#x200B;&#xAD;&#x3000;</text>"
     "<text font-family='C'>\n</text><text font-family='D'/>",
     "B/Regular:b"},
    {"TextPathLinkAndAlternateGlyph",
     "<text font-family='A'><textPath xlink:href='#p'>a</textPath><a>b</a><altGlyph>c</altGlyph>"
     "</text>",
     "A/Regular:abc"},
    {"TitlesShapesAndStrangersInText",
     "<text font-family='A'>a<title>T</title><desc>D</desc><x xmlns='urn:x'>X</x><rect>R</rect>"
     "<set>S</set>b</text>",
     "A/Regular:ab"},
    {"FlowedText",
     "<flowRoot font-family='A'><flowRegion><rect>R</rect></flowRegion><flowPara>a"
     "<flowSpan font-weight='bold'>b</flowSpan></flowPara>\n<flowPara>c</flowPara></flowRoot>",
     "A/Regular:a|A/Bold:b|A/Regular:\nc"},
    {"LinesOfADrawingProgram",
     "<text font-family='A'><tspan sodi:role='line'>a </tspan><tspan sodi:role='line'>b</tspan>"
     "</text>",
     "A/Regular:a\nb"},
    {"ReferencedText",
     "<defs><text id='t' font-family='B'>x<tspan>y</tspan></text></defs>"
     "<text font-family='A'>a<tref xlink:href='#t'/><tref xlink:href='#none'/>b</text>",
     "B/Regular:xy|A/Regular:axyb"},
    {"CdataAndEntities", "<text font-family='A'><![CDATA[<a>]]>&lt;&#98;&gt;<!-- c --></text>",
     "A/Regular:<a><b>"},
    {"HiddenTextDoesNotCount",
     "<text font-family='A' display='none'>a</text><g style='display:none'><text display='inline'"
     " font-family='B'>b</text></g><style>.h{display:none}</style><text class='h'>c</text>"
     "<text font-family='D' visibility='hidden'>d</text>",
     "D/Regular:d"},
    {"DefinitionsCountWhereTheyAreUsed",
     "<defs><text font-family='A'>a</text><text id='b' font-family='B'>b</text><g id='c'><text "
     "font-family='C'>c</text></g></defs><symbol id='d'><text font-family='D'>d</text></symbol>"
     "<symbol id='e'><text font-family='E'>e</text></symbol><use xlink:href='#b'/><use href='#c'/>"
     "<use href='#d'/><clipPath id='f'><text font-family='F'>f</text></clipPath>"
     "<rect style='clip-path:url(#f)'/>",
     "B/Regular:b|C/Regular:c|D/Regular:d|F/Regular:f"},
    {"ForeignObjectsAndExtensionsAreLeftOut",
     "<switch><foreignObject requiredExtensions='urn:x'><text font-family='A'>a</text>"
     "</foreignObject><g requiredExtensions='urn:x'><text font-family='B'>b</text></g>"
     "<g><text font-family='C'>c</text></g></switch><metadata><text>d</text></metadata>",
     "C/Regular:c"},
    {"OtherNamespacesAreNotText",
     "<text xmlns='http://www.w3.org/1999/xhtml'>a</text><s:text "
     "xmlns:s='http://www.w3.org/2000/svg' font-family='B'>b</s:text>",
     "B/Regular:b"},
};

class ARun : public testing::TestWithParam<Case> {};

TEST_P(ARun, IsReadAsTheTableSays) {
    EXPECT_EQ(visibleRuns(read(GetParam().body)), GetParam().runs);
}

INSTANTIATE_TEST_SUITE_P(Text, ARun, testing::ValuesIn(cases),
                         [](const auto& test) { return test.param.about; });

TEST(ADrawing, MayDeclareItsNamespacesAsEntities) {
    const Document document = readSvg(
        "<?xml version=\"1.0\"?><!DOCTYPE svg PUBLIC \"-//W3C//DTD SVG 1.1//EN\" "
        "\"http://www.w3.org/Graphics/SVG/1.1/DTD/svg11.dtd\" [\n"
        "<!ENTITY ns_svg \"http://www.w3.org/2000/svg\">\n<!ENTITY st0 \"font-family:'A'\">\n"
        "<!ENTITY more \"<tspan font-weight='bold'>m</tspan>\">]>\n"
        "<svg xmlns=\"&ns_svg;\"><text style=\"&st0;\">a&more;b&more;</text></svg>",
        "x.svg");
    EXPECT_EQ(visibleRuns(document), "A/Regular:a|A/Bold:m|A/Regular:b|A/Bold:m");
}

TEST(ADrawing, IsReadInItsOwnEncoding) {
    const std::string latin = "<?xml version='1.0' encoding='ISO-8859-1'?><svg "
                              "xmlns='http://www.w3.org/2000/svg'><text font-family='M\xFCller'>"
                              "\xE4</text></svg>";
    EXPECT_EQ(visibleRuns(readSvg(latin, "x.svg")), "M\xC3\xBCller/Regular:\xC3\xA4");

    std::string wide("\xFF\xFE", 2);
    for (const char c : drawing("<text font-family='A'>a</text>")) {
        wide += c;
        wide += '\0';
    }
    EXPECT_EQ(visibleRuns(readSvg(wide, "x.svg")), "A/Regular:a");
}

TEST(ADrawing, MayHoldImagesLargerThanTheParsersOwnLimits) {
    const std::string image(std::size_t{11} << 20, 'A');
    EXPECT_EQ(visibleRuns(read("<image xlink:href='data:image/png;base64," + image +
                               "'/><text font-family='A'>a</text>")),
              "A/Regular:a");
}

TEST(ADocument, InternsItsFaces) {
    std::string body;
    for (int i = 0; i < 100; ++i) {
        body += "<text style='font-family:A, F" + std::to_string(i % 2) + "'>a</text>";
    }
    const Document document = read(body);
    EXPECT_EQ(document.runs().size(), 100U);
    EXPECT_EQ(document.faces().size(), 1U);
}

} // namespace
} // namespace host::test
