// SPDX-License-Identifier: MIT
// Log lines and hex dumps as they reach standard error.
#include "misc/logger.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>

using Orvil::Logger;

namespace {

template <typename Action>
std::string printedBy(Action action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

} // namespace

TEST(ALogger, WritesContextAndTextAtEveryLevel) {
    Logger logger("name", false);
    logger.setLogLevel(Logger::Error);
    const std::pair<int, int> cases[] = {
        {Logger::Error, 9}, {Logger::Warning, 6}, {Logger::Important, 3}, {Logger::Normal, 0},
        {Logger::Fine, -3}, {Logger::Finest, -6}, {Logger::Debug, -9}};
    for (const auto& [level, value] : cases) {
        EXPECT_EQ(level, value);
        EXPECT_TRUE(logger.isVisible(level));
        EXPECT_EQ(printedBy([&, shown = level] { logger.log(shown, "context", "a text"); }),
                  "context: a text\n");
    }
    EXPECT_EQ(printedBy([&] { logger.flush(); }), "");
    EXPECT_EQ(&Orvil::globalLogger(), &Orvil::globalLogger());
}

TEST(AHexDump, ShowsRowsOfBytesAndMarksTheEndOnce) {
    const std::tuple<std::string, unsigned, std::string> cases[] = {
        {"", 4, ""},
        {"abc", 0, ""},
        {"abcd", 4, "hex: 000000     61 62 63 64     abcd\n"},
        {"ab\n\x7F.", 4,
         "hex: 000000     61 62 0a 7f     ab..\n"
         "hex: 000004     2e__            .   \n"},
        {"0123456789abcdefgh", 8,
         "hex: 000000     30 31 32 33   34 35 36 37     01234567\n"
         "hex: 000008     38 39 61 62   63 64 65 66     89abcdef\n"
         "hex: 000010     67 68__            "
         "           gh      \n"},
    };
    Logger logger("", true);
    for (const auto& [data, bytesPerLine, expected] : cases) {
        testing::internal::CaptureStderr();
        logger.hexdump(0, data.data(), static_cast<unsigned>(data.size()), bytesPerLine);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);
    }
}

TEST(TheDate, HasTheFixedFormWithoutANewline) {
    const std::string& text = Logger::getDateTime();
    EXPECT_EQ(text.size(), 24U) << text;
    EXPECT_EQ(text[3], ' ');
    EXPECT_EQ(text[13], ':');
    EXPECT_EQ(&text, &Logger::getDateTime());
}
