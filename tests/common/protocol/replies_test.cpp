// SPDX-License-Identifier: MIT
// Reading of reply documents.
#include "protocolhandler.h"
#include "protocolschema.h"
#include "samplefonts.h"

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
        "<buyRequestReply><handled>1</handled></buyRequestReply>",
        "<activationRequestReply><fonts><font syncID='a'><type>all</type></font></fonts>"
        "</activationRequestReply>",
    };
    for (int type = 0; type < 4; ++type) {
        const ReplyContainer reply = parseStrictly(contents[type]);
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
        R"(<fontInfos><fontInfo><name>1</name> <value>one</value></fontInfo><!-- -->
           <fontInfo><name>2</name><value/></fontInfo></fontInfos>)",
        "<containerID>9</containerID>",
        "<activationSuccessfull>1</activationSuccessfull>",
    };
    std::string forward;
    std::string backward;
    for (const std::string& child : children) {
        forward += "\n  " + child;
        backward.insert(0, "<!-- c -->" + child);
    }
    for (const std::string& order : {forward, backward}) {
        const std::string fonts =
            "<fonts><font syncID='s&#34;&amp;&#10;'>" + order + "</font></fonts>";
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

TEST(AReplyDocument, MayHaveProcessingInstructionsEverywhere) {
    std::string content = "<fontRequestReply><fonts>" + fontText + fontText +
                          "</fonts><showWindow>1</showWindow></fontRequestReply>";
    for (std::size_t at = content.find('<'); at != std::string::npos;) {
        content.insert(at, "<?count x?>");
        at = content.find('<', at + 12);
    }
    const ReplyContainer reply = parseStrictly(content);
    EXPECT_TRUE(reply.fontReply->showWindow);
    EXPECT_EQ(reply.fontReply->fonts, (FontList{soundFont(), soundFont()}));
    for (const char* const kind : {"showRequestReply", "activationRequestReply"}) {
        EXPECT_EQ(setPointers(parseStrictly(std::string("<?a?><") + kind + "><?b?><fonts><?c?>" +
                                            fontText + "<?d?></fonts><?e?></" + kind + "><?f?>")),
                  1);
    }
    EXPECT_TRUE(parseStrictly("<buyRequestReply><?a?><handled>1</handled></buyRequestReply>")
                    .buyReply->font.handled);
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

TEST(AReplyDocument, IsRefusedWithTheReason) {
    const std::pair<std::string, std::string> cases[] = {
        {"<unknown/>", protocolFailure("could not parse root node 'unknown'", 923)},
        {"", protocolFailure("could not parse root node ''", 923)},
        {"<showRequestReply><f><font><count>x7</count></font></f></showRequestReply>",
         protocolFailure("could not parse <count> 'x7'", 1071)},
        {"<fontRequestReply><fonts><font syncID='1'><type>TT</type><psName>a</psName></font>"
         "</fonts><showWindow>1</showWindow></fontRequestReply>",
         protocolFailure("fontInfos must contain at least fontInfo", 584)},
        {"<showRequestReply><f><font syncID='1'><psName>a</psName></font></f>"
         "</showRequestReply>",
         protocolFailure("type of font must not be 'all' in Replies", 578)},
        {"<activationRequestReply><f><font><psName>a</psName></font></f>"
         "</activationRequestReply>",
         protocolFailure("syncID must contain at least one character", 566)},
    };
    for (const auto& [text, failure] : cases) {
        const std::string& content = text;
        EXPECT_EQ(failureOf([&] { parseLeniently(content); }), failure);
    }
}

TEST(AReplyDocument, ThatTheSchemaRejectsIsReportedAndRefused) {
    Handler handler(schemaText);
    testing::internal::CaptureStderr();
    try {
        handler.parseReply(document("<buyRequestReply><handled>x</handled></buyRequestReply>"));
        ADD_FAILURE() << "accepted";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "could not validate XML, TODO: logging");
    }
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
    testing::internal::CaptureStderr();
    EXPECT_THROW(Handler("no schema"), Orvil::Exception);
    EXPECT_THROW(Handler(""), Orvil::Exception);
    testing::internal::GetCapturedStderr();
}
