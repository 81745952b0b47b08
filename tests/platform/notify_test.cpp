// SPDX-License-Identifier: MIT
// Change notifications: every posting is counted once per token, whoever posts it.
#include "platform/notify.h"

#include "tests/platform/events.h"
#include "tests/platform/peerprocess.h"
#include "tests/support/privatebus/privatebus.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

using platformtest::PeerProcess;

constexpr const char* postedName = "org.glyphora.test.FontLibraryChanged";

class ANotification : public testing::Test {
protected:
    static int tokenFor(const char* name) {
        int token = -1;
        EXPECT_EQ(notify_register_check(name, &token), NOTIFY_STATUS_OK);
        return token;
    }
    static bool posted(int token) {
        int check = -1;
        EXPECT_EQ(notify_check(token, &check), NOTIFY_STATUS_OK);
        return check == 1;
    }
    /// Waits until everything that was posted before is counted: a marker of our own comes after.
    static void settle() {
        const int marker = tokenFor("org.glyphora.test.Marker");
        EXPECT_EQ(notify_post("org.glyphora.test.Marker"), NOTIFY_STATUS_OK);
        while (!posted(marker)) {
            std::this_thread::yield();
        }
        notify_cancel(marker);
    }
    static int countOf(int token) {
        int count = 0;
        while (posted(token)) {
            ++count;
        }
        return count;
    }
    testsupport::PrivateBus bus;
};

TEST_F(ANotification, GivesOneCheckPerPosting) {
    const int early = tokenFor(postedName);
    const int other = tokenFor("org.glyphora.test.Other");
    EXPECT_FALSE(posted(early));
    EXPECT_EQ(notify_post(postedName), NOTIFY_STATUS_OK);
    EXPECT_EQ(notify_post(postedName), NOTIFY_STATUS_OK);
    settle();
    const int late = tokenFor(postedName);
    EXPECT_EQ(notify_post(postedName), NOTIFY_STATUS_OK);
    settle();
    EXPECT_EQ(countOf(early), 3);
    EXPECT_EQ(countOf(late), 1);
    EXPECT_EQ(countOf(other), 0);
    EXPECT_EQ(notify_cancel(early), NOTIFY_STATUS_OK);
    EXPECT_EQ(notify_post(postedName), NOTIFY_STATUS_OK);
    settle();
    EXPECT_EQ(countOf(late), 1) << "the name is still wanted by the other token";
    EXPECT_EQ(notify_cancel(late), NOTIFY_STATUS_OK);
    EXPECT_EQ(notify_cancel(other), NOTIFY_STATUS_OK);
}

TEST_F(ANotification, IsNotLostAmongThousandsFromTwoProcesses) {
    constexpr int timesEach = 2000;
    PeerProcess first({"post", postedName, std::to_string(timesEach)});
    PeerProcess second({"post", postedName, std::to_string(timesEach)});
    const int token = tokenFor(postedName);
    for (PeerProcess* peer : {&first, &second}) {
        EXPECT_EQ(peer->readLine(), "ready");
        peer->prompt();
    }
    // Two readers share the token while the postings come in.
    std::atomic<int> seen = 0;
    std::vector<std::jthread> readers;
    for (int i = 0; i < 2; ++i) {
        readers.emplace_back([&] {
            while (seen < 2 * timesEach) {
                posted(token) ? void(++seen) : std::this_thread::yield();
            }
        });
    }
    readers.clear();
    EXPECT_EQ(first.readLine(), "posted");
    EXPECT_EQ(second.readLine(), "posted");
    settle();
    EXPECT_EQ(seen, 2 * timesEach);
    EXPECT_EQ(countOf(token), 0);
    notify_cancel(token);
}

TEST_F(ANotification, NeedsALegalNameAndAKnownToken) {
    int token = -1;
    for (const char* name : {"", "single", "with space.x", "a..b", "org.9digit", ".org.x"}) {
        EXPECT_EQ(notify_register_check(name, &token), NOTIFY_STATUS_INVALID_NAME) << name;
        EXPECT_EQ(notify_post(name), NOTIFY_STATUS_INVALID_NAME) << name;
    }
    EXPECT_EQ(notify_post(nullptr), NOTIFY_STATUS_INVALID_NAME);
    int check = 5;
    for (const int unknown : {-1, 0, 4095, 1 << 30}) {
        EXPECT_EQ(notify_check(unknown, &check), NOTIFY_STATUS_INVALID_TOKEN) << unknown;
        EXPECT_EQ(notify_cancel(unknown), NOTIFY_STATUS_INVALID_TOKEN) << unknown;
    }
    EXPECT_EQ(check, 5);
    const int first = tokenFor(postedName);
    EXPECT_EQ(notify_cancel(first), NOTIFY_STATUS_OK);
    EXPECT_EQ(notify_cancel(first), NOTIFY_STATUS_INVALID_TOKEN);
    const int second = tokenFor(postedName);
    EXPECT_EQ(notify_check(first, &check), NOTIFY_STATUS_INVALID_TOKEN) << "its place is reused";
    notify_cancel(second);
}

TEST_F(ANotification, GoesOnOverANewBus) {
    const int token = tokenFor(postedName);
    EXPECT_EQ(notify_post(postedName), NOTIFY_STATUS_OK);
    settle();
    bus.stop();
    EXPECT_EQ(notify_post(postedName), NOTIFY_STATUS_FAILED);
    int failed = -1;
    EXPECT_EQ(notify_register_check(postedName, &failed), NOTIFY_STATUS_FAILED);
    const testsupport::PrivateBus another;
    EXPECT_EQ(notify_post(postedName), NOTIFY_STATUS_OK);
    settle();
    EXPECT_EQ(countOf(token), 2) << "one on each bus";
    EXPECT_EQ(notify_cancel(token), NOTIFY_STATUS_OK);
}

TEST_F(ANotification, IsNotCountedFromLookAlikes) {
    const int token = tokenFor(postedName);
    platformtest::RawConnection stranger(bus.address());
    const auto emit = [&](const char* path, const char* member) {
        g_dbus_connection_emit_signal(stranger.get(), nullptr, path, postedName, member, nullptr,
                                      nullptr);
    };
    emit("/org/glyphora/Notify2", "Posted");
    emit("/org/glyphora/Notify1", "Removed");
    emit("/org/glyphora/Notify1", "Posted");
    g_dbus_connection_flush_sync(stranger.get(), nullptr, nullptr);
    while (!posted(token)) {
        std::this_thread::yield();
    }
    settle();
    EXPECT_EQ(countOf(token), 0);
    notify_cancel(token);
}

} // namespace
