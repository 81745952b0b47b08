// SPDX-License-Identifier: MIT
// What is a run of text, what is in it, and whether it counts.
#include "drawings.h"

#include <gtest/gtest.h>

namespace host::test {
namespace {

const DrawingCase cases[] = {
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
    {"PreservingIsInherited",
     "<g xml:space='preserve'><text font-family='A'> a<tspan> b </tspan></text></g>",
     "A/Regular: a b "},
    {"TextInTextIsTheOuterOnes",
     "<text font-family='A'>a <text>b</text><flowRoot>c<flowPara> d</flowPara></flowRoot></text>",
     "A/Regular:a bc d"},
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
     "<set>S</set><unknown>U<tspan>V</tspan></unknown>b</text>",
     "A/Regular:ab"},
    {"FlowedText",
     "<flowRoot font-family='A'><flowRegion><rect>R</rect></flowRegion><flowPara> "
     "</flowPara><flowPara>a"
     "<flowSpan font-weight='bold'>b</flowSpan></flowPara>\n<flowPara>c</flowPara></flowRoot>",
     "A/Regular:a|A/Bold:b|A/Regular:\nc"},
    {"NoBlankBeginsALine",
     "<text font-family='A'><tspan sodi:role='line'>a</tspan><tspan sodi:role='line'> b</tspan>"
     "</text>",
     "A/Regular:a\nb"},
    {"LinesOfADrawingProgram",
     "<text font-family='A'><tspan sodi:role='line'>a </tspan><tspan sodi:role='line'>b</tspan>"
     "</text>",
     "A/Regular:a\nb"},
    {"ReferencedText",
     "<defs><text id='t' font-family='B'>x<tspan>y</tspan></text></defs>"
     "<text font-family='A'>a<tref xlink:href='#t'/><tref xlink:href='#none'/>b</text>",
     "A/Regular:axyb"},
    {"CdataAndEntities", "<text font-family='A'><![CDATA[<a>]]>&lt;&#98;&gt;<!-- c --></text>",
     "A/Regular:<a><b>"},
    {"HiddenTextDoesNotCount",
     "<text font-family='A' display='none'>a</text><g style='display:none'><text display='inline'"
     " font-family='B'>b</text></g><style>.h{display:none}</style><text class='h'>c</text>"
     "<text font-family='D' visibility='hidden'>d</text>",
     ""},
    {"VisibilityIsInheritedAndMayComeBack",
     "<g visibility='hidden'><text font-family='A'>a<tspan style='visibility:visible' "
     "font-family='B'>b</tspan></text><text style='visibility:inherit' font-family='C'>c</text>"
     "<text style='visibility:initial' font-family='D'>d</text></g>"
     "<text visibility='collapse' font-family='E'>e</text>"
     "<text visibility='nonsense' font-family='F'>f</text>",
     "B/Regular:b|D/Regular:d|F/Regular:f"},
    {"TextOfNoSizeDoesNotCount",
     "<text font-size='0' font-family='A'>a<tspan font-size='2em'>b</tspan>"
     "<tspan font-size='1px' font-family='C'>c</tspan></text>"
     "<text style='font-size:0.0pt' font-family='D'>d</text>"
     "<text style='font:0px E'>e</text><text style='font:0.5px/0 F'>f</text>"
     "<text font-size='calc(0px)' font-family='G'>g</text>"
     "<text font-size='-1' font-family='H'>h</text>"
     "<g font-size='0'><text font-size='smaller' font-family='I'>i</text>"
     "<text font-size='50%' font-family='J'>j</text>"
     "<text font-size='medium' font-family='K'>k</text></g>",
     "K/Regular:k|C/Regular:c|F/Regular:f|G/Regular:g|H/Regular:h"},
    {"OneAlternativeOfASwitch",
     "<switch><foreignObject requiredExtensions='x'/><desc>D</desc>"
     "<text systemLanguage='de' font-family='A'>a</text>"
     "<text systemLanguage='fr, en' font-family='B'>b</text><text font-family='C'>c</text>"
     "</switch><text font-family='D'><switch><tspan systemLanguage='en-GB'>d</tspan>"
     "<tspan font-family='E'>e</tspan></switch></text><switch><text font-family='F'>f</text>"
     "<text systemLanguage='en' font-family='G'>g</text></switch>"
     "<text systemLanguage='it' font-family='H'>h</text>",
     "B/Regular:b|E/Regular:e|F/Regular:f"},
    {"ReferencesOfWhatIsNotShownShowNothing",
     "<defs><g><use xlink:href='#a'/></g><g id='r1'><use href='#r2'/></g><g id='r2'>"
     "<use href='#r1'/></g><text id='a' font-family='A'>a</text><use href='#b'/><g id='u'>"
     "<use href='#c'/><path clip-path='url(#d)'/></g><text id='b' font-family='B'>b</text>"
     "<text id='c' font-family='C'>c</text></defs><clipPath id='d'><text font-family='D'>d</text>"
     "</clipPath><a href='#e'><path/></a><defs><text id='e' font-family='E'>e</text></defs>"
     "<use href='#u'/><g display='none'><use href='#f'/></g><defs><text id='f' font-family='F'>f"
     "</text></defs><switch><g/><use href='#b'/></switch>",
     "C/Regular:c|D/Regular:d"},
    {"StyleSheetsReferToo",
     "<style>.clip{clip-path:url(#c1)} .pat { fill : url( '#p1' ) }</style>"
     "<clipPath id='c1'><text font-family='A'>a</text></clipPath>"
     "<pattern id='p1'><text font-family='B'>b</text></pattern>"
     "<mask id='m1'><text font-family='C'>c</text></mask><path class='clip'/><path class='pat'/>",
     "A/Regular:a|B/Regular:b"},
    {"UsedTextInheritsFromItsUse",
     "<defs><text id='t'>a</text><g id='g' font-style='italic'><text>b</text><text id='n' "
     "font-family='N'>c</text></g></defs><symbol id='s'><text>d</text><use href='#t'/></symbol>"
     "<g display='none' font-family='H'><use href='#t'/></g>"
     "<g font-family='X' font-weight='bold'><use href='#t'/><use href='#n'/></g>"
     "<g font-family='Y'><use xlink:href='#g'/><use href='#t'/></g>"
     "<style>.u{font-family:Z;font-weight:300}</style><use class='u' href='#s'/>",
     "X/Bold:a|Y/Italic:b|N/Bold:c|Z/Light:d"},
    {"UsesShowWhatOnlyItsSurroundingsHide",
     "<g display='none'><text id='t' font-family='A'>a</text><text font-family='X'>x</text></g>"
     "<use href='#t'/><g style='visibility:hidden;font-style:italic'><g><text id='u' "
     "font-family='B'>b</text></g></g><g font-weight='bold'><use href='#u'/></g>"
     "<text id='v' font-family='C' display='none'>c</text><use href='#v'/>"
     "<g display='none'><text id='w' font-family='D'>d</text><use href='#w'/></g>"
     "<use href='#e'/><g font-style='italic'><text id='e' font-family='E'>e</text></g>"
     "<switch><g/><g font-family='F'><text id='f'>f</text></g></switch><g font-family='G'>"
     "<use href='#f'/></g><g visibility='hidden' font-family='H'><text id='h' "
     "visibility='visible'>h</text><use href='#h'/></g>",
     "A/Regular:a|B/Bold:b|E/Italic:e|G/Regular:f|H/Regular:h"},
    {"TheFirstOfSeveralHiddenUsesCounts",
     "<defs><text id='t' visibility='visible'>a</text></defs><g visibility='hidden'>"
     "<use href='#t' font-family='A'/><use href='#t' font-family='B'/></g>",
     "A/Regular:a"},
    {"UsesInACircle",
     "<defs><g id='a'><use href='#b'/><text font-family='A'>a</text></g><g id='b' "
     "font-weight='bold'><use href='#a'/><text>b</text></g></defs>"
     "<use font-family='X' href='#a'/>",
     "A/Regular:a|X/Bold:b"},
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

class ARun : public ADrawingOfATable {};

TEST_P(ARun, IsRead) {
    expectItsRuns();
}

INSTANTIATE_TEST_SUITE_P(Text, ARun, testing::ValuesIn(cases), nameOfCase);

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

/// Drawing programs open such files, and many have been written.
TEST(ADrawing, MayNameNoNamespace) {
    EXPECT_EQ(
        visibleRuns(readSvg("<svg xmlns:s='http://www.w3.org/2000/svg'><text font-family='A'>a"
                            "<x xmlns='urn:x'>x</x></text><s:text font-family='B'>b</s:text>"
                            "</svg>",
                            "x.svg")),
        "A/Regular:a|B/Regular:b");
}

TEST(ADrawing, IsReadWithoutItsParameterEntities) {
    const std::string body = "<!ENTITY x 'a'> %p;]><svg xmlns='http://www.w3.org/2000/svg'><text "
                             "font-family='A'>&x;</text></svg>";
    for (const char* entity : {"'<!ELEMENT e EMPTY>'", "'&#37;p;'", "SYSTEM 'no-such-file.ent'"}) {
        EXPECT_EQ(visibleRuns(readSvg(
                      "<!DOCTYPE svg [<!ENTITY % p " + std::string(entity) + ">" + body, "x.svg")),
                  "A/Regular:a")
            << entity;
    }
}

TEST(ADrawing, ShowsTheAlternativeInTheUsersLanguage) {
    const struct {
        const char* language;
        const char* runs;
    } alternatives[] = {{"de_AT", "<sans-serif>/Regular:de"}, {"pt_BR", "<sans-serif>/Regular:br"},
                        {"pt_PT", "<sans-serif>/Regular:pt"}, {"en", "<sans-serif>/Regular:gb"},
                        {"ja_JP", "<sans-serif>/Regular:?"},  {"", "<sans-serif>/Regular:?"}};
    for (const auto& c : alternatives) {
        SvgOptions options;
        options.language = c.language;
        EXPECT_EQ(visibleRuns(read("<switch><text systemLanguage=''>none</text><text "
                                   "systemLanguage='DE'>de</text><text "
                                   "systemLanguage='fr,pt-br'>br</text><text systemLanguage='pt'>pt"
                                   "</text><text systemLanguage='en-GB'>gb</text><text>?</text>"
                                   "</switch>",
                                   options)),
                  c.runs);
    }
}

TEST(ADrawing, MayHoldAnyNumberOfQuotesOutsideItsTags) {
    std::string pairs;
    for (int i = 0; i < 2000; ++i) {
        pairs += " a" + std::to_string(i) + "='b'";
    }
    const std::string tag = "<g" + pairs + ">";
    EXPECT_EQ(visibleRuns(readSvg("<?p " + tag + "?><!DOCTYPE svg [<!ENTITY e \"" + pairs +
                                      "\">]><!-- " + tag + " -->" +
                                      drawing("<style><![CDATA[/*" + tag +
                                              "*/text{font-family:A}]]>"
                                              "</style><text>a</text><!--" +
                                              tag + "-->"),
                                  "x.svg")),
              "A/Regular:a");
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

TEST(AFamily, IsReadOnceAndCutToTheLengthThatNamesHave) {
    std::string list = std::string(100'000, 'x') + "\xC3\xBC";
    for (int i = 0; i < 100'000; ++i) {
        list += ",B";
    }
    std::string spans;
    for (int i = 1000; i < 3000; ++i) {
        spans += "<tspan font-stretch='100." + std::to_string(i) + "%'>a</tspan>";
    }
    const Document document = read("<text font-family='" + list + "'>" + spans + "</text>");
    EXPECT_EQ(document.faces().size(), 201U); // by thousandths
    EXPECT_EQ(document.face(0).family, std::string(255, 'x'));
    const std::string name = std::string(254, 'x');
    EXPECT_EQ(read("<text font-family='" + name + "\xC3\xBC'>a</text>").face(0).family, name);
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
