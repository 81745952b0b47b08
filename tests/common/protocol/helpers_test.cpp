// SPDX-License-Identifier: MIT
// Reading of font elements, their infos, truth values and numbers.
#include "misc/xml/ixmlparser.h"
#include "protocolhandler.h"
#include "samplefonts.h"

#include <gtest/gtest.h>

#include <tuple>
#include <utility>

using namespace Protocol;

namespace {

Font parseFontText(const std::string& text) {
    const Orvil::XmlDocumentHolder document;
    document->parseString(text);
    return HandlerHelpers::parseFont(document->getRootNode());
}

} // namespace

TEST(ABoolean, IsTrueForTwoTextsOnly) {
    EXPECT_TRUE(HandlerHelpers::parseBoolean("true"));
    EXPECT_TRUE(HandlerHelpers::parseBoolean("1"));
    for (const char* const text : {"TRUE", "True", "yes", "false", "0", "", " 1", "true ", "11"}) {
        EXPECT_FALSE(HandlerHelpers::parseBoolean(text)) << text;
    }
}

TEST(ANumber, IsReadAsAStreamReadsIt) {
    const std::tuple<std::string, unsigned, bool> cases[] = {{"7", 7, true},
                                                             {" \t\n\v\f\r7", 7, true},
                                                             {"12abc", 12, true},
                                                             {"+5", 5, true},
                                                             {"007", 7, true},
                                                             {"-1", 4294967295U, true},
                                                             {"4294967295", 4294967295U, true},
                                                             {"4294967296", 4294967295U, false},
                                                             {"x7", 0, false},
                                                             {"", 0, false},
                                                             {"+-5", 0, false},
                                                             {"- 5", 0, false}};
    for (const auto& [text, expected, isRead] : cases) {
        bool ok = !isRead;
        EXPECT_EQ(safeParse<unsigned>(text, ok), expected) << text;
        EXPECT_EQ(ok, isRead) << text;
    }
}

TEST(AFontElement, TakesTheLastOfAChildThatOccursTwiceAndAllInfos) {
    EXPECT_EQ(parseFontText("<font/>"), Font());
    const Font font = parseFontText("<font><psName>a</psName><psName>b</psName>"
                                    "<fontInfos><i><a>1</a><b>x</b></i></fontInfos>"
                                    "<fontInfos><i><a>2</a><b>y</b></i></fontInfos></font>");
    EXPECT_EQ(font.psName, "b");
    EXPECT_EQ(font.fontInfos, (std::list<Font::Info>{{"1", "x"}, {"2", "y"}}));
}

TEST(AFontElement, IsRefusedWithTheReason) {
    const std::pair<std::string, std::string> cases[] = {
        {"<count>x7</count>", protocolFailure("could not parse <count> 'x7'", 1071)},
        {"<count/>", protocolFailure("could not parse <count> ''", 1071)},
        {"<typeMatchingCount>99999999999</typeMatchingCount>",
         protocolFailure("could not parse <typeMatchingCount> '99999999999'", 1082)},
        {"<type>tt</type>", protocolFailure("could not parse <font><type>tt</type>...", 72)},
        {"<activationSuccessful>1</activationSuccessful>",
         protocolFailure("could not parse node in <font> 'activationSuccessful'", 1111)},
        {"<syncID>1</syncID>", protocolFailure("could not parse node in <font> 'syncID'", 1111)},
        {"<fontInfo><a/><b/></fontInfo>",
         protocolFailure("could not parse node in <font> 'fontInfo'", 1111)},
        {"<handled>1</handled>", protocolFailure("could not parse node in <font> 'handled'", 1111)},
    };
    for (const auto& [child, failure] : cases) {
        const std::string text = "<font>" + child + "</font>";
        EXPECT_EQ(failureOf([&] { parseFontText(text); }), failure);
    }
    for (const char* const entry : {"<e/>", "<e>text</e>", "<e><name>1</name></e>"}) {
        EXPECT_THROW(
            parseFontText(std::string("<font><fontInfos>") + entry + "</fontInfos></font>"),
            Orvil::Exception)
            << entry;
    }
}
