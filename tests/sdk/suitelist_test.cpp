// SPDX-License-Identifier: MIT
// The list of suites: complete, without doubles, and each with its pointer.
#include "suitepointers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <set>
#include <string>
#include <utility>

namespace {

struct Row {
    std::string name;
    std::int32_t version;
    const void* pointer;
};

#define ROW(type, pointer, name, version) Row{name, version, &(pointer)},
const Row basicSuites[] = {GLYPHORA_BASIC_SUITES(ROW)};
const Row importSuites[] = {GLYPHORA_IMPORT_SUITES(ROW)};
#undef ROW

TEST(TheSuiteList, NamesEverySuiteAndPointerOnce) {
    EXPECT_EQ(std::size(basicSuites), 5U);
    EXPECT_EQ(std::size(importSuites), 121U);
    std::set<std::pair<std::string, std::int32_t>> suites;
    std::set<const void*> pointers;
    for (const auto* table : {&basicSuites[0], &importSuites[0]}) {
        const auto size =
            table == &basicSuites[0] ? std::size(basicSuites) : std::size(importSuites);
        std::for_each_n(table, size, [&](const Row& row) {
            suites.emplace(row.name, row.version);
            pointers.insert(row.pointer);
        });
    }
    EXPECT_EQ(suites.size(), 126U);
    EXPECT_EQ(pointers.size(), 126U);
}

TEST(TheSuiteList, EndsWithTheTextEngineAtItsTwoVersions) {
    const auto* firstOfEngine =
        std::find_if(std::begin(importSuites), std::end(importSuites),
                     [](const Row& row) { return row.name.starts_with("ATE "); });
    EXPECT_EQ(std::distance(firstOfEngine, std::end(importSuites)), 86);
    EXPECT_TRUE(std::all_of(firstOfEngine, std::end(importSuites), [](const Row& row) {
        return row.name.starts_with("ATE ") && row.name.ends_with(" Suite") &&
               (row.version == 1 || row.version == 101);
    }));
    EXPECT_EQ(std::count_if(firstOfEngine, std::end(importSuites),
                            [](const Row& row) { return row.version == 101; }),
              8);
}

} // namespace
