// SPDX-License-Identifier: MIT
// The critical section's count.
#include "platform/threads.h"

#include <gtest/gtest.h>

namespace {

TEST(ACriticalSection, NestsAndEndsAsOftenAsItBegan) {
    EXPECT_EQ(ThreadEndCritical(), threadProtocolErr);
    EXPECT_EQ(ThreadBeginCritical(), noErr);
    EXPECT_EQ(ThreadBeginCritical(), noErr);
    EXPECT_EQ(ThreadEndCritical(), noErr);
    EXPECT_EQ(ThreadEndCritical(), noErr);
    EXPECT_EQ(ThreadEndCritical(), threadProtocolErr);
}

} // namespace
