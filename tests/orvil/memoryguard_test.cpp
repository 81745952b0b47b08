// SPDX-License-Identifier: MIT
// The memory guard: what it sees, and how it ends.
#include "misc/threads/memoryguard.h"

#include <gtest/gtest.h>

#include <csignal>
#include <tuple>
#include <unistd.h>
#include <vector>

using namespace Orvil;

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
