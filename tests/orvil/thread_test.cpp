// SPDX-License-Identifier: MIT
// The life of threads: start, end, use again; and what a thread may ask about itself.
#include "misc/threads/thread.h"
#include "task.h"

#include <gtest/gtest.h>

#include <sched.h>
#include <stdexcept>
#include <thread>
#include <tuple>
#include <vector>

using namespace Orvil;

TEST(AThread, RunsOnceAndCanBeUsedAgain) {
    int runs = 0;
    Task task([&](Task& self) {
        EXPECT_TRUE(self.isRunning());
        self.goOn.wait();
        return ++runs;
    });
    EXPECT_FALSE(task.isRunning());
    EXPECT_FALSE(task.join());
    EXPECT_FALSE(task.destroy());
    EXPECT_FALSE(task.detach());
    EXPECT_EQ(task.getReturnCode(), 0);
    for (int round = 1; round <= 3; ++round) {
        task.goOn.reset();
        EXPECT_TRUE(task.start(false, -1));
        EXPECT_FALSE(task.start(false, -1)) << "while it runs";
        task.goOn.signal();
        EXPECT_TRUE(task.join());
        EXPECT_FALSE(task.isRunning());
        EXPECT_FALSE(task.isDetached());
        EXPECT_EQ(task.getReturnCode(), round);
        EXPECT_FALSE(task.join());
    }
}

TEST(AThread, StartsAgainAfterItHasFinishedUnjoined) {
    Task task([](Task& self) {
        self.reached.inc();
        return 0;
    });
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(task.start(false, -1));
        task.reached.dec();
        while (task.isRunning()) {
            Thread::yield();
        }
    }
    EXPECT_TRUE(task.destroy());
    EXPECT_FALSE(task.destroy());
}

TEST(AThread, OnlyCallsItselfDetachedWhenStartedSo) {
    Task task([](Task& self) {
        self.goOn.wait();
        return 0;
    });
    EXPECT_TRUE(task.start(true, -1));
    EXPECT_TRUE(task.isDetached());
    EXPECT_FALSE(task.join());
    task.goOn.signal();
    EXPECT_TRUE(task.destroy());
}

TEST(AThread, CannotStartWithAnImpossiblePriority) {
    Task task([](Task&) { return 0; });
    EXPECT_FALSE(task.start(false, 100000));
    EXPECT_FALSE(task.isRunning());
    EXPECT_FALSE(task.join());
    // Allowed or not by the system, one of both in full.
    const bool started = task.start(false, sched_get_priority_min(SCHED_RR));
    EXPECT_EQ(task.join(), started);
}

TEST(AThread, PassesOnWhatRunThrows) {
    EXPECT_DEATH(
        {
            Task task([](Task&) -> int { throw std::runtime_error("from run"); });
            std::ignore = task.start(false, -1);
            task.join();
        },
        "from run");
}

TEST(AThreadsOwnValue, IsSeenByThatThreadOnly) {
    const unsigned key = Thread::createTLSKey();
    int value = 0;
    EXPECT_EQ(Thread::getTLSValue(key), nullptr);
    EXPECT_TRUE(Thread::setTLSValue(key, &value));
    EXPECT_EQ(Thread::getTLSValue(key), &value);
    std::thread([key] { EXPECT_EQ(Thread::getTLSValue(key), nullptr); }).join();
    EXPECT_FALSE(Thread::setTLSValue(0xFFFFFFFF, &value));
    EXPECT_TRUE(pthread_key_delete(key) == 0);
}

TEST(AThread, IsNotBoundToAProcessor) {
    EXPECT_EQ(Thread::getCurrentProcessor(), 0);
    EXPECT_FALSE(Thread::hasProcessorAffinity());
    EXPECT_TRUE(Thread::setCurrentProcessorAffinity(1, true));
    EXPECT_TRUE(Thread::setCurrentProcessorAffinity(std::vector<int>{0, 1}, false));
    EXPECT_TRUE(Thread::getCurrentProcessorAffinity().empty());
}
