// SPDX-License-Identifier: MIT
// Which declaration decides a run's face: one table of drawings and what they come to.
#include "drawings.h"

#include <gtest/gtest.h>

namespace host::test {
namespace {

const DrawingCase cases[] = {
    {"NoFamilyAtAll", "<text>a</text>", "<sans-serif>/Regular:a"},
    {"PresentationAttributes",
     "<text font-family='Foo' font-weight='bold' font-style='italic' "
     "font-stretch='condensed'>a</text>",
     "Foo/Condensed Bold Italic:a"},
    {"Inheritance", "<g font-family='Foo'><g font-weight='600'><text>a</text></g></g>",
     "Foo/SemiBold:a"},
    {"AttributeYieldsToRule", "<style>*{font-family:Bar}</style><text font-family='Foo'>a</text>",
     "Bar/Regular:a"},
    {"WiderThanTheWidest",
     "<g font-family='A' font-stretch='ultra-expanded'><text font-stretch='wider'>a</text></g>",
     "A/UltraExpanded:a"},
    {"ASlantWithItsAngle", "<text style='font:oblique 10deg bold 12px Foo'>a</text>",
     "Foo/Bold Oblique:a"},
    {"RuleYieldsToStyle",
     "<style>text{font-family:Bar}</style><text style='font-family:Foo'>a</text>", "Foo/Regular:a"},
    {"ImportantRuleBeatsStyle",
     "<style>text{font-family:Bar ! important}</style><text style='font-family:Foo'>a</text>",
     "Bar/Regular:a"},
    {"ImportantStyleBeatsImportantRule",
     "<style>text{font-family:Bar!important}</style>"
     "<text style='font-family:Foo!important;font-family:Other'>a</text>",
     "Foo/Regular:a"},
    {"SpecificityBeatsOrder",
     "<style>#i{font-family:Id} .c{font-family:Class} text{font-family:Type} "
     "*{font-family:Any}</style><text id='i' class='c'>a</text><text class='c'>b</text>"
     "<text>c</text>",
     "Id/Regular:a|Class/Regular:b|Type/Regular:c"},
    {"LaterRuleOfTheSameSpecificity",
     "<style>.a{font-family:A}.b{font-family:B}</style><text class='b a'>a</text>", "B/Regular:a"},
    {"SeveralSheetsInOneCascade",
     "<style>.a{font-family:A}</style><text class='a'>a</text><style>.a{font-family:B}</style>",
     "B/Regular:a"},
    {"SheetInCdata",
     "<style type='text/css'><![CDATA[ g > text { font-family: 'A & B' } ]]></style>"
     "<g><text>a</text></g>",
     "A & B/Regular:a"},
    {"OtherStyleLanguagesAndMedia",
     "<style type='text/x'>text{font-family:A}</style><style media='print'>text{font-family:B}"
     "</style><style media='print, screen'>text{font-weight:bold}</style>"
     "<style media='only screen'>text{font-style:italic}</style>"
     "<style media='ALL'>text{font-stretch:expanded}</style><text>a</text>",
     "<sans-serif>/Expanded Bold Italic:a"},
    {"ChildAndDescendant",
     "<style>g>text{font-family:A} svg text{font-style:italic} svg>text{font-weight:bold}</style>"
     "<g><text>a</text></g><text>b</text>",
     "A/Italic:a|<sans-serif>/Bold Italic:b"},
    {"DescendantPastAChildThatDoesNotFit",
     "<style>.o > .m text{font-family:A}</style>"
     "<g class='o'><g class='m'><g class='x'><g class='m'><text>a</text></g></g></g></g>",
     "A/Regular:a"},
    {"AttributeSelectors",
     "<style>[data-a]{font-family:A} [data-b='x y'] {font-weight:bold} [data-b~=y]{font-style:"
     "italic} [lang|=de]{font-stretch:expanded} [data-c^='ab'][data-c$=\"yz\"][data-c*=m]{"
     "font-family:C}</style><text data-a='' data-b='x y'>a</text><text lang='de-AT' "
     "data-c='abmyz'>b</text>",
     "A/Bold Italic:a|C/Expanded:b"},
    {"NamespacesInAttributeSelectors",
     "<style>[label]{font-family:A} [ink|label]{font-weight:bold} [*|label]{font-style:italic} "
     "[|id]{font-stretch:expanded}</style><text ink:label='x'>a</text><text label='x' id='i'>b"
     "</text>",
     "<sans-serif>/Bold Italic:a|A/Expanded Italic:b"},
    {"RanksOfAttributesAndPrefixes",
     "<style>@namespace s url(http://www.w3.org/2000/svg);[d^='']{font-family:X} "
     "[lang|=de]{font-weight:bold} s|text{font-weight:300;font-family:A} text{font-family:B}"
     "</style><text d='x' lang='de'>a</text>",
     "B/Bold:a"},
    {"LongClassLists",
     "<style>.a.z{font-family:A} .n{font-family:N} .q .z.q>.a{font-weight:bold}</style>"
     "<g class='q b c d e f g h i j k l m n1 o p q r s t u v w x y aa bb cc dd ee ff gg z'>"
     "<text class='z a b c d e f g h i j k l m o p q r s t u v w x y aa bb cc dd ee ff gg a a'>a"
     "</text></g>",
     "A/Regular:a"},
    {"GroupsOfSelectors", "<style>.x, #y , z{font-family:A}</style><text id='y'>a</text>",
     "A/Regular:a"},
    {"UnknownSelectorsMatchNothing",
     "<style>text:hover{font-family:A} text::before{font-family:A} "
     "text:nth-child(x){font-family:A} text:not(g text){font-family:A} text:is(){font-family:A} "
     "text:lang(de){font-family:A} +text{font-family:A} text~{font-family:A} "
     ">text{font-family:A} text>{font-family:A} .{font-family:A}</style><g/><text>a</text>",
     "<sans-serif>/Regular:a"},
    {"WhatStandsBesideWhat",
     "<style>rect + text{font-family:A} circle ~ text{font-weight:bold} "
     "title+rect+text{font-style:italic} title ~ title + rect + text{font-weight:300} "
     "text+text{font-stretch:expanded}</style>"
     "<text>a</text><title><desc/>x</title><rect/><text>b</text><circle/><g/>"
     "<text>c</text><text>d</text>",
     "<sans-serif>/Regular:a|A/Italic:b|<sans-serif>/Bold:c|<sans-serif>/Expanded Bold:d"},
    {"ThePlaceThatIsNotTheNearest",
     "<style>.o ~ .p + .p ~ text{font-family:A} .x > .y ~ g > text{font-weight:bold} "
     ".l ~ .m text{font-style:italic}</style>"
     "<g class='o'/><g class='p'/><g class='p'/><g class='p z'/><text>a</text>"
     "<g class='x'><g class='y'/><g class='y'/><g><text>b</text></g></g>"
     "<g class='l'/><g class='m'><g class='m'><text>c</text></g></g>",
     "<sans-serif>/Bold:b|<sans-serif>/Italic:c|A/Regular:a"},
    {"PlacesAmongChildren",
     "<style>text:first-child{font-family:F} text:last-child{font-family:L} "
     "text:only-child{font-family:O} text:nth-child(2n + 1){font-weight:bold} "
     "text:nth-last-child(2){font-style:italic}</style>"
     "<g><text>a</text><rect/><text>c</text><text>d</text></g><g><text>e</text></g>",
     "F/Bold:a|<sans-serif>/Bold Italic:c|L/Regular:d|O/Bold:e"},
    {"PlacesAmongThoseOfTheirType",
     "<style>text:first-of-type{font-family:F} text:last-of-type{font-family:L} "
     "text:only-of-type{font-family:O} text:nth-of-type(-n+2){font-weight:bold} "
     "text:nth-last-of-type(even){font-style:italic}</style>"
     "<g><rect/><text>a</text><rect/><text>b</text><text>c</text><rect/></g>"
     "<g><rect/><text>d</text></g>",
     "F/Bold:a|<sans-serif>/Bold Italic:b|L/Regular:c|O/Bold:d"},
    {"WhatAnElementIsNot",
     "<style>text:not(.a):not([d], #i){font-family:A} text:not(:first-of-type, .z){font-weight:"
     "bold} :not(g) > :not(:not(text)):not(:hover){font-style:italic}</style>"
     "<text class='a'>a</text><text>b</text><text d=''>c</text><g><text id='i'>d</text></g>",
     "<sans-serif>/Regular:d|<sans-serif>/Italic:a|A/Bold Italic:b|<sans-serif>/Bold Italic:c"},
    {"WhatAnElementIsOneOf",
     "<style>:is(text, tspan):where(.a, #i){font-family:A} text{font-family:B} "
     ":where(text#i){font-family:C} :is(.q, text.a){font-weight:bold}</style>"
     "<text class='a'>a</text><text id='i'>b</text>",
     "B/Bold:a|B/Regular:b"},
    {"AllInANotCounts",
     "<style>text:not(#x){font-family:A} text.a.b{font-family:B}</style>"
     "<text class='a b'>a</text>",
     "A/Regular:a"},
    {"RootAndNamespacePrefix",
     "<style>@namespace s url(http://www.w3.org/2000/svg);:root{font-weight:bold}"
     "s|text{font-family:A}</style><text>a</text>",
     "A/Bold:a"},
    {"AtRulesAreSkippedOrApplied",
     "<style>@charset \"utf-8\"; @import url(x.css); @media print{text{font-family:P}} "
     "@media screen { text{font-family:S} } @supports (a:b){text{font-family:X}} "
     "text{font-weight:bold}</style><text>a</text>",
     "S/Bold:a"},
    {"BrokenRulesDoNotHideTheNextOnes",
     "<style>} ; a{font-family:;;:x} text{font-weight:nonsense;font-weight:} /* } */ "
     "text{font-family:A}</style><text>a</text>",
     "A/Regular:a"},
    {"OpenStringsAndCommentsOfPages",
     "<style><![CDATA[<!-- text{font-family:A} .a{b:'c\n} text{font-weight:bold} -->]]></style>"
     "<text>a</text>",
     "A/Bold:a"},
    {"ShorthandResetsTheRest",
     "<text style='font-weight:bold;font-style:italic;font:12px Foo'>a</text>"
     "<text style='font:italic small-caps 600 condensed 12px/1.5 \"Foo Bar\", serif'>b</text>",
     "Foo/Regular:a|Foo Bar/Condensed SemiBold Italic:b"},
    {"DeclarationsBehindAShorthandWin",
     "<text style='font:bold 12px/14px Foo;font-weight:300'>a</text>", "Foo/Light:a"},
    {"ShorthandOfTheSystem", "<text style='font-family:Foo;font:menu'>a</text>",
     "<sans-serif>/Regular:a"},
    {"NumbersInAShorthand",
     "<text style='font:12 A'>a</text><text style='font:bold 80% B'>b</text>"
     "<text style='font:12px /1.5 C'>c</text><text style='font:12px/ 1.5 D'>d</text>",
     "A/Regular:a|B/Bold:b|C/Regular:c|D/Regular:d"},
    {"ShorthandThatInheritsAll",
     "<g style='font:italic 12px A'><text style='font-style:normal;font:inherit'>a</text></g>",
     "A/Italic:a"},
    {"ShorthandWithoutFamilyIsNone",
     "<text style='font-family:Foo;font:12px'>a</text>"
     "<text style='font-family:Foo;font:bold 12px inherit'>b</text>",
     "Foo/Regular:a|Foo/Regular:b"},
    {"RelativeWeights",
     "<g font-weight='300'><text font-family='A' font-weight='bolder'>a</text>"
     "<text font-family='A' font-weight='lighter'>b</text></g>"
     "<g font-weight='400'><text font-family='A'><tspan font-weight='bolder'>c<tspan "
     "font-weight='bolder'>d<tspan font-weight='lighter'>e</tspan></tspan></tspan></text></g>"
     "<g font-weight='600'><text font-family='A' font-weight='lighter'>f</text></g>",
     "A/Regular:a|A/Thin:b|A/Bold:c|A/Black:d|A/Bold:e|A/Regular:f"},
    {"RelativeStretch",
     "<g font-stretch='condensed'><text font-family='A' font-stretch='wider'>a</text>"
     "<text font-family='A' font-stretch='narrower'>b</text></g>",
     "A/SemiCondensed:a|A/ExtraCondensed:b"},
    {"NumbersAndPercents",
     "<text font-family='A' font-weight='850' font-stretch='62.5%'>a</text>"
     "<text font-family='A' font-weight='0'>b</text>"
     "<text font-family='A' font-style='oblique 10deg'>c</text>"
     "<text font-family='A' font-weight='1001' style='font-width:condensed'>d</text>",
     "A/ExtraCondensed Black:a|A/Regular:b|A/Oblique:c|A/Condensed:d"},
    {"InheritInitialUnset",
     "<g font-family='A' font-weight='bold'><text style='font-family:inherit;font-weight:"
     "initial'>a</text><text style='font-weight:unset;font-family:var(--x)'>b</text></g>",
     "A/Regular:a|A/Bold:b"},
    {"FirstOfAList", "<text font-family='Foo, Bar, sans-serif'>a</text>", "Foo/Regular:a"},
    {"GenericFirst", "<text font-family='serif, Foo'>a</text><text font-family='Sans'>b</text>",
     "<serif>/Regular:a|<Sans>/Regular:b"},
    {"QuotesAndBlanksInNames",
     "<text font-family='  Foo   Bar  '>a</text><text font-family='\"Foo, Bar\"'>b</text>"
     "<text style='font-family:&apos;Foo;Bar&apos;'>c</text><text font-family='Foo 55 Roman'>d"
     "</text>",
     "Foo Bar/Regular:a|Foo, Bar/Regular:b|Foo;Bar/Regular:c|Foo 55 Roman/Regular:d"},
    {"EscapesInNames",
     "<text style='font-family:\"M\\FC ller \\26 S\\F6hne\"'>a</text>"
     "<style>.k\\2e x{font-family:K\\000020L}</style><text class='k.x'>b</text>",
     "M\xC3\xBCller &S\xC3\xB6hne/Regular:a|K L/Regular:b"},
    {"LineEndsInNames", "<text style='font-family:\"Foo\\A Bar\"'>a</text>", "Foo Bar/Regular:a"},
    {"EntitiesInNames", "<text font-family='M&#xFC;ller &amp; S&#246;hne'>a</text>",
     "M\xC3\xBCller & S\xC3\xB6hne/Regular:a"},
    {"CaseOfNamesAndKeywords",
     "<text style='FONT-FAMILY:Foo;Font-Weight:BOLD;font-style:Italic'>a</text>",
     "Foo/Bold Italic:a"},
    {"CommentsInDeclarations",
     "<text style='/*x*/font-family/*y*/:Foo;/*z:*/font-weight:bold'>a</text>", "Foo/Bold:a"},
    {"CommentsInValues",
     "<text style='font-family: /* first, */ Foo/*x*/Bar /* ; */, B;font-weight:bold /* strong */'>"
     "a</text><style>.b{font:/**/italic 12px /* \"size\" */ 'A/*B*/C'/*}*/}</style>"
     "<text class='b'>b</text><text font-family='/* c */ D' font-weight='600/*x*/'>c</text>",
     "Foo Bar/Bold:a|A/*B*/C/Italic:b|D/SemiBold:c"},
    {"UrlsWithoutQuotesHideNothing",
     "<style>@font-face{font-family:E;src:url(data:x/*'y)}.a{fill:url( a/*b';\\) );font-family:A}"
     "</style><text class='a'>a</text><text font-family='E'>b</text>",
     "A/Regular:a|[E]/Regular:b"},
    {"BracketsInAShorthand",
     "<text style='font: calc(1em + 2px) CalcFont'>a</text>"
     "<text style='font:bold calc(1em + 2px) / calc(1 * 2) Foo, serif'>b</text>",
     "CalcFont/Regular:a|Foo/Bold:b"},
    {"PostScriptNameAsFamily",
     "<text font-family='Oswald-BoldItalic'>a</text><text font-family='Noto-Sans'>b</text>",
     "Oswald-BoldItalic/Bold Italic:a|Noto-Sans/Regular:b"},
    {"EmbeddedByFontFace",
     "<style>@font-face{font-family:'My Font';src:url(data:font/ttf;base64,AA==)}"
     "@font-face{font-family:Local;src:local('Arial')}</style>"
     "<text font-family='my font'>a</text><text font-family='Local'>b</text>",
     "[my font]/Regular:a|Local/Regular:b"},
    {"EmbeddedAsSvgFont",
     "<defs><font><font-face font-family='Old'/><glyph>x</glyph></font></defs>"
     "<text font-family='Old'>a</text>",
     "[Old]/Regular:a"},
};

class AStyle : public ADrawingOfATable {};

TEST_P(AStyle, IsDecided) {
    expectItsRuns();
}

INSTANTIATE_TEST_SUITE_P(Cascade, AStyle, testing::ValuesIn(cases), nameOfCase);

TEST(AStyleSheet, CostsABoundedAmountOfWork) {
    std::string sheet = "<style>";
    std::string body;
    SvgOptions options;
    options.maximumMatching = 10'000'000;
    for (int i = 0; i < 1500; ++i) {
        sheet += "*{font-weight:bold}";
        body += "<text>a</text>";
    }
    try {
        read("\n<g/>" + sheet + "</style>" + body, options);
        ADD_FAILURE();
    } catch (const DocumentError& error) {
        EXPECT_EQ(std::string(error.what()),
                  "test.svg:2:12: the style sheets are too large to match");
    }
}

/// Of each kind as many tests as take a minute when each looks at all there is.
TEST(AStyleSheet, LooksAtLongAttributesOnce) {
    std::string byClass;
    std::string byEnd;
    std::string classes;
    for (int i = 0; i < 1000; ++i) {
        const std::string number = std::to_string(i);
        byClass += ".k" + number + ".zz{font-family:A}";
        byEnd += "*[d$=\"z" + number + "\"]{font-family:A}";
        classes += "k" + number + " ";
    }
    std::string body;
    for (int i = 0; i < 1000; ++i) {
        body += "<text class='" + classes + "'>a</text>";
    }
    EXPECT_EQ(read("<style>" + byClass + "</style>" + body).faces().size(), 1U);

    const std::string path(40'000, 'M');
    body.clear();
    for (int i = 0; i < 100; ++i) {
        body += "<text d='" + path + "z" + std::to_string(i) + "'>a</text>";
    }
    const Document document = read("<style>" + byEnd + "</style>" + body);
    ASSERT_EQ(document.faces().size(), 1U);
    EXPECT_EQ(document.face(0).family, "A");

    // Where all has to be looked at again and again, there is an end to it.
    std::string inTheMiddle;
    SvgOptions options;
    options.maximumMatching = 100'000'000;
    for (int i = 0; i < 1000; ++i) {
        inTheMiddle += "*[d*='MMMMMMMMz" + std::to_string(i) + "x']{font-family:A}";
    }
    EXPECT_THROW(read("<style>" + inTheMiddle + "</style>" + body, options), DocumentError);
}

TEST(AStyle, KeepsThePostScriptNameThatStandsForTheFamily) {
    struct Name {
        const char* attributes;
        const char* postScriptName;
        const char* style;
    };
    for (const Name& c : {
             Name{"font-family='Oswald-Bold'", "Oswald-Bold", "Bold"},
             Name{"font-family='C059-BdIta, C059' font-weight='700' font-style='italic'",
                  "C059-BdIta", "Bold Italic"},
             Name{"font-family='C059-BdIta'", "C059-BdIta", "Bold Italic"},
             Name{"font-family='MinionPro-Disp'", "MinionPro-Disp", "Regular"},
             Name{"font-family='HelveticaNeueLTStd-BdCnO'", "HelveticaNeueLTStd-BdCnO",
                  "Condensed Bold Oblique"},
             Name{"font-family='AGaramondPro-Titling'", "AGaramondPro-Titling", "Regular"},
             Name{"font-family='AGaramondPro-Titling' font-weight='600'", "AGaramondPro-Titling",
                  "SemiBold"},
             Name{"font-family='Two Words-Bold'", "", "Regular"},
             Name{"font-family='M\xC3\xBCller-Fett'", "", "Regular"},
             Name{"font-family='Foo-'", "", "Regular"},
         }) {
        const Document document = read(std::string("<text ") + c.attributes + ">a</text>");
        const Face& face = document.faceOf(document.run(0));
        EXPECT_EQ(face.postScriptName, c.postScriptName) << c.attributes;
        EXPECT_EQ(face.style, c.style) << c.attributes;
    }
}

} // namespace
} // namespace host::test
