// SPDX-License-Identifier: MIT
// What failures say of themselves, and how broken rules end the process.
#include "misc/assertion.h"
#include "misc/exception.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <exception>
#include <string>
#include <tuple>

using Orvil::Exception;
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
    try {
        throw SerializationException("M", "F", 120, "");
    } catch (const std::exception& failure) {
        EXPECT_STREQ(failure.what(),
                     "SerializationException in file 'F' at line 120\n    User Message : M");
    }
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

TEST(AFailedAssertion, TerminatesWithoutAWord) {
    EXPECT_EXIT(
        {
            std::set_terminate([] { std::_Exit(42); });
            Exception::assertionFailed("x", "m", "f", 1);
        },
        testing::ExitedWithCode(42), "^$");
}

TEST(AFailedAssertion, PrintsItsPlaceAndAborts) {
    EXPECT_EXIT(Orvil::assertionAborts("a/b", 12, "false"), testing::KilledBySignal(SIGABRT),
                "^a/b:12: failed assertion `false'\n$");
    EXPECT_EXIT(ORVIL_ASSERT(1 + 1 == 3, "a/b"), testing::KilledBySignal(SIGABRT),
                "^a/b:[0-9]+: failed assertion `1 \\+ 1 == 3'\n$");
    ORVIL_ASSERT(true, "a/b");
}
