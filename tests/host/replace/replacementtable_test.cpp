// SPDX-License-Identifier: MIT
// Tables of replacements.
#include "host/replace/replacementtable.h"

#include <gtest/gtest.h>

#include <sstream>

namespace host {
namespace {

Face face(std::string family, std::string style, std::string postScriptName = {}) {
    Face result;
    result.family = std::move(family);
    result.style = std::move(style);
    result.postScriptName = std::move(postScriptName);
    return result;
}

std::string ruled(const ReplacementTable& table, const Face& of) {
    const auto* const rule = table.ruleFor(of);
    return rule == nullptr ? "" : rule->name + " by " + rule->place;
}

TEST(AReplacementTable, HasTheFirstRuleForANameInAnyForm) {
    std::istringstream text("# a comment = none\n\n  Arial Black =  Lato Black \r\n"
                            "arial=Lato\nMyriadPro-Semi*=Open Sans\n[Odd]?*=x = y\nf?? = Short\n");
    ReplacementTable table;
    table.read(text, "t");
    const struct {
        Face face;
        const char* rule;
    } cases[] = {
        {face("Arial", "Black"), "Lato Black by t:3"},
        {face("ARIAL", "Bold"), "Lato by t:4"},
        {face("Ar ial", "Bold"), "Lato by t:4"},
        {face("Arial Narrow", "Bold"), ""},
        {face("Myriad Pro", "Semibold Italic"), "Open Sans by t:5"},
        {face("Anything", "Bold", "MyriadPro-SemiCn"), "Open Sans by t:5"},
        {face("Myriad Pro", "Bold"), ""},
        {face("[Odd]1", ""), "x = y by t:6"},
        {face("O1", ""), ""},
        {face("Foo", "Bold"), "Short by t:7"},
        {face("Fooo", "Bold"), ""},
    };
    for (const auto& [of, rule] : cases) {
        EXPECT_EQ(ruled(table, of), rule) << of.family << " " << of.style;
    }
}

TEST(AReplacementTable, RefusesLinesThatAreNoRules) {
    for (const char* const line : {"Arial", "= Lato", "Arial =", "="}) {
        ReplacementTable table;
        std::istringstream text(std::string("A=B\n") + line);
        try {
            table.read(text, "t");
            ADD_FAILURE() << line;
        } catch (const TableError& problem) {
            EXPECT_STREQ(problem.what(), "t:2: not of the form \"old = new\"");
        }
    }
}

} // namespace
} // namespace host
