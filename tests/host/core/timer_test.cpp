// SPDX-License-Identifier: MIT
// Timers by a clock that the test turns.
#include "recordingfrontend.h"

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ATimer : public CoreFixture {
protected:
    ATimer() {
        handler = [this](std::string_view caller, std::string_view selector, void* message) {
            if (caller == "AI Timer" && selector == "AI Go") {
                fired.push_back(static_cast<AITimerMessage*>(message)->timer);
            }
            return answer;
        };
    }
    AITimerHandle add(const char* name, std::int32_t period) {
        AITimerHandle timer = nullptr;
        EXPECT_EQ(timers->AddTimer(guest.ref(), name, period, &timer), kNoErr);
        return timer;
    }
    std::vector<AITimerHandle> firedAt(std::uint32_t tick) {
        ticks = tick;
        fired.clear();
        core.runTimers();
        return fired;
    }

    const AITimerSuite* timers = suite<AITimerSuite>();
    std::vector<AITimerHandle> fired;
    SPErr answer = kNoErr;
};

TEST_F(ATimer, FiresOncePerPeriodHoweverLate) {
    const AITimerHandle slow = add("slow", 300);
    const AITimerHandle fast = add("fast", 10);
    EXPECT_THAT(firedAt(9), IsEmpty());
    EXPECT_THAT(firedAt(10), ElementsAre(fast));
    EXPECT_THAT(firedAt(10), IsEmpty());
    EXPECT_THAT(firedAt(1000), ElementsAre(slow, fast));
    EXPECT_THAT(firedAt(1009), IsEmpty());
    EXPECT_THAT(firedAt(1010), ElementsAre(fast));
}

TEST_F(ATimer, RestsWhileItIsNotActive) {
    const AITimerHandle timer = add("t", 10);
    timers->SetTimerActive(timer, 0);
    EXPECT_THAT(firedAt(100), IsEmpty());
    timers->SetTimerActive(timer, 1);
    EXPECT_THAT(firedAt(109), IsEmpty());
    EXPECT_THAT(firedAt(110), ElementsAre(timer));
}

TEST_F(ATimer, FiresOverTheWrapAroundOfTheClock) {
    ticks = 0xFFFFFFF0U;
    const AITimerHandle timer = add("t", 0x20);
    EXPECT_THAT(firedAt(0xFFFFFFFFU), IsEmpty());
    EXPECT_THAT(firedAt(0x0F), IsEmpty());
    EXPECT_THAT(firedAt(0x10), ElementsAre(timer));
}

TEST_F(ATimer, IsRefusedWithoutAPeriodOrAPlugin) {
    AITimerHandle timer = nullptr;
    EXPECT_EQ(timers->AddTimer(guest.ref(), "t", 0, &timer), kBadParameterErr);
    EXPECT_EQ(timers->AddTimer(guest.ref(), "t", -1, &timer), kBadParameterErr);
    EXPECT_EQ(timers->AddTimer(reinterpret_cast<SPPluginRef>(this), "t", 1, &timer),
              kBadParameterErr);
    EXPECT_EQ(timers->SetTimerActive(reinterpret_cast<AITimerHandle>(this), 1), kBadParameterErr);
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("guest registered a timer for an unknown plug-in"));
}

TEST_F(ATimer, ReportsWhatThePluginAnswersAndEndsWithIt) {
    add("t", 10);
    answer = FourChars("OOPS");
    firedAt(10);
    EXPECT_THAT(frontend.errors,
                ElementsAre("guest: the plug-in answered its timer \"t\" with error 'OOPS'"));
    guest.shutDown();
    EXPECT_THAT(core.timers().all(), IsEmpty());
    EXPECT_THAT(firedAt(20), IsEmpty());
}

} // namespace
} // namespace host::test
