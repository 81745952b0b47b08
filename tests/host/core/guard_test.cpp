// SPDX-License-Identifier: MIT
// The edge between plug-ins and host: which calls come through.
#include "recordingfrontend.h"

#include <stdexcept>
#include <thread>

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ASuiteCall : public CoreFixture {
protected:
    const AINotifierSuite* notifiers = suite<AINotifierSuite>();
    const AITimerSuite* timers = suite<AITimerSuite>();
    const ADMBasicSuite* dialogs = suite<ADMBasicSuite>();
};

TEST_F(ASuiteCall, IsRefusedOffTheMainThreadAndHasNoEffect) {
    asGuest([&] {
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
    });
    EXPECT_THAT(core.notifiers().all(), IsEmpty());
    EXPECT_THAT(frontend.alerts, IsEmpty());
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("guest called \"AI Notifier Suite\" AddNotifier off the main thread",
                            "guest called \"ADM Basic Suite\" MessageAlert off the main thread"));
}

TEST_F(ASuiteCall, IsRefusedOutsideOfMessages) {
    EXPECT_EQ(notifiers->AddNotifier(guest.ref(), "n", "t", nullptr), kNotRunningErr);
    EXPECT_THAT(core.notifiers().all(), IsEmpty());
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("unknown plug-in called \"AI Notifier Suite\" AddNotifier outside of "
                            "any message"));
}

TEST_F(ASuiteCall, IsInOrderWhileAnEventIsServedForTheOnePluginThatRuns) {
    const Core::ServeScope serving(core, nullptr);
    EXPECT_EQ(notifiers->AddNotifier(guest.ref(), "n", "t", nullptr), kNoErr);
    basic->ReleaseSuite("AI Font Suite", 1003);
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("guest released \"AI Font Suite\" 1003 without acquiring it"));
}

TEST_F(ASuiteCall, RefusesNullArguments) {
    asGuest([&] {
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
    });
    EXPECT_THAT(frontend.alerts, IsEmpty());
}

TEST_F(ASuiteCall, IsCountedAndFailsOnPurposeFromTheWantedTimeOn) {
    CallSite* const site = CallSite::find("", "CountTimers");
    ASSERT_NE(site, nullptr);
    EXPECT_EQ(CallSite::find("AI Notifier Suite", "CountTimers"), nullptr);
    site->failWith(FourChars("OOPS"), 3);
    std::vector<SPErr> results;
    asGuest([&] {
        std::int32_t count = 0;
        for (int i = 0; i < 4; ++i) {
            results.push_back(timers->CountTimers(&count));
        }
    });
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

TEST_F(ASuiteCall, TurnsExceptionsIntoCodes) {
    Thrower thrower;
    const Published<Thrower> published(thrower);
    asGuest([&] {
        EXPECT_EQ((Entry<SPBasicSuite, "Unlucky", &throwing<Unlucky>>::call()), kBadParameterErr);
        EXPECT_EQ((Entry<SPBasicSuite, "NoMemory", &throwing<std::bad_alloc>>::call()),
                  kOutOfMemoryErr);
        EXPECT_EQ((Entry<SPBasicSuite, "Number", &throwing<int>>::call()), kBadParameterErr);
    });
    EXPECT_THAT(frontend.errors, ElementsAre("\"SP Basic Suite\" Unlucky: out of luck"));
}

TEST_F(ASuiteCall, IsRefusedWhenWhatItWorksOnIsGone) {
    asGuest([&] {
        EXPECT_EQ((Entry<SPBasicSuite, "Gone", &throwing<Unlucky>>::call()), kNotRunningErr);
    });
}

TEST(ASuiteCallWithoutAHost, IsRefused) {
    void* block = nullptr;
    const void* table = nullptr;
    EXPECT_EQ(Core::basicSuite().AcquireSuite("AI Font Suite", 1003, &table), kNotRunningErr);
    EXPECT_EQ(Core::basicSuite().AllocateBlock(1, &block), kNotRunningErr);
}

} // namespace
} // namespace host::test
