// SPDX-License-Identifier: MIT
// The exchange of a command for a reply by Apple events, in virtual time.
#include "GLYNotifyHandler.h"
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include <gtest/gtest.h>

#include <new>

using scripted::Answer;
using scripted::failedAnswer;
using scripted::textAnswer;

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
    EXPECT_EQ(event.eventClass, FourCharCode("QGLY"));
    EXPECT_EQ(event.eventID, FourCharCode("****"));
    EXPECT_EQ(event.target.type, FourCharCode("sign"));
    EXPECT_EQ(event.target.bytes, "QGLY");
    EXPECT_EQ(event.returnID, -1);
    EXPECT_EQ(event.transactionID, 0);
    EXPECT_EQ(event.sendMode, 3);
    EXPECT_EQ(event.priority, 0);
    EXPECT_EQ(event.timeOut, -1);
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
