// SPDX-License-Identifier: MIT
// The command texts of the exchanges, byte for byte, and how one is exchanged for a reply by Apple
// events, in virtual time.
#include "GLYEvent.h"
#include "GLYNotifyHandler.h"
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <array>
#include <new>

using namespace GLY;
using scripted::Answer;
using scripted::failedAnswer;
using scripted::textAnswer;

namespace {

using Record = Orvil::SmartPointer<GLYFontInfo>;

const std::string application = "<targetApp>ART5</targetApp>\n"
                                "<targetClass>FILC</targetClass>\n"
                                "<targetPid>" +
                                std::to_string(getpid()) + "</targetPid>\n";

/// Only what every font has.
Record bareRecord() {
    Record record(new GLYFontInfo);
    record->font.syncID = "s1";
    record->font.psName = "P1";
    return record;
}

/// Everything that can be written, with characters that are not escaped.
Record fullRecord() {
    Record record = bareRecord();
    record->font.syncID = "s & 2";
    record->font.psName = "P<2>";
    record->font.type = Protocol::Font::OT_T1;
    record->font.familyName = " M\xc3\xbcller & Co ";
    record->font.styleName = "Bold";
    record->font.containerID = "7";
    record->chosenContainer = "12";
    return record;
}

template <typename Event>
std::string commandOf(const std::vector<Record>& records) {
    Event event;
    event.fonts = records;
    event.build();
    event.build(); // replaces the text, does not append
    return event.command;
}

} // namespace

TEST(AFontRequest, NamesTheHostTheVersionAndTheFonts) {
    const std::string head =
        "<cmd>fontRequest</cmd>\n" + application + "<protocolVersion>1.00</protocolVersion>\n";
    EXPECT_EQ(commandOf<GLYFontRequestEvent>({}), head + "</cmd>\n");
    EXPECT_EQ(commandOf<GLYFontRequestEvent>({bareRecord(), fullRecord()}),
              head + "<font>\n<syncID>s1</syncID>\n<psName>P1</psName>\n</font>\n"
                     "<font>\n<syncID>s & 2</syncID>\n<psName>P<2></psName>\n<type>OT_T1</type>\n"
                     "<familyName> M\xc3\xbcller & Co </familyName>\n"
                     "<styleName>Bold</styleName>\n</font>\n</cmd>\n");
}

TEST(ALaterRequest, NamesWhatItNeedsOfContainersHostAndFonts) {
    const std::vector<Record> fonts{bareRecord(), fullRecord()};
    EXPECT_EQ(commandOf<GLYFontActivateEvent>(fonts),
              "<cmd>activationRequest</cmd>\n"
              "<font>\n<containerID></containerID>\n<psName>P1</psName>\n</font>\n"
              "<font>\n<containerID>12</containerID>\n<psName>P<2></psName>\n</font>\n</cmd>\n");
    EXPECT_EQ(commandOf<GLYFontInfoEvent>(fonts),
              "<cmd>showRequest</cmd>\n" + application +
                  "<font>\n<psName>P1</psName>\n</font>\n"
                  "<font>\n<containerID>12</containerID>\n<psName>P<2></psName>\n"
                  "<type>OT_T1</type>\n</font>\n</cmd>\n");
    EXPECT_EQ(commandOf<GLYFontBuyEvent>(fonts),
              "<cmd>buyRequest</cmd>\n<font>\n<psName>P1</psName>\n</font>\n"
              "<font>\n<psName>P<2></psName>\n</font>\n</cmd>\n");
}

TEST(AChosenContainer, CountsWhenItReadsAsANumberOfAtLeastOne) {
    for (const auto& [chosen, counts] : std::vector<std::pair<std::string, bool>>{
             {"1", true}, {"12 fonts", true}, {"0", false}, {"-1", false}, {"", false}}) {
        const Record record = bareRecord();
        record->font.containerID = "7";
        record->chosenContainer = chosen;
        const std::string line = "<containerID>" + chosen + "</containerID>\n";
        const std::string fallBack = "<containerID>7</containerID>\n";
        EXPECT_EQ(commandOf<GLYFontActivateEvent>({record}),
                  "<cmd>activationRequest</cmd>\n<font>\n" + (counts ? line : fallBack) +
                      "<psName>P1</psName>\n</font>\n</cmd>\n");
        EXPECT_EQ(commandOf<GLYFontInfoEvent>({record}),
                  "<cmd>showRequest</cmd>\n" + application + "<font>\n" + (counts ? line : "") +
                      "<psName>P1</psName>\n</font>\n</cmd>\n");
    }
}

namespace {

class ACommand : public testing::Test {
protected:
    ~ACommand() override { EXPECT_EQ(platform_.liveDescriptors, 0); }

    static std::string send(const std::string& command = "<cmd>x</cmd>\n</cmd>\n") {
        return GLY::NotifiyHandlerFactory::getNotifyHandler(false)->SendToGly(command);
    }

    scripted::Platform platform_;
};

Answer typedAnswer(AEKeyword keyword, DescType type, const std::string& bytes) {
    Answer answer;
    answer.parameters.emplace_back(keyword, scripted::Parameter{type, bytes});
    return answer;
}

Answer throwingAnswer() {
    Answer answer;
    answer.effect = [] { throw std::bad_alloc(); };
    return answer;
}

} // namespace

TEST_F(ACommand, TravelsAsTheDirectTextOfOneEvent) {
    platform_.answers = {textAnswer("<cmd>r</cmd>\n<a>&</a>\n</cmd>")};
    const std::string command("line\n\xc3\xa4\0end", 11);
    EXPECT_EQ(send(command), "<cmd>r<a>&amp;</a></cmd>");
    ASSERT_EQ(platform_.sent.size(), 1U);
    const scripted::SentEvent& event = platform_.sent[0];
    EXPECT_EQ((std::pair(event.eventClass, event.eventID)),
              (std::pair(FourCharCode("QGLY"), FourCharCode("****"))));
    EXPECT_EQ((std::pair(event.target.type, event.target.bytes)),
              (std::pair(FourCharCode("sign"), std::string("QGLY"))));
    EXPECT_THAT((std::array<std::int32_t, 5>{event.returnID, event.transactionID, event.sendMode,
                                             event.priority, event.timeOut}),
                testing::ElementsAre(-1, 0, 3, 0, -1));
    ASSERT_EQ(event.parameters.size(), 1U);
    EXPECT_EQ(event.directText(), command);
    EXPECT_TRUE(platform_.delays.empty());
}

TEST_F(ACommand, IsSentTwentyTimesWithHalfASecondBetween) {
    platform_.answers = {failedAnswer(procNotFound)};
    EXPECT_EQ(send(), "");
    EXPECT_EQ(platform_.sent.size(), 20U);
    EXPECT_EQ(platform_.delays, std::vector<std::uint32_t>(20, 30));
    EXPECT_DOUBLE_EQ(platform_.now, 10.0);
}

TEST_F(ACommand, IsAnsweredBySoonerOrLaterWhateverFailedBefore) {
    Answer unreadable = textAnswer("lost");
    unreadable.fetchStatus = errAECorruptData;
    const Answer good = textAnswer("good");
    platform_.answers = {failedAnswer(connectionInvalid),
                         typedAnswer(FourCharCode("errn"), typeSInt32, "1234"), // not a text
                         Answer(), // no parameter at all
                         unreadable, good};
    EXPECT_EQ(send(), "good");
    EXPECT_EQ(platform_.sent.size(), 5U);
    EXPECT_EQ(platform_.delays.size(), 4U);

    // On the last attempt as well.
    platform_.sent.clear();
    platform_.answers.assign(19, failedAnswer(errAETimeout));
    platform_.answers.push_back(good);
    EXPECT_EQ(send(), "good");
    EXPECT_EQ(platform_.sent.size(), 20U);
}

TEST_F(ACommand, IsGivenUpAfterAnEmptyReply) {
    platform_.answers = {failedAnswer(procNotFound), textAnswer("")};
    EXPECT_EQ(send(), "");
    EXPECT_EQ(platform_.sent.size(), 2U);
    EXPECT_EQ(platform_.delays.size(), 2U);
}

TEST_F(ACommand, IsRepeatedAfterAnExceptionOnlyIfTheLastStatusWasAnError) {
    platform_.answers = {throwingAnswer(), textAnswer("too late")};
    EXPECT_EQ(send(), "");
    EXPECT_EQ(platform_.sent.size(), 1U);
    EXPECT_EQ(platform_.delays.size(), 1U);

    platform_.answers = {failedAnswer(procNotFound), throwingAnswer(), textAnswer("in time")};
    EXPECT_EQ(send(), "in time");
}

TEST_F(ACommand, IsNotSentWhenItsEventCannotBeMade) {
    platform_.answers = {textAnswer("unheard")};
    for (OSErr scripted::Platform::*const status :
         {&scripted::Platform::createDescStatus, &scripted::Platform::createEventStatus,
          &scripted::Platform::putParameterStatus}) {
        platform_.*status = memFullErr;
        EXPECT_EQ(send(), "");
        platform_.*status = noErr;
    }
    EXPECT_TRUE(platform_.sent.empty());
    EXPECT_TRUE(platform_.delays.empty());
}

TEST_F(ACommand, TakesTheFirstParameterOfTheReplyWhateverItsName) {
    Answer answer = typedAnswer(FourCharCode("any1"), typeChar, "first");
    answer.parameters.emplace_back(keyDirectObject, scripted::Parameter{typeChar, "second"});
    platform_.answers = {answer};
    EXPECT_EQ(send(), "first");
}
