// SPDX-License-Identifier: MIT
// Remarks in other languages: names where they belong, however the sentence turns.
#include "faces/remark.h"

#include <gtest/gtest.h>

#include <map>

using namespace faces;

namespace {

// Turns the sentence round, as a language may.
std::string turned(const char* text) {
    static const std::map<std::string, std::string> texts = {
        {"%1 instead of %2", "nicht %2, sondern %1"},
        {"similar to %1", "%1 ähnlich"},
        {"lighter", "leichter"},
    };
    const auto found = texts.find(text);
    return found == texts.end() ? text : found->second;
}

TEST(ALineOfRemarks, HasTheNamesWhereTheLanguagePutsThem) {
    const Remark style = {"%1 instead of %2", "100%1", "%2 Bold"}; // names that look like marks
    EXPECT_EQ(lineOf(Remarks{style}), "100%1 instead of %2 Bold");
    EXPECT_EQ(lineOf(Remarks{style}, turned), "nicht %2 Bold, sondern 100%1");

    const Remark similar = {"similar to %1", "Arial", {}, true};
    EXPECT_EQ(lineOf(Remarks{similar}, turned), "Arial ähnlich");
    EXPECT_EQ(lineOf(Remarks{similar, {"lighter"}, {"narrower"}}),
              "similar to Arial: lighter, narrower");
    EXPECT_EQ(lineOf(Remarks{similar, {"lighter"}, {"narrower"}}, turned),
              "Arial ähnlich: leichter, narrower");
    EXPECT_EQ(lineOf({}, turned), "");
}

} // namespace
