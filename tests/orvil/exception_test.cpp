// SPDX-License-Identifier: MIT
// What failures say of themselves, how broken rules end the process, and what is logged.
#include "misc/assertion.h"
#include "misc/exception.h"
#include "misc/logger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <exception>
#include <string>
#include <tuple>
#include <utility>

using Orvil::Exception;
using Orvil::Logger;
using Orvil::SerializationException;

TEST(AnException, DescribesWhatItKnows) {
    const std::tuple<std::string, std::string, std::uint32_t, std::string, std::string> cases[] = {
        {"", "", 0xFFFFFFFF, "", "Exception in file <unknown> at line <unknown>"},
        {"", "", 0, "", "Exception in file <unknown> at line 0"},
        {"M", "a/b", 120, "", "Exception in file 'a/b' at line 120\n    User Message : M"},
        {"", "a/b", 4294967294U, "x == 1",
         "Exception in file 'a/b' at line 4294967294"
         "\n---vvv----- CODE SNIPPET -----vvv---\nx == 1\n---^^^--- END CODE SNIPPET ---^^^---"},
        {"M", "", 7, "c",
         "Exception in file <unknown> at line 7\n    User Message : M"
         "\n---vvv----- CODE SNIPPET -----vvv---\nc\n---^^^--- END CODE SNIPPET ---^^^---"},
    };
    for (const auto& [message, file, line, code, description] : cases) {
        EXPECT_EQ(Exception(message, file, line, code).description(), description);
        EXPECT_EQ(Exception(message, file, line, code).message(), message);
        EXPECT_EQ(Exception(message, file, line, code, true).what(), description);
    }
}

TEST(AnException, NamesItsSubclassThroughTheBase) {
    EXPECT_THAT([] { throw SerializationException("M", "F", 120, ""); },
                testing::ThrowsMessage<std::exception>(
                    "SerializationException in file 'F' at line 120\n    User Message : M"));
}

TEST(AnException, KeepsARenderedTextWhenItIsAssignedTo) {
    const Exception source("new", "new", 2, "");
    Exception fresh("old", "old", 1, "");
    Exception rendered("old", "old", 1, "");
    EXPECT_STREQ(rendered.what(), "Exception in file 'old' at line 1\n    User Message : old");
    fresh = source;
    rendered = source;
    EXPECT_STREQ(fresh.what(), source.what());
    EXPECT_STREQ(rendered.what(), "Exception in file 'old' at line 1\n    User Message : old");
    EXPECT_EQ(rendered.description(), source.description());
    const Exception& itself = rendered;
    rendered = itself;
    EXPECT_EQ(rendered.description(), source.description());
}

TEST(AFailedAssertion, PrintsItsPlaceAndAbortsOrTerminatesWithoutAWord) {
    EXPECT_EXIT(
        {
            std::set_terminate([] { std::_Exit(42); });
            Exception::assertionFailed("x", "m", "f", 1);
        },
        testing::ExitedWithCode(42), "^$");
    EXPECT_EXIT(Orvil::assertionAborts("a/b", 12, "false"), testing::KilledBySignal(SIGABRT),
                "^a/b:12: failed assertion `false'\n$");
    EXPECT_EXIT(ORVIL_ASSERT(1 + 1 == 3, "a/b"), testing::KilledBySignal(SIGABRT),
                "^a/b:[0-9]+: failed assertion `1 \\+ 1 == 3'\n$");
    ORVIL_ASSERT(true, "a/b");
}

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
    const std::string& date = Logger::getDateTime();
    EXPECT_EQ(date.size(), 24U) << date;
    EXPECT_EQ(std::string({date[3], date[13]}), " :");
    EXPECT_EQ(&date, &Logger::getDateTime());
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
