// SPDX-License-Identifier: MIT
// Apple events between real processes over a private bus: answers, time-outs, deaths, addressing.
#include "platform/linux/busnames.h"
#include "tests/platform/events.h"
#include "tests/platform/peerprocess.h"
#include "tests/support/privatebus/privatebus.h"

#include <unistd.h>

#include <future>
#include <string>
#include <thread>
#include <vector>

namespace {

using platformtest::PeerProcess;
using platformtest::RawConnection;
using platformtest::RegisteredPeer;
using platformtest::TestEvent;
using testsupport::PrivateBus;

class AnAppleEvent : public testing::Test {
protected:
    void TearDown() override { PLUnregisterApplication(); }
    PrivateBus bus;
};

TEST_F(AnAppleEvent, ComesBackWithTheAnswer) {
    RegisteredPeer peer({"serve-one", "PEER"});
    TestEvent event("PEER", "echo");
    event.putText("<cmd>fontRequest \xC3\xA4</cmd>\n");
    for (int i = 0; i < 3; ++i) { // an event may be sent again
        EXPECT_EQ(event.send(), noErr);
        EXPECT_EQ(event.text(), "<cmd>fontRequest \xC3\xA4</cmd>\n");
    }
    EXPECT_EQ(TestEvent(peer.processID(), "who ").ask(), peer.processID());
}

TEST_F(AnAppleEvent, ReportsWhatTheHandlerSaid) {
    RegisteredPeer peer({"serve-one", "PEER"});
    TestEvent failing("PEER", "fail");
    EXPECT_EQ(failing.send(), noErr);
    EXPECT_EQ(failing.number(keyErrorNumber), -1234);
    TestEvent handled("PEER", "who ");
    EXPECT_EQ(handled.send(), noErr);
    EXPECT_EQ(handled.number(keyErrorNumber), std::nullopt);
    EXPECT_EQ(TestEvent("PEER", "echo", "OTHR").send(), errAEEventNotHandled);
}

TEST_F(AnAppleEvent, FailsAtOnceWhenNobodyIsThere) {
    EXPECT_EQ(TestEvent("NONE", "echo").send(kNoTimeOut), procNotFound);
    EXPECT_EQ(TestEvent("NONE", "echo").send(kNoTimeOut, kAENoReply), procNotFound);
    EXPECT_EQ(TestEvent(getpid(), "echo").send(kNoTimeOut), procNotFound);
    bus.stop();
    EXPECT_EQ(TestEvent("NONE", "echo").send(kNoTimeOut), connectionInvalid);
}

TEST_F(AnAppleEvent, TimesOutOnASlowOrSilentPeerAndGoesOn) {
    RegisteredPeer silent({"ignore", "MUTE"});
    EXPECT_EQ(TestEvent("MUTE", "echo").send(1), errAETimeout);
    EXPECT_EQ(TestEvent("MUTE", "echo").send(1, kAENoReply), noErr);
    RegisteredPeer peer({"serve-one", "PEER"});
    EXPECT_EQ(TestEvent("PEER", "hold").send(1), errAETimeout);
    EXPECT_EQ(peer.readLine(), "holding");
    peer.prompt(); // the late answer is nobody's any more
    EXPECT_EQ(TestEvent("PEER", "who ").ask(kNoTimeOut), peer.processID());
}

TEST_F(AnAppleEvent, FailsAtOnceWhenThePeerIsKilled) {
    // By itself, and from outside; there is no time-out that could end either.
    for (const bool whileHolding : {false, true}) {
        RegisteredPeer peer({"serve-one", "PEER"});
        std::thread killer([&] {
            if (whileHolding) {
                EXPECT_EQ(peer.readLine(), "holding");
                peer.kill();
            }
        });
        TestEvent event("PEER", whileHolding ? "hold" : "die ");
        EXPECT_EQ(event.send(kNoTimeOut), connectionInvalid);
        killer.join();
        peer.kill();
        EXPECT_EQ(TestEvent("PEER", "echo").send(kNoTimeOut), procNotFound);
    }
}

TEST_F(AnAppleEvent, ArrivesFromAPeerThatDiesRightAfterItsAnswer) {
    RegisteredPeer peer({"serve-one", "PEER"});
    EXPECT_EQ(TestEvent("PEER", "last").ask(kNoTimeOut), 1);
    EXPECT_EQ(peer.wait(), -1);
    EXPECT_EQ(TestEvent("PEER", "echo").send(kNoTimeOut), procNotFound);
}

TEST_F(AnAppleEvent, EndsWithTheBus) {
    RegisteredPeer peer({"serve-one", "PEER"});
    std::thread killer([&] {
        EXPECT_EQ(peer.readLine(), "holding");
        bus.stop();
    });
    EXPECT_EQ(TestEvent("PEER", "hold").send(kNoTimeOut), connectionInvalid);
    killer.join();
    peer.prompt();
    EXPECT_EQ(peer.readLine(), "bus gone");
}

TEST_F(AnAppleEvent, PrefersTheSingleInstanceThenTheLowestProcess) {
    RegisteredPeer first({"serve-many", "PEER"});
    RegisteredPeer second({"serve-many", "PEER"});
    const auto answering = [] { return TestEvent("PEER", "who ").ask(); };
    EXPECT_EQ(answering(), std::min(first.processID(), second.processID()));
    {
        RegisteredPeer single({"serve-one", "PEER"});
        EXPECT_EQ(answering(), single.processID());
        PeerProcess late({"serve-one", "PEER"});
        EXPECT_EQ(late.readLine(), std::to_string(kPLAlreadyRunningErr));
    }
    const pid_t last = std::max(first.processID(), second.processID());
    (first.processID() == last ? second : first).kill();
    EXPECT_EQ(answering(), last);
}

TEST_F(AnAppleEvent, IsNotGivenToAPeerThatLiesAboutItsProcess) {
    RawConnection liar(bus.address());
    liar.ownName(platform::busNameOf({FourCharCode("PEER"), 1}));
    EXPECT_EQ(TestEvent("PEER", "who ").send(kNoTimeOut), procNotFound);
    EXPECT_EQ(TestEvent(1, "who ").send(kNoTimeOut), procNotFound);
    RegisteredPeer peer({"serve-many", "PEER"});
    EXPECT_EQ(TestEvent("PEER", "who ").ask(), peer.processID());
}

TEST_F(AnAppleEvent, MayBeSentByFourThreadsAtOnce) {
    RegisteredPeer peer({"serve-one", "PEER"});
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread] {
            for (int i = 0; i < 50; ++i) {
                TestEvent event("PEER", "echo");
                const std::string text = std::to_string(thread) + " " + std::to_string(i);
                event.putText(text);
                EXPECT_EQ(event.send(), noErr);
                EXPECT_EQ(event.text(), text);
            }
        });
    }
}

TEST_F(AnAppleEvent, MayBeAsLargeAsTheLimit) {
    RegisteredPeer peer({"serve-one", "PEER"});
    TestEvent event("PEER", "echo");
    std::string text(kAEMaximumEventSize - 16, 'x');
    text.front() = 'a';
    text.back() = 'z';
    ASSERT_EQ(event.putText(text), noErr);
    EXPECT_EQ(event.send(kNoTimeOut), noErr);
    EXPECT_TRUE(event.text() == text);
    EXPECT_EQ(event.putText(text + "12345"), memFullErr);
    TestEvent after("PEER", "who ");
    EXPECT_EQ(after.send(), noErr) << "the connection survives";
}

TEST_F(AnAppleEvent, WaitingBehindAnUnregistrationIsRefused) {
    RegisteredPeer peer({"serve-one", "PEER"});
    std::thread holder([] { EXPECT_EQ(TestEvent("PEER", "hold").send(kNoTimeOut), noErr); });
    EXPECT_EQ(peer.readLine(), "holding");
    // While the peer is held, the next two wait in its queue, in this order.
    EXPECT_EQ(TestEvent("PEER", "quit").send(kNoTimeOut, kAENoReply), noErr);
    auto refused =
        std::async(std::launch::async, [] { return TestEvent("PEER", "who ").send(kNoTimeOut); });
    EXPECT_EQ(TestEvent("PEER", "who ").send(1), errAETimeout) << "it is in the queue now";
    peer.prompt();
    holder.join();
    // Refused in the queue, or found nobody when it came too late for that.
    const OSStatus status = refused.get();
    EXPECT_TRUE(status == connectionInvalid || status == procNotFound) << status;
}

} // namespace
