// SPDX-License-Identifier: MIT
// Which suites there are, and who holds them.
#include "recordingfrontend.h"

#include <set>

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TheSuites : public CoreFixture {};

std::vector<SuiteId> allSuites() {
    std::vector<SuiteId> suites{{"ADM Basic Suite", 2}};
#define GLYPHORA_LIST_SUITE(type, pointer, name, version) suites.push_back({name, version});
    GLYPHORA_BASIC_SUITES(GLYPHORA_LIST_SUITE)
    GLYPHORA_IMPORT_SUITES(GLYPHORA_LIST_SUITE)
#undef GLYPHORA_LIST_SUITE
    return suites;
}

TEST_F(TheSuites, CanAllBeAcquiredByNameAndVersion) {
    const std::vector<SuiteId> suites = allSuites();
    ASSERT_EQ(suites.size(), 127U);
    EXPECT_EQ(core.suites().size(), suites.size());
    std::set<const void*> tables;
    for (const SuiteId& id : suites) {
        const void* table = nullptr;
        EXPECT_EQ(basic->AcquireSuite(id.name, id.version, &table), kNoErr) << id.name;
        EXPECT_NE(table, nullptr) << id.name;
        tables.insert(table);
    }
    EXPECT_EQ(tables.size(), 126U) << "only the two versions of one suite share a table";
    for (const SuiteId& id : suites) {
        EXPECT_EQ(basic->ReleaseSuite(id.name, id.version), kNoErr) << id.name;
    }
    guest.shutDown();
    EXPECT_THAT(frontend.misbehaviour, IsEmpty());
}

TEST_F(TheSuites, AreNotFoundUnderAnotherNameOrVersionOrHiddenOnPurpose) {
    const void* table = this;
    EXPECT_EQ(basic->AcquireSuite("AI Font Suite", 1004, &table), kSuiteNotFoundErr);
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(basic->AcquireSuite("ai font suite", 1003, &table), kSuiteNotFoundErr);
    EXPECT_EQ(basic->ReleaseSuite("AI Font Suite", 1004), kSuiteNotFoundErr);
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("guest released \"AI Font Suite\" 1004, which does not exist"));
    EXPECT_TRUE(core.suites().hide("AI Font Suite", 1003));
    EXPECT_FALSE(core.suites().hide("AI Font Suite", 1003));
    EXPECT_EQ(basic->AcquireSuite("AI Font Suite", 1003, &table), kSuiteNotFoundErr);
}

TEST_F(TheSuites, AreCountedPerPlugin) {
    Plugin& other = core.addBuiltIn("other", entry);
    other.startUp();
    const void* table = nullptr;
    basic->AcquireSuite("AI Font Suite", 1003, &table);
    basic->AcquireSuite("AI Font Suite", 1003, &table);
    serving.emplace(core, &other);
    EXPECT_EQ(basic->ReleaseSuite("AI Font Suite", 1003), kSuiteNotFoundErr);
    serving.reset();
    guest.shutDown();
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("other released \"AI Font Suite\" 1003 without acquiring it",
                            "guest did not release 1 suite(s) at its shut-down: AI Font Suite 1003 "
                            "(2 times)"));
}

} // namespace
} // namespace host::test
