// SPDX-License-Identifier: MIT
// What the exchanges make of a reply.
#include "GLYEvent.h"
#include "Logger.h"
#include "misc/exception.h"
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

using namespace GLY;
using testing::AllOf;
using testing::EndsWith;
using testing::Property;
using testing::StartsWith;
using testing::Throws;

namespace {

using Record = Orvil::SmartPointer<GLYFontInfo>;
using Texts = std::vector<std::string>;

Texts trace;

/// "CONTEXT: TEXT" of every message since the last call.
Texts takeTrace() {
    return std::exchange(trace, {});
}

Record makeRecord(const std::string& syncID, const std::string& psName = "",
                  const std::string& containerID = "") {
    Record record(new GLYFontInfo);
    record->font.syncID = syncID;
    record->font.psName = psName;
    record->font.containerID = containerID;
    return record;
}

class AReply : public testing::Test {
protected:
    AReply() { takeTrace(); }
    ~AReply() override { EXPECT_EQ(platform_.liveDescriptors, 0); }

    /// Sends the event and answers with `elements`, one per line as the font manager writes them.
    Orvil::IXmlNode* exchange(GLYFontBasedEvent& event, const std::string& elements) {
        return answer(event, "<cmd>reply</cmd>\n" + elements + "\n</cmd>\n");
    }
    Orvil::IXmlNode* exchangeCurrent(GLYFontBasedEvent& event, const std::string& elements) {
        return exchange(event, "<protocolVersion>2.0</protocolVersion>\n" + elements);
    }
    Orvil::IXmlNode* answer(GLYFontBasedEvent& event, const std::string& reply) {
        platform_.answers = {scripted::textAnswer(reply)};
        event.build();
        return event.send();
    }
    static bool traced(const std::string& text) {
        const Texts taken = takeTrace();
        return std::find(taken.begin(), taken.end(),
                         "GLYController-GLYEvent::parseResult: " + text) != taken.end();
    }

    scripted::Platform platform_;
};

} // namespace

// Stands in this program for the sink of the plug-in's trace.
int Logger::level = 0;
bool Logger::initialized = false;
std::string Logger::filename;

void Logger::log(const std::string& text, const std::string& context, int /*level*/) {
    trace.push_back(context + ": " + text);
}

TEST_F(AReply, IsKeptAsItCameAndTraced) {
    GLYFontBuyEvent event;
    Orvil::IXmlNode* const root = exchangeCurrent(event, "<x>1 & 2</x>");
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(platform_.sent.at(0).directText(), event.command);
    EXPECT_EQ(event.result,
              "<cmd>reply<protocolVersion>2.0</protocolVersion><x>1 &amp; 2</x></cmd>");
    EXPECT_EQ(event.replyVersion, "2.0");
    EXPECT_EQ(event.succeeded, 1);
    EXPECT_EQ(root->getName(), "cmd");
    EXPECT_EQ(root->getFirstChild("x")->getContent(), "1 & 2");
    EXPECT_EQ(takeTrace(), (Texts{"GLYController-send: starting send message",
                                  "GLYController-send: ending send message",
                                  "GLYController-GLYEvent::parseResult: parser instance created",
                                  "GLYController-GLYEvent::parseResult: response parsed"}));
}

TEST_F(AReply, StaysReadableAsLongAsACopyOfItsEvent) {
    const auto exchanged = [this](Orvil::IXmlNode*& root) {
        GLYFontRequestEvent event;
        root = exchangeCurrent(event, "<x>1</x>");
        return event;
    };
    Orvil::IXmlNode* root = nullptr;
    const GLYFontRequestEvent first = exchanged(root);
    GLYFontRequestEvent copy = first;
    EXPECT_EQ(root->getFirstChild("x")->getContent(), "1");
    EXPECT_EQ(exchangeCurrent(copy, "<y/>")->getFirstChild("x"), nullptr);
    EXPECT_EQ(root->getFirstChild("x")->getContent(), "1");
}

TEST_F(AReply, ThatDoesNotComeIsNoSuccess) {
    GLYFontRequestEvent event;
    platform_.answers = {scripted::failedAnswer(procNotFound)};
    event.build();
    EXPECT_EQ(event.send(), nullptr);
    EXPECT_EQ(event.succeeded, 0);
    EXPECT_EQ(event.result, "");
    EXPECT_EQ(takeTrace(),
              (Texts{"GLYController-send: starting send message",
                     "GLYController-send: ending send message",
                     "GLYController-GLYFontRequestEvent::parseResult: starting parsing message"}));
}

TEST_F(AReply, MustBeOfVersionTwoOrLater) {
    for (const auto& [version, isAccepted] : std::vector<std::pair<std::string, bool>>{
             {"2", true}, {"10.7.1", true}, {"1.9", false}, {"", false}}) {
        GLYFontBuyEvent event;
        Orvil::IXmlNode* const root =
            exchange(event, "<protocolVersion>" + version + "</protocolVersion>");
        EXPECT_EQ(root != nullptr, isAccepted) << version;
        EXPECT_EQ(event.succeeded, isAccepted ? 1 : 0);
        EXPECT_EQ(event.replyVersion, version);
        EXPECT_EQ(traced("required version too low. version was: " + version), !isAccepted);
    }
    GLYFontBuyEvent event;
    EXPECT_EQ(exchange(event, "<x/>"), nullptr);
    EXPECT_TRUE(traced("no protocolversion tag suppled"));
}

TEST_F(AReply, ThatIsNotXmlTouchesNothing) {
    for (const std::string reply :
         {"no element", "<cmd>x</cmd>", "<cmd>\xff</cmd>\n</cmd>",
          "<!DOCTYPE a [<!ENTITY e 'x'>]><cmd>x</cmd>\n<psName>&e</psName>\n</b>"}) {
        GLYFontRequestEvent event;
        event.fonts = {makeRecord("1", "old")};
        event.replyVersion = "before";
        EXPECT_EQ(answer(event, reply), nullptr) << reply;
        EXPECT_EQ(event.succeeded, 0);
        EXPECT_EQ(event.replyVersion, "before");
        EXPECT_EQ(event.fonts[0]->font.psName, "old");
        EXPECT_TRUE(traced("unable to parse xml"));
    }
}

TEST_F(AReply, ToAFontRequestReplacesTheProtocolPartOfEachRecord) {
    GLYFontRequestEvent event;
    event.fonts = {makeRecord("a", "before"), makeRecord("none", "stays", "9"), makeRecord("b")};
    event.fonts[0]->font.handled = true;
    event.fonts[0]->chosenContainer = "5";
    event.fonts[1]->installed = 1;
    event.fonts[2]->installed = 1;
    ASSERT_NE(exchangeCurrent(event,
                              "<font><syncID>b</syncID><count>0</count></font>\n"
                              "<text>1</text><unknown><font/></unknown><!-- c -->\n"
                              "<font><activationSuccessfull>1</activationSuccessfull>"
                              "<containerID>9</containerID>"
                              "<fontInfo><name>1</name><value>one</value></fontInfo>"
                              "<type>OT_TT</type>"
                              "<typeMatchingContainerID>8</typeMatchingContainerID> "
                              "<isTypeMatchingActive>true</isTypeMatchingActive>"
                              "<typeMatchingCount>3x</typeMatchingCount>"
                              "<isActive>1</isActive><count> 2</count>"
                              "<familyName>F & G</familyName><styleName>S</styleName>"
                              "<psName>P</psName><syncID>a</syncID>"
                              "<fontInfo><name>2</name><value>two</value></fontInfo></font>"),
              nullptr);
    const Protocol::Font expected{
        "a", Protocol::Font::OT_TT,        "P",   "S", "F & G", 2, true, 3, true,
        "8", {{"1", "one"}, {"2", "two"}}, false, "9", true};
    EXPECT_EQ(event.fonts[0]->font, expected);
    EXPECT_EQ(event.fonts[0]->installed, 1);
    EXPECT_EQ(event.fonts[0]->chosenContainer, "5");
    EXPECT_EQ(event.fonts[1]->font, makeRecord("none", "stays", "9")->font);
    EXPECT_EQ(event.fonts[1]->installed, 1);
    EXPECT_EQ(event.fonts[2]->installed, 0);
    const std::string context = "GLYController-GLYFontRequestEvent::parseResult: ";
    EXPECT_EQ(Texts(trace.end() - 2, trace.end()),
              (Texts{context + "starting parsing message", context + "end parsing message"}));
}

TEST_F(AReply, TakesTheFirstReplyFontOfADuplicatedSyncIDForAllItsRecords) {
    GLYFontRequestEvent event;
    event.fonts = {makeRecord("a"), makeRecord("a")};
    exchangeCurrent(event, "<font><syncID>a</syncID><psName>first</psName></font>"
                           "<font><syncID>a</syncID><psName>second</psName></font>");
    EXPECT_EQ(event.fonts[0]->font.psName, "first");
    EXPECT_EQ(event.fonts[1]->font.psName, "first");
}

TEST_F(AReply, TellsWhetherTheDialogIsWanted) {
    GLYFontRequestEvent event;
    const std::pair<std::string, int> cases[] = {
        {"<showWindow>1</showWindow>", 1}, {"<font><count>1</count></font>", 1},
        {"<showWindow>0</showWindow>", 0}, {"<font><count>1</count></font>", 0},
        {"<showWindow>1</showWindow>", 1}, {"<showWindow>true</showWindow>", 0}};
    for (const auto& [element, wanted] : cases) {
        exchangeCurrent(event, element);
        EXPECT_EQ(event.showWindow, wanted) << element;
    }
}

TEST_F(AReply, WithABadFontThrowsAndTouchesNoRecord) {
    for (const auto& [child, expected] : std::vector<std::pair<std::string, std::string>>{
             {"<count>abc</count>", "could not parse <count> 'abc'"},
             {"<count/>", "could not parse <count> ''"},
             {"<typeMatchingCount>x</typeMatchingCount>",
              "could not parse <typeMatchingCount> 'x'"},
             {"<activationSuccessful>1</activationSuccessful>",
              "could not parse node in <font> 'activationSuccessful'"},
             {"<fontInfos/>", "could not parse node in <font> 'fontInfos'"},
             {"<font/>", "could not parse node in <font> 'font'"},
         }) {
        GLYFontRequestEvent event;
        event.fonts = {makeRecord("a", "old")};
        const std::string fonts =
            "<font><syncID>a</syncID><psName>new</psName></font><font>" + child + "</font>";
        EXPECT_THAT(
            [&] { exchangeCurrent(event, fonts); },
            Throws<Orvil::Exception>(Property(
                &Orvil::Exception::description,
                AllOf(StartsWith("Exception in file 'source/common/GLYController' at line "),
                      EndsWith("\n    User Message : " + expected)))));
        EXPECT_EQ(event.fonts[0]->font.psName, "old");
        EXPECT_EQ(event.succeeded, 0);
    }
    GLYFontRequestEvent event;
    EXPECT_THROW(exchangeCurrent(event, "<font><fontInfo><name>1</name></fontInfo></font>"),
                 Orvil::Exception);
}

TEST_F(AReply, ToAnActivationIsNeverASuccess) {
    GLYFontActivateEvent event;
    event.fonts = {makeRecord("a", "P", "7")};
    const Protocol::Font before = event.fonts[0]->font;
    EXPECT_EQ(exchangeCurrent(event, "<font><containerID>7</containerID><psName>Q</psName>"
                                     "<count>x</count></font><font/>"),
              nullptr);
    EXPECT_EQ(event.succeeded, 0);
    EXPECT_EQ(event.replyVersion, "2.0");
    EXPECT_EQ(event.fonts[0]->font, before);
}

TEST_F(AReply, ToAShowRequestSetsTypeAndCountByPostScriptName) {
    GLYFontInfoEvent event;
    event.fonts = {makeRecord("1", "P"), makeRecord("2", "P"), makeRecord("3", "Q")};
    EXPECT_NE(exchangeCurrent(event,
                              "<showWindow>1</showWindow>"
                              "<font><count>4 fonts</count><type>TT</type><psName>P</psName>"
                              "<familyName>ignored</familyName></font>"
                              "<font><psName>Q</psName><count>x</count><type>tt</type></font>"
                              "<font><psName>R</psName><count>1</count></font>"
                              "<font><count>1</count></font>"),
              nullptr);
    EXPECT_EQ(event.succeeded, 1);
    EXPECT_EQ(event.fonts[0]->font.type, Protocol::Font::TT);
    EXPECT_EQ(event.fonts[0]->font.count, 4U);
    EXPECT_EQ(event.fonts[0]->font.familyName, "");
    EXPECT_EQ(event.fonts[1]->font.count, 0U);
    EXPECT_EQ(event.fonts[2]->font.count, 0U);
    EXPECT_EQ(event.fonts[2]->font.type, Protocol::Font::all);
}
