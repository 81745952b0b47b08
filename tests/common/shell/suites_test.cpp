// SPDX-License-Identifier: MIT
// Acquiring the host's suites and giving them back, with a failure at every place.
#include "Suites.h"

#include "suitepointers.h"
#include "tests/support/scriptedhost/scriptedhost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const void* pointerOf(const SuiteRow& row) {
    const void* suite = nullptr;
    std::memcpy(&suite, row.pointer, sizeof suite);
    return suite;
}

std::vector<SuiteRow> allRows() {
    std::vector<SuiteRow> rows(gBasicSuites.begin(), gBasicSuites.end());
    for (const SuiteRow& row : gImportSuites) {
        if (row.name != nullptr) {
            rows.push_back(row);
        }
    }
    return rows;
}

std::vector<scripted::SuiteName> names(const std::vector<SuiteRow>& rows, std::size_t count) {
    std::vector<scripted::SuiteName> result;
    for (std::size_t i = 0; i < count; ++i) {
        result.emplace_back(rows[i].name, rows[i].version);
    }
    return result;
}

class TheSuites : public testing::Test {
protected:
    TheSuites() { sSPBasic = host.basic(); }
    ~TheSuites() override {
        EXPECT_THAT(host.acquired, IsEmpty());
        EXPECT_THAT(host.misuse, IsEmpty());
        EXPECT_EQ(Suites::fAcquiredCount, 0);
    }

    scripted::Host host;
};

TEST_F(TheSuites, AreAcquiredInTableOrderAndReleasedInTheSame) {
    const std::vector<SuiteRow> rows = allRows();
    ASSERT_EQ(rows.size(), 126U);
    {
        const Suites suites;
        EXPECT_EQ(suites.error(), kNoErr);
        EXPECT_EQ(suites.requiredCount(), 121);
        EXPECT_EQ(suites.optionalCount(), 0);
        EXPECT_EQ(host.acquisitions, names(rows, rows.size()));
        for (const SuiteRow& row : rows) {
            EXPECT_EQ(pointerOf(row), scripted::findSuite(row.name, row.version)) << row.name;
        }
    }
    EXPECT_EQ(host.releases, names(rows, rows.size()));
    for (const SuiteRow& row : rows) {
        EXPECT_EQ(pointerOf(row), nullptr) << row.name;
    }
}

TEST_F(TheSuites, AreAllGivenBackWhicheverOneIsMissing) {
    const std::vector<SuiteRow> rows = allRows();
    for (std::size_t missing = 0; missing < rows.size(); ++missing) {
        SCOPED_TRACE(rows[missing].name);
        host.acquisitions.clear();
        host.releases.clear();
        host.missingAcquisition = static_cast<int>(missing) + 1;
        {
            const Suites suites;
            Suites::fAcquiredCount = 1;
            EXPECT_EQ(suites.error(), kSuiteNotFoundErr);
            EXPECT_EQ(host.acquisitions, names(rows, missing + 1)); // none is tried after it
        }
        EXPECT_EQ(host.releases, names(rows, missing));
        EXPECT_THAT(host.acquired, IsEmpty());
    }
}

TEST_F(TheSuites, AreSharedByHoldersUntilTheLastOneEnds) {
    auto first = std::make_unique<Suites>();
    auto second = std::make_unique<Suites>();
    EXPECT_EQ(Suites::fAcquiredCount, 2);
    EXPECT_EQ(host.acquisitions.size(), 126U);
    first.reset();
    EXPECT_THAT(host.releases, IsEmpty());
    EXPECT_NE(sAIArt, nullptr);
    second.reset();
    EXPECT_EQ(host.releases.size(), 126U);
}

TEST_F(TheSuites, StopAtAReleaseThatFails) {
    {
        const Suites suites;
        host.fail("ReleaseSuite", kBadParameterErr, 4);
    }
    EXPECT_EQ(host.releases.size(), 3U);
    EXPECT_EQ(sAINotifier, nullptr);
    EXPECT_NE(sAIAppContext, nullptr); // the fourth keeps its pointer
    EXPECT_NE(sAIArt, nullptr);
    {
        // The next round takes all pointers anew and gives every suite back once.
        host.acquired.clear();
        const Suites again;
    }
    EXPECT_EQ(sAIArt, nullptr);
}

class OptionalSuites : public TheSuites {
protected:
    const void* required = nullptr;
    const void* first = nullptr;
    const void* unknown = nullptr;
    const void* last = nullptr;
    std::array<SuiteRow, 6> rows{{{"AI Art Suite", 1014, &required},
                                  {nullptr, optionalSuitesFollow, nullptr},
                                  {"AI Path Suite", 1008, &first},
                                  {"AI Path Suite", 999, &unknown},
                                  {"AI Tool Suite", 1010, &last},
                                  {nullptr, 0, nullptr}}};
};

TEST_F(OptionalSuites, AreTakenWhereTheHostHasThem) {
    {
        Suites suites(rows.data());
        EXPECT_EQ(suites.error(), kNoErr);
        EXPECT_EQ(suites.requiredCount(), 1);
        EXPECT_EQ(suites.optionalCount(), 3);
        EXPECT_EQ(suites.optionalAcquiredCount(), 2);
        EXPECT_EQ(unknown, nullptr);
        // Asked again, the missing one only.
        host.acquisitions.clear();
        suites.acquire_Optional_Suites();
        EXPECT_THAT(host.acquisitions, ElementsAre(scripted::SuiteName("AI Path Suite", 999)));
        EXPECT_EQ(suites.optionalAcquiredCount(), 2);
    }
    EXPECT_EQ(host.releases.size(), 5U + 1 + 2);
    EXPECT_EQ(first, nullptr);
    EXPECT_EQ(last, nullptr);
}

TEST_F(OptionalSuites, AreNotTriedAfterARequiredOneFailed) {
    host.missingAcquisition = 6;
    const Suites suites(rows.data());
    Suites::fAcquiredCount = 1;
    EXPECT_EQ(suites.error(), kSuiteNotFoundErr);
    EXPECT_EQ(suites.optionalAcquiredCount(), 0);
    EXPECT_EQ(first, nullptr);
}

TEST_F(OptionalSuites, AreIgnoredBehindAnOrdinaryEnd) {
    rows[1].version = 0;
    const Suites suites(rows.data());
    EXPECT_EQ(suites.optionalCount(), 0);
    EXPECT_EQ(first, nullptr);
}

} // namespace
