// SPDX-License-Identifier: MIT
// The edge between plug-ins and host: which calls come through, and which handles are live.
#include "host/core/handletable.h"
#include "recordingfrontend.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>
#include <thread>

using testing::ElementsAre;
using testing::IsEmpty;

namespace host::test {
namespace {

class ASuiteCall : public CoreFixture {
protected:
    const AINotifierSuite* notifiers = suite<AINotifierSuite>();
    const AITimerSuite* timers = suite<AITimerSuite>();
    const ADMBasicSuite* dialogs = suite<ADMBasicSuite>();
};

TEST_F(ASuiteCall, IsRefusedOffTheMainThreadAndHasNoEffect) {
    SPErr error = kNoErr;
    void* block = nullptr;
    std::thread([&] {
        error = notifiers->AddNotifier(guest.ref(), "n", "t", nullptr);
        dialogs->MessageAlert("from a thread");
        basic->AllocateBlock(8, &block);
    }).join();
    EXPECT_EQ(error, kWrongThreadErr);
    EXPECT_NE(block, nullptr) << "memory can be had in any thread";
    EXPECT_EQ(basic->FreeBlock(block), kNoErr);
    EXPECT_THAT(core.notifiers().all(), IsEmpty());
    EXPECT_THAT(frontend.alerts, IsEmpty());
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("guest called \"AI Notifier Suite\" AddNotifier off the main thread",
                            "guest called \"ADM Basic Suite\" MessageAlert off the main thread"));
}

TEST_F(ASuiteCall, IsRefusedOutsideOfMessages) {
    serving.reset();
    EXPECT_EQ(notifiers->AddNotifier(guest.ref(), "n", "t", nullptr), kNotRunningErr);
    EXPECT_THAT(core.notifiers().all(), IsEmpty());
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("unknown plug-in called \"AI Notifier Suite\" AddNotifier outside of "
                            "any message"));
}

TEST_F(ASuiteCall, IsInOrderWhileAnEventIsServedForTheOnePluginThatRuns) {
    serving.emplace(core, nullptr);
    EXPECT_EQ(notifiers->AddNotifier(guest.ref(), "n", "t", nullptr), kNoErr);
    basic->ReleaseSuite("AI Font Suite", 1003);
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("guest released \"AI Font Suite\" 1003 without acquiring it"));
}

TEST_F(ASuiteCall, RefusesNullArguments) {
    AITimerHandle timer = nullptr;
    std::int32_t size = 4;
    char buffer[4];
    EXPECT_EQ(basic->AcquireSuite(nullptr, 1, nullptr), kBadParameterErr);
    EXPECT_EQ(basic->AllocateBlock(1, nullptr), kBadParameterErr);
    EXPECT_EQ(basic->FreeBlock(nullptr), kNoErr);
    EXPECT_EQ(notifiers->AddNotifier(guest.ref(), nullptr, "t", nullptr), kBadParameterErr);
    EXPECT_EQ(notifiers->CountNotifiers(nullptr), kBadParameterErr);
    EXPECT_EQ(timers->AddTimer(guest.ref(), "t", 1, nullptr), kBadParameterErr);
    EXPECT_EQ(timers->AddTimer(nullptr, "t", 1, &timer), kBadParameterErr);
    EXPECT_EQ(dialogs->GetIndexString(guest.ref(), 1, 1, nullptr, size), kBadParameterErr);
    EXPECT_EQ(dialogs->GetIndexString(guest.ref(), 1, 1, buffer, 0), kBadParameterErr);
    dialogs->ErrorAlert(nullptr);
    dialogs->AboutBox(guest.ref(), "title", nullptr);
    EXPECT_THAT(frontend.alerts, IsEmpty());
}

TEST_F(ASuiteCall, IsCountedAndFailsOnPurposeFromTheWantedTimeOn) {
    CallSite* const site = CallSite::find("", "CountTimers");
    ASSERT_NE(site, nullptr);
    EXPECT_EQ(CallSite::find("AI Notifier Suite", "CountTimers"), nullptr);
    site->failWith(FourChars("OOPS"), 3);
    std::vector<SPErr> results;
    std::int32_t count = 0;
    for (int i = 0; i < 4; ++i) {
        results.push_back(timers->CountTimers(&count));
    }
    EXPECT_THAT(results, ElementsAre(0, 0, FourChars("OOPS"), FourChars("OOPS")));
    EXPECT_EQ(site->count(), 4U);
    CallSite::resetAll();
    EXPECT_EQ(site->count(), 0U);
}

struct Thrower {};
template <typename Problem>
SPErr throwing(Thrower&) {
    throw Problem();
}
struct Unlucky : std::runtime_error {
    Unlucky() : std::runtime_error("out of luck") {}
};

TEST_F(ASuiteCall, TurnsExceptionsIntoCodesAndNeedsItsObject) {
    EXPECT_EQ((Entry<SPBasicSuite, "Gone", &throwing<Unlucky>>::call()), kNotRunningErr);
    Thrower thrower;
    const Published<Thrower> published(thrower);
    EXPECT_EQ((Entry<SPBasicSuite, "Unlucky", &throwing<Unlucky>>::call()), kBadParameterErr);
    EXPECT_EQ((Entry<SPBasicSuite, "NoMemory", &throwing<std::bad_alloc>>::call()),
              kOutOfMemoryErr);
    EXPECT_EQ((Entry<SPBasicSuite, "Number", &throwing<int>>::call()), kBadParameterErr);
    EXPECT_THAT(frontend.errors, ElementsAre("\"SP Basic Suite\" Unlucky: out of luck"));
}

TEST(ASuiteCallWithoutAHost, IsRefused) {
    void* block = nullptr;
    const void* table = nullptr;
    EXPECT_EQ(Core::basicSuite().AcquireSuite("AI Font Suite", 1003, &table), kNotRunningErr);
    EXPECT_EQ(Core::basicSuite().AllocateBlock(1, &block), kNotRunningErr);
}

} // namespace
} // namespace host::test

namespace host {
namespace {

using Handle = struct Opaque*;
using Table = HandleTable<std::string, Handle>;

Handle fromBits(std::uintptr_t bits) {
    return reinterpret_cast<Handle>(bits);
}

TEST(AHandle, FindsItsValueUntilThatIsRemoved) {
    Table table;
    const Handle first = table.add("first");
    const Handle second = table.add("second");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(first, second);
    EXPECT_EQ(*table.find(first), "first");
    EXPECT_TRUE(table.remove(first));
    EXPECT_FALSE(table.remove(first));
    EXPECT_EQ(table.find(first), nullptr);
    EXPECT_EQ(*table.find(second), "second");
    EXPECT_EQ(table.state(first), HandleState::Dead);
    EXPECT_EQ(table.state(second), HandleState::Live);
    EXPECT_EQ(table.size(), 1U);
}

TEST(AHandle, StaysDeadWhenItsPlaceIsUsedAgain) {
    Table table;
    const Handle old = table.add("old");
    std::set<Handle> handedOut{old};
    for (int i = 0; i < 1000; ++i) {
        table.forEach([&](Handle handle, const std::string&) { table.remove(handle); });
        const Handle next = table.add("new");
        EXPECT_TRUE(handedOut.insert(next).second) << "handed out twice";
        EXPECT_EQ(table.state(old), HandleState::Dead);
    }
}

TEST(AHandle, ThatNeverWasIsUnknown) {
    Table table;
    const Handle live = table.add("live");
    const auto bits = reinterpret_cast<std::uintptr_t>(live);
    const std::uintptr_t wrong[] = {0, bits + 1, ~std::uintptr_t{0},
                                    bits | (~HandleBits::indexMask), HandleBits::indexMask + 1};
    for (const std::uintptr_t each : wrong) {
        EXPECT_EQ(table.find(fromBits(each)), nullptr) << each;
        EXPECT_EQ(table.state(fromBits(each)), HandleState::Unknown) << each;
        EXPECT_FALSE(table.remove(fromBits(each))) << each;
    }
    EXPECT_EQ(*table.find(live), "live");
}

} // namespace
} // namespace host
