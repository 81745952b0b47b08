// SPDX-License-Identifier: MIT
// What the user is told of an error, and when.
#include "tests/support/plugin/recordingplugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <tuple>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::int32_t errors = 16050;

std::time_t now = 0;

class AnError : public testing::Test {
protected:
    AnError() {
        sSPBasic = host.basic();
        host.strings[errors] = {{1, "ABCD"}, {2, "four letters: %s"}, {3, "-50"}, {4, "number %s"},
                                {5, "0"},    {6, "other %s"}};
        now = 1000;
        Plugin::clock = [] { return now; };
    }
    ~AnError() override {
        EXPECT_THAT(host.acquired, IsEmpty());
        EXPECT_EQ(sADMBasic, nullptr);
        Plugin::clock = realClock_;
    }
    std::vector<std::string> shown(AIErr error) {
        host.errorAlerts.clear();
        Plugin::DefaultError(&host.plugin, error);
        return host.errorAlerts;
    }

    scripted::Host host;

private:
    std::time_t (*realClock_)() = Plugin::clock;
};

TEST_F(AnError, IsShownWithItsMessageAndCode) {
    const std::pair<AIErr, const char*> cases[] = {
        {FourChars("ABCD"), "four letters: ABCD"},
        {-50, "number -50"},
        {50, "other 50"},
        {-1, "other -1"},
        {16384, "other 16384"},
        // One more is no number any longer, but four characters, of which two are zero.
        {16385, "other "},
        {FourChars("ABCE"), "other ABCE"},
        {FourChars("!MEM"), "other !MEM"},
    };
    for (const auto& [error, text] : cases) {
        EXPECT_THAT(shown(error), ElementsAre(text)) << error;
    }
}

TEST_F(AnError, OfAQuietCodeIsNotShown) {
    const char codes[16][5] = {{"FMT?"}, {"RFSE"}, {"AFTR"}, {"VALD"}, {"MOOT"}, {"TRSH"},
                               {"CHEK"}, {"CHIT"}, {"TLTK"}, {"pFls"}, {"S!Fd"}, {"!Acq"},
                               {"dsRP"}, {"skpE"}, {"DONE"}, {"STOP"}};
    RecordingPlugin plugin(host);
    for (const auto& code : codes) {
        EXPECT_TRUE(Plugin::FilterError(FourChars(code))) << code;
        plugin.Plugin::ReportError(FourChars(code), "", "", nullptr);
        EXPECT_THAT(shown(FourChars(code)), IsEmpty()) << code;
    }
    EXPECT_THAT(host.acquisitions, IsEmpty());
    EXPECT_FALSE(Plugin::FilterError(0));
    EXPECT_FALSE(Plugin::FilterError(FourChars("stop")));
}

TEST_F(AnError, FindsItsMessageByTheCodeBeforeIt) {
    // A list, an error, and its message; null: none.
    const std::tuple<std::map<std::int32_t, std::string>, AIErr, const char*> cases[] = {
        {{}, 1, nullptr},
        {{{2, "without a code"}}, 1, nullptr},
        {{{1, "7"}, {2, "seven"}, {3, "8"}, {4, "eight"}}, 8, "eight"},
        {{{1, "7"}, {2, "seven"}, {3, "8"}, {4, "eight"}}, 9, "eight"},
        {{{1, "7"}, {2, "seven"}, {3, ""}, {4, "eight"}, {5, "9"}, {6, "nine"}}, 9, "seven"},
        {{{1, "7"}, {3, "8"}, {4, "eight"}}, 7, nullptr}, // its own message is missing
        {{{1, "7"}, {2, "seven"}, {3, "8"}}, 9, nullptr}, // so is the last one
        {{{1, "-12 x"}, {2, "minus"}, {3, "0"}, {4, "rest"}}, -12, "minus"},
        {{{1, "-"}, {2, "dash"}, {3, "1"}, {4, "rest"}}, 0, "dash"},
        {{{1, "ABCDEF"}, {2, "longer"}, {3, "0"}, {4, "rest"}}, FourChars("ABCD"), "longer"},
        {{{1, "AB"}, {2, "shorter"}, {3, "0"}, {4, "rest"}}, 0x41420000, "shorter"},
        {{{1, "1234567890"}, {2, "cut"}, {3, "0"}, {4, "rest"}}, 123456789, "cut"},
    };
    Suites suites;
    Suites::fAcquiredCount = 1;
    for (const auto& [list, error, message] : cases) {
        SCOPED_TRACE(testing::PrintToString(list));
        host.strings[errors] = list;
        std::array<char, 128> buffer{};
        buffer.fill('x');
        EXPECT_EQ(Plugin::FindMsg(&host.plugin, error, buffer.data(), 128), message != nullptr);
        EXPECT_STREQ(buffer.data(), message != nullptr ? message : "");
    }
}

TEST_F(AnError, IsFormattedOnlyIntoAMessageBelowTheLimit) {
    const std::string almost = "%s" + std::string(117, 'a'); // 119 bytes
    const std::pair<std::string, std::string> cases[] = {
        {almost, "5" + std::string(117, 'a')},
        {almost + "a", almost + "a"},
        {std::string(200, 'b'), std::string(127, 'b')},
        {"100 %% of %s, not %s; %d %n %", "100 % of 5, not %s; %d %n %"},
        {"no place for it", "no place for it"},
    };
    for (const auto& [message, text] : cases) {
        host.strings[errors] = {{1, "5"}, {2, message}};
        EXPECT_THAT(shown(5), ElementsAre(text));
    }
}

TEST_F(AnError, IsNotShownWithoutAMessageOrASuite) {
    host.strings[errors] = {};
    EXPECT_THAT(shown(5), IsEmpty());
    host.strings[errors] = {{1, "5"}, {2, "five"}};
    host.missingAcquisition = static_cast<int>(host.acquisitions.size()) + 1;
    EXPECT_THAT(shown(5), IsEmpty());
    sSPBasic = nullptr;
    EXPECT_THAT(shown(5), IsEmpty());
}

TEST_F(AnError, BorrowsTheSuiteThatThePluginLacks) {
    EXPECT_THAT(shown(5), ElementsAre("other 5"));
    const scripted::SuiteName borrowed{"ADM Basic Suite", 2};
    EXPECT_THAT(host.acquisitions, ElementsAre(borrowed));
    EXPECT_THAT(host.releases, ElementsAre(borrowed));
    {
        RecordingPlugin plugin(host);
        plugin.acquire();
        const std::size_t before = host.acquisitions.size();
        EXPECT_THAT(shown(5), ElementsAre("other 5"));
        EXPECT_EQ(host.acquisitions.size(), before);
        EXPECT_NE(sADMBasic, nullptr);
    }
}

TEST_F(AnError, IsNotRepeatedWithinFiveSeconds) {
    RecordingPlugin plugin(host);
    // Time, error, and whether it is shown. The interval runs from the last report, not from the
    // last occurrence.
    const std::tuple<std::time_t, AIErr, bool> steps[] = {
        {1000, 5, true},   {1000, 5, false}, {1004, 5, false},  {1005, 5, true},
        {1006, -50, true}, {1006, 5, true},  {1007, -50, true}, {1007, FourChars("STOP"), false},
        {1008, -50, false}};
    for (const auto& [time, error, isShown] : steps) {
        now = time;
        host.errorAlerts.clear();
        plugin.Plugin::ReportError(error, "caller", "selector", nullptr);
        EXPECT_EQ(host.errorAlerts.size(), isShown ? 1U : 0U) << time << " " << error;
    }
}

} // namespace
