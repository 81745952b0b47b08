// SPDX-License-Identifier: MIT
// The life of threads: start, end, use again; what a thread may ask about itself; how long it
// sleeps when signals come in between; and the guard of memory, which is one.
#include "misc/threads/memoryguard.h"
#include "misc/threads/thread.h"
#include "task.h"

#include <gtest/gtest.h>

#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <stdexcept>
#include <thread>
#include <tuple>
#include <utility>
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

namespace {

/// What the scripted sleep was asked for, in seconds and nanoseconds, and what it leaves each time.
struct Script {
    using Time = std::pair<time_t, long>;
    std::vector<Time> asked;
    std::vector<Time> rests; // one for every sleep that a signal interrupts
};
thread_local Script* script = nullptr;

} // namespace

extern "C" int nanosleep(const timespec* wanted, timespec* rest) {
    if (script == nullptr) {
        errno = clock_nanosleep(CLOCK_MONOTONIC, 0, wanted, rest);
        return errno == 0 ? 0 : -1;
    }
    const std::size_t call = script->asked.size();
    script->asked.emplace_back(wanted->tv_sec, wanted->tv_nsec);
    if (call >= script->rests.size()) {
        return 0;
    }
    if (rest != nullptr) {
        std::tie(rest->tv_sec, rest->tv_nsec) = script->rests[call];
    }
    errno = EINTR;
    return -1;
}

TEST(ASleep, GoesOnForTheRestAfterEachSignal) {
    Script interrupted{{}, {{1, 2}, {0, 400'000'000}, {0, 1}}};
    script = &interrupted;
    Thread::sleep(1500);
    script = nullptr;
    EXPECT_EQ(interrupted.asked,
              (std::vector<Script::Time>{{1, 500'000'000}, {1, 2}, {0, 400'000'000}, {0, 1}}));
}

TEST(AMemoryGuard, StopsTheProcessByItselfWhileItRuns) {
    EXPECT_EXIT(
        {
            std::signal(SIGSEGV, SIG_DFL);
            alarm(60); // the end if nobody looks
            std::vector<std::uint32_t> words(3, 1);
            MemoryGuard guard;
            guard.addEntry(words.data(), words.size());
            std::ignore = guard.start(false, -1);
            __atomic_store_n(&words[2], 4, __ATOMIC_RELAXED);
            guard.join();
        },
        testing::KilledBySignal(SIGSEGV), "");
}

TEST(AMemoryGuard, WatchesUntilItIsDestroyed) {
    const std::vector<std::uint32_t> words(100, 7);
    {
        MemoryGuard guard;
        EXPECT_TRUE(guard.start(false, -1));
        EXPECT_TRUE(guard.addEntry(words.data(), words.size()));
        EXPECT_TRUE(guard.isRunning());
    }
    MemoryGuard again;
    EXPECT_TRUE(again.start(false, -1));
    EXPECT_TRUE(again.destroy());
    EXPECT_FALSE(again.isRunning());
}
