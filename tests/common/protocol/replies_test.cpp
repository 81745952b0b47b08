// SPDX-License-Identifier: MIT
// Reading of reply documents.
#include "protocolhandler.h"
#include "protocolschema.h"
#include "samplefonts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <tuple>
#include <utility>

using namespace Protocol;

namespace {

/// Accepts every content, so that what the codec does by itself can be seen.
const std::string lenientSchema =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
    "<xs:element name='cmd'/><xs:element name='anything'/></xs:schema>";

std::string document(const std::string& content) {
    return "<cmd xmlns='http://glyphora.org/schema/GlyPluginCommunication_1.0'>\n  " + content +
           "\n</cmd>";
}

ReplyContainer parseStrictly(const std::string& content) {
    return Handler(schemaText).parseReply(document(content));
}

ReplyContainer parseLeniently(const std::string& content) {
    return Handler(lenientSchema).parseReply("<cmd>" + content + "</cmd>");
}

const std::string fontText = "<font syncID='id'><type>TT</type><psName>Oswald-Bold</psName>"
                             "<fontInfos><fontInfo><name>12</name><value>Oswald (2 files)</value>"
                             "</fontInfo></fontInfos></font>";

std::string fontWith(const std::string& child) {
    return "<activationRequestReply><f><font>" + child + "</font></f></activationRequestReply>";
}

/// How many of the four pointers are set.
int setPointers(const ReplyContainer& reply) {
    return int{reply.fontReply != nullptr} + int{reply.showReply != nullptr} +
           int{reply.buyReply != nullptr} + int{reply.activationReply != nullptr};
}

} // namespace

TEST(AReplyDocument, IsReadByItsKind) {
    const std::string fonts = "<!-- c --><fonts>\n" + fontText + "\n</fonts>";
    const std::string contents[] = {
        "<fontRequestReply><showWindow>1</showWindow>" + fonts + "</fontRequestReply>",
        "<showRequestReply>" + fonts + "</showRequestReply>",
        "<buyRequestReply><?p i?><handled>1</handled></buyRequestReply>",
        "<activationRequestReply><fonts><font syncID='a'><type>all</type></font></fonts>"
        "</activationRequestReply>",
    };
    for (int type = 0; type < 4; ++type) {
        const ReplyContainer reply = parseStrictly("<?p i?>" + contents[type]);
        EXPECT_EQ(reply.type, type);
        EXPECT_EQ(setPointers(reply), 1);
    }
    Font handled;
    handled.handled = true;
    EXPECT_EQ(parseStrictly(contents[2]).buyReply->font, handled);
}

TEST(AReplyDocument, HasAllOfAFontInAnyOrder) {
    Font expected = fullFont();
    expected.handled = false;
    const std::string children[] = {
        "<type>OT_TT</type>",
        "<psName>A<!-- &x; -->&amp;B<![CDATA[<]]>]]&gt;</psName>",
        "<styleName> \xf0\x9f\x98\x80&#13;</styleName>",
        "<familyName>\xc3\x84</familyName>",
        "<count> 4294967295</count>",
        "<isActive>1</isActive>",
        "<typeMatchingCount>3</typeMatchingCount>",
        "<isTypeMatchingActive>true</isTypeMatchingActive>",
        "<typeMatchingContainerID>5</typeMatchingContainerID>",
        R"(<fontInfos><fontInfo><name>1</name> <value>one</value></fontInfo><!-- --><?p i?>
           <fontInfo><?p i?><name>2</name><?p i?><value/></fontInfo></fontInfos>)",
        "<containerID>9</containerID>",
        "<activationSuccessfull>1</activationSuccessfull>",
    };
    std::string forward;
    std::string backward;
    for (const std::string& child : children) {
        forward += "\n  " + child;
        backward.insert(0, "<!-- c --><?p i?>" + child);
    }
    for (const std::string& order : {forward, backward}) {
        const std::string fonts =
            "<?p i?><fonts><?p i?><font syncID='s&#34;&amp;&#10;'>" + order + "</font></fonts>";
        const auto read = [&](const std::string& kind, const std::string& window) {
            return parseStrictly("<" + kind + ">" + window + fonts + "</" + kind + ">");
        };
        EXPECT_EQ(read("fontRequestReply", "<showWindow>1</showWindow>").fontReply->fonts,
                  FontList{expected});
        EXPECT_EQ(read("showRequestReply", "").showReply->fonts, FontList{expected});
        EXPECT_EQ(read("activationRequestReply", "").activationReply->fonts, FontList{expected});
    }
}

TEST(AReplyDocument, OfAFontRequestIsReadFromItsFirstTwoChildren) {
    const std::string fonts = "<fonts>" + fontText + "</fonts>";
    const std::string window = "<showWindow>1</showWindow>";
    const std::tuple<std::string, bool, std::size_t> cases[] = {
        {window + fonts, true, 1},
        {fonts + window, true, 1},
        {fonts + fonts + window, false, 2},
        {"<other/>" + window + fonts, true, 0},
        {"<other/>" + fonts + window, false, 1},
        {"<showWindow>yes</showWindow>" + fonts, false, 1},
        {"<!-- --> " + fonts + " <?p i?>" + window, true, 1},
        {window, true, 0},
        {"", false, 0}};
    for (const auto& [children, showWindow, fontCount] : cases) {
        const FontReply reply =
            *parseLeniently("<fontRequestReply>" + children + "</fontRequestReply>").fontReply;
        EXPECT_EQ(reply.showWindow, showWindow) << children;
        EXPECT_EQ(reply.fonts.size(), fontCount) << children;
    }
}

TEST(AReplyDocument, GivesPositionsAndNotNamesTheirMeaning) {
    EXPECT_EQ(parseLeniently("<showRequestReply><first>" + fontText + "</first><fonts>" + fontText +
                             fontText + "</fonts></showRequestReply>")
                  .showReply->fonts.size(),
              1U);
    EXPECT_TRUE(parseLeniently("<buyRequestReply><any>true</any></buyRequestReply>")
                    .buyReply->font.handled);
    EXPECT_FALSE(parseLeniently("<buyRequestReply/>").buyReply->font.handled);
    EXPECT_TRUE(parseLeniently("<activationRequestReply/>").activationReply->fonts.empty());
    EXPECT_EQ(Handler(lenientSchema)
                  .parseReply("<anything><buyRequestReply><h>1</h></buyRequestReply>"
                              "<fontRequestReply/></anything>")
                  .type,
              2);
}

TEST(AReplyDocument, TakesTheLastOfAChildThatOccursTwiceAndAllInfos) {
    const std::string info = "<fontInfos><i><a>1</a><b>x</b></i></fontInfos>";
    const FontList fonts =
        parseLeniently("<activationRequestReply><f><font syncID='a'><psName>a</psName>" + info +
                       info + "<psName>b</psName></font></f></activationRequestReply>")
            .activationReply->fonts;
    EXPECT_EQ(fonts.front().psName, "b");
    EXPECT_EQ(fonts.front().fontInfos, (std::list<Font::Info>{{"1", "x"}, {"1", "x"}}));
}

TEST(AReplyDocument, IsRefusedWithTheReason) {
    const std::tuple<std::string, std::string, int> cases[] = {
        {"<unknown/>", "could not parse root node 'unknown'", 923},
        {"", "could not parse root node ''", 923},
        {"<fontRequestReply><fonts><font syncID='1'><type>TT</type><psName>a</psName></font>"
         "</fonts></fontRequestReply>",
         "fontInfos must contain at least fontInfo", 584},
        {fontWith("<count>x7</count>"), "could not parse <count> 'x7'", 1071},
        {fontWith("<count/>"), "could not parse <count> ''", 1071},
        {fontWith("<typeMatchingCount>99999999999</typeMatchingCount>"),
         "could not parse <typeMatchingCount> '99999999999'", 1082},
        {fontWith("<type>tt</type>"), "could not parse <font><type>tt</type>...", 72},
        {fontWith("<activationSuccessful>1</activationSuccessful>"),
         "could not parse node in <font> 'activationSuccessful'", 1111},
        {fontWith("<syncID>1</syncID>"), "could not parse node in <font> 'syncID'", 1111},
        {fontWith("<fontInfo/>"), "could not parse node in <font> 'fontInfo'", 1111},
        {fontWith("<handled>1</handled>"), "could not parse node in <font> 'handled'", 1111},
    };
    for (const auto& [content, message, line] : cases) {
        EXPECT_EQ(failureOf([&text = content] { parseLeniently(text); }),
                  protocolFailure(message, line));
    }
    for (const char* const entry : {"<e/>", "<e>text</e>", "<e><name>1</name></e>"}) {
        EXPECT_THROW(parseLeniently(fontWith(std::string("<fontInfos>") + entry + "</fontInfos>")),
                     Orvil::Exception)
            << entry;
    }
}

TEST(AReplyDocument, MustNotDeclareEntities) {
    for (const std::string entity :
         {"<!ENTITY m SYSTEM 'file:///etc/passwd'>", "<!ENTITY m 'x'>", "<!ENTITY % m 'x'>"}) {
        const std::string text = "<!DOCTYPE cmd [" + entity + "]>" + document("<nothing/>");
        EXPECT_NE(failureOf([&] {
                      std::ignore = Handler(schemaText).parseReply(text);
                  }).find("a reply must not declare entities"),
                  std::string::npos)
            << entity;
    }
}

TEST(AReplyDocument, ThatTheSchemaRejectsIsReportedAndRefused) {
    Handler handler(schemaText);
    testing::internal::CaptureStderr();
    const std::string bad = document("<buyRequestReply><handled>x</handled></buyRequestReply>");
    EXPECT_THAT(
        [&] { std::ignore = handler.parseReply(bad); },
        testing::ThrowsMessage<std::runtime_error>("could not validate XML, TODO: logging"));
    const std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_EQ(printed.find("Error from XSD validation:Element '"), 0U) << printed;
    EXPECT_EQ(printed.back(), '\n');

    // Nothing of it remains, and nothing is printed of a valid one.
    testing::internal::CaptureStderr();
    EXPECT_TRUE(handler
                    .parseReply(document("<buyRequestReply><handled>1</handled>"
                                         "</buyRequestReply>"))
                    .buyReply->font.handled);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(AHandler, NeedsASchemaThatCompiles) {
    for (const char* const schema : {"no schema", ""}) {
        EXPECT_THROW(Handler{schema}, Orvil::Exception);
    }
}

TEST(ABoolean, IsTrueForTwoTextsOnly) {
    EXPECT_TRUE(HandlerHelpers::parseBoolean("true"));
    EXPECT_TRUE(HandlerHelpers::parseBoolean("1"));
    for (const char* const text : {"TRUE", "yes", "false", "0", "", " 1", "true ", "11"}) {
        EXPECT_FALSE(HandlerHelpers::parseBoolean(text)) << text;
    }
}

TEST(ANumber, IsReadAsAStreamReadsIt) {
    const std::tuple<std::string, unsigned, bool> cases[] = {{"7", 7, true},
                                                             {" \t\n\v\f\r7", 7, true},
                                                             {"12abc", 12, true},
                                                             {"+5", 5, true},
                                                             {"-1", 4294967295U, true},
                                                             {"4294967295", 4294967295U, true},
                                                             {"x7", 0, false},
                                                             {"4294967296", 4294967295U, false},
                                                             {"", 0, false},
                                                             {"+-5", 0, false},
                                                             {"- 5", 0, false}};
    for (const auto& [text, expected, isRead] : cases) {
        bool ok = !isRead;
        EXPECT_EQ(safeParse<unsigned>(text, ok), expected) << text;
        EXPECT_EQ(ok, isRead) << text;
    }
}
