// SPDX-License-Identifier: MIT
// The rule of matching over the table of cases, and the keys that an index is asked for.
#include "faces/namekey.h"
#include "tests/faces/matching_cases.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace faces;
using namespace facestest;

namespace {

TEST(TheRuleOfMatching, JudgesAsTheTableSays) {
    for (const MatchingCase& c : matchingCases()) {
        std::vector<std::vector<Name>> names;
        std::vector<std::vector<std::string>> fullNames;
        for (const HeldFace& face : c.held) {
            names.push_back({{face.family, face.style, "en", NameKind::Typographic}});
            fullNames.push_back(
                {face.fullName.empty() ? face.family + " " + face.style : face.fullName});
            if (!face.legacyFamily.empty()) {
                names.back().push_back({face.legacyFamily, face.legacyStyle, "en"});
            }
        }
        std::vector<Known> known;
        for (std::size_t i = 0; i < c.held.size(); ++i) {
            Style look = c.held[i].look;
            correctStyle(look, c.held[i].style); // as who reads a font does
            known.push_back({c.held[i].postScriptName, fullNames[i], names[i], look, {}});
        }
        std::string exact;
        std::string near;
        for (const Match& match : match(c.wanted, known)) {
            if (isExact(match.ground)) {
                exact += c.held[match.face].postScriptName;
                EXPECT_EQ(lineOf(match.reason), "") << c.what;
            } else if (near.empty()) {
                near = lineOf(match.reason);
            }
        }
        EXPECT_EQ(exact, c.exact) << c.what;
        EXPECT_EQ(near, c.near) << c.what;
    }
}

} // namespace
