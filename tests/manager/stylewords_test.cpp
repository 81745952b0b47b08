// SPDX-License-Identifier: MIT
// Style names that say the same in other words.
#include "manager/library/stylewords.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

using namespace manager;

namespace {

TEST(AStyleForm, IsTheSameForWordsThatSayTheSame) {
    const std::vector<std::vector<std::string>> groups = {
        {"", "regular", "book", "roman", "normal"},
        {"italic", "oblique", "regularitalic", "bookoblique"},
        {"bolditalic", "boldoblique", "italicbold"},
        {"semibold", "demibold", "demi"},
        {"extralight", "ultralight"},
        {"condensedbold", "boldcondensed", "bold-narrow"},
        {"12italic", "italic12"},
        {"light"},
        {"semilight"},
        {"12"},
        {"poster"},
    };
    std::set<std::string> forms;
    for (const auto& group : groups) {
        for (const std::string& style : group) {
            EXPECT_EQ(styleForm(style), styleForm(group.front())) << style;
        }
        EXPECT_TRUE(forms.insert(styleForm(group.front())).second) << group.front();
    }
}

} // namespace
