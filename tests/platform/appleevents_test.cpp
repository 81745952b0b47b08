// SPDX-License-Identifier: MIT
// Apple events between real processes over a private bus: answers, time-outs, deaths, addressing.
#include "platform/linux/busnames.h"
#include "tests/platform/events.h"
#include "tests/platform/peerprocess.h"
#include "tests/support/privatebus/privatebus.h"

#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <future>
#include <map>
#include <stdexcept>
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

TEST_F(AnAppleEvent, TimesOutOnASlowPeerAndGoesOn) {
    RegisteredPeer peer({"serve-one", "PEER"});
    EXPECT_EQ(TestEvent("PEER", "hold").send(1), errAETimeout);
    EXPECT_EQ(peer.readLine(), "holding");
    peer.prompt(); // the late answer is nobody's any more
    EXPECT_EQ(TestEvent("PEER", "who ").ask(kNoTimeOut), peer.processID());
}

TEST_F(AnAppleEvent, TimesOutOnASilentPeer) {
    RegisteredPeer peer({"ignore", "PEER"});
    EXPECT_EQ(TestEvent("PEER", "echo").send(1), errAETimeout);
    EXPECT_EQ(TestEvent("PEER", "echo").send(1, kAENoReply), noErr);
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

TEST_F(AnAppleEvent, ReachesThePeerOnANewBus) {
    EXPECT_EQ(TestEvent("PEER", "echo").send(), procNotFound);
    bus.stop();
    const PrivateBus another;
    RegisteredPeer peer({"serve-one", "PEER"});
    EXPECT_EQ(TestEvent("PEER", "who ").ask(), peer.processID());
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
    std::vector<std::thread> threads;
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
    for (std::thread& thread : threads) {
        thread.join();
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

/// Counts and notes the thread; answers with the direct parameter.
struct Handled {
    int count = 0;
    std::thread::id thread;
    std::string text;
};

OSErr note(const AppleEvent* event, AppleEvent* reply, void* refCon) {
    auto& handled = *static_cast<Handled*>(refCon);
    ++handled.count;
    handled.thread = std::this_thread::get_id();
    char buffer[16] = {};
    if (AEGetParamPtr(event, keyDirectObject, typeChar, nullptr, buffer, sizeof buffer - 1,
                      nullptr) == noErr) {
        handled.text += buffer;
    }
    return AEPutParamPtr(reply, keyDirectObject, typeChar, "noted", 5);
}

class AnApplication : public AnAppleEvent {
protected:
    void SetUp() override {
        ASSERT_EQ(PLRegisterApplication(FourCharCode("SELF"), kPLOneInstance, "Self"), noErr);
        ASSERT_EQ(install("TEST", "****", "any "), noErr);
    }
    void TearDown() override {
        for (AEEventHandlerUPP upp : upps) {
            DisposeAEEventHandlerUPP(upp);
        }
        for (const auto& [eventClass, id] : installed) {
            AERemoveEventHandler(eventClass, id, nullptr, false);
        }
        AnAppleEvent::TearDown();
    }
    OSErr install(const char (&eventClass)[5], const char (&id)[5], const std::string& which) {
        upps.push_back(NewAEEventHandlerUPP(note));
        installed.emplace_back(FourCharCode(eventClass), FourCharCode(id));
        return AEInstallEventHandler(FourCharCode(eventClass), FourCharCode(id), upps.back(),
                                     &handled[which], false);
    }
    std::vector<AEEventHandlerUPP> upps;
    std::vector<std::pair<AEEventClass, AEEventID>> installed;
    std::map<std::string, Handled> handled;
};

TEST_F(AnApplication, HandlesEventsOnTheDispatchingThread) {
    auto sent = std::async(std::launch::async, [] {
        TestEvent event("SELF", "echo");
        return event.send(kNoTimeOut) == noErr ? event.text() : std::nullopt;
    });
    EXPECT_EQ(PLWaitForEvents(-1), 1);
    EXPECT_EQ(sent.get(), "noted");
    EXPECT_EQ(handled["any "].thread, std::this_thread::get_id());
    EXPECT_EQ(PLDispatchPendingEvents(), 0);
    EXPECT_EQ(PLWaitForEvents(0), 0);
}

TEST_F(AnApplication, KeepsEventsInOrderUntilItAsks) {
    for (int i = 0; i < 9; ++i) {
        TestEvent event("SELF", "echo");
        event.putText(std::to_string(i));
        ASSERT_EQ(event.send(kAEDefaultTimeout, kAENoReply), noErr);
    }
    pollfd watched{PLEventFileDescriptor(), POLLIN, 0};
    for (int dispatched = 0; dispatched < 9;) {
        ASSERT_EQ(poll(&watched, 1, -1), 1);
        const std::int32_t count = PLDispatchPendingEvents();
        ASSERT_GE(count, 0);
        dispatched += count;
    }
    EXPECT_EQ(handled["any "].text, "012345678");
    EXPECT_EQ(poll(&watched, 1, 0), 0) << "nothing waits any more";
}

TEST_F(AnApplication, HearsAPeerThatSendsAsItsLastDeed) {
    PeerProcess peer({"tell", "SELF", "echo"});
    EXPECT_EQ(peer.wait(), 0);
    EXPECT_EQ(PLWaitForEvents(-1), 1);
    EXPECT_EQ(handled["any "].count, 1);
}

TEST_F(AnApplication, DoesNotWaitForItself) {
    EXPECT_EQ(TestEvent("SELF", "echo").send(kNoTimeOut), errAETimeout);
    EXPECT_EQ(TestEvent(getpid(), "echo").send(kNoTimeOut), errAETimeout);
    EXPECT_EQ(TestEvent(getpid(), "echo").send(kNoTimeOut, kAENoReply), noErr);
    EXPECT_EQ(PLWaitForEvents(-1), 1);
}

TEST_F(AnApplication, CallsTheHandlerThatFitsBest) {
    ASSERT_EQ(install("****", "****", "all "), noErr);
    ASSERT_EQ(install("****", "echo", "echo"), noErr);
    ASSERT_EQ(install("TEST", "who ", "who "), noErr);
    const auto handling = [&](const char(&eventClass)[5], const char(&id)[5]) {
        for (auto& [name, one] : handled) {
            one.count = 0;
        }
        EXPECT_EQ(TestEvent("SELF", id, eventClass).send(kNoTimeOut, kAENoReply), noErr);
        EXPECT_EQ(PLWaitForEvents(-1), 1);
        std::string names;
        for (const auto& [name, one] : handled) {
            names += one.count == 1 ? name : "";
        }
        return names;
    };
    EXPECT_EQ(handling("TEST", "who "), "who ");
    EXPECT_EQ(handling("TEST", "echo"), "any ");
    EXPECT_EQ(handling("OTHR", "echo"), "echo");
    EXPECT_EQ(handling("OTHR", "none"), "all ");
    EXPECT_EQ(AERemoveEventHandler(FourCharCode("TEST"), FourCharCode("who "), nullptr, false),
              noErr);
    EXPECT_EQ(handling("TEST", "who "), "any ");
}

TEST_F(AnApplication, AnswersForAHandlerThatThrows) {
    upps.push_back(NewAEEventHandlerUPP([](const AppleEvent*, AppleEvent*, void*) -> OSErr {
        throw std::runtime_error("thrown by the handler");
    }));
    ASSERT_EQ(AEInstallEventHandler(FourCharCode("TEST"), FourCharCode("who "), upps.back(),
                                    nullptr, false),
              noErr);
    installed.emplace_back(FourCharCode("TEST"), FourCharCode("who "));
    auto status =
        std::async(std::launch::async, [] { return TestEvent("SELF", "who ").send(kNoTimeOut); });
    EXPECT_THROW(PLWaitForEvents(-1), std::runtime_error);
    EXPECT_EQ(status.get(), connectionInvalid);
}

TEST_F(AnApplication, RemovesOnlyTheHandlerThatIsInstalled) {
    const AEEventHandlerUPP other =
        NewAEEventHandlerUPP([](const AppleEvent*, AppleEvent*, void*) -> OSErr { return noErr; });
    const auto remove = [](AEEventHandlerUPP upp, bool isSystem = false) {
        return AERemoveEventHandler(FourCharCode("TEST"), typeWildCard, upp, isSystem);
    };
    EXPECT_EQ(remove(other), errAEHandlerNotFound);
    EXPECT_EQ(remove(upps.front(), true), paramErr);
    EXPECT_EQ(remove(upps.front()), noErr);
    EXPECT_EQ(remove(upps.front()), errAEHandlerNotFound);
    EXPECT_EQ(NewAEEventHandlerUPP(nullptr), nullptr);
    DisposeAEEventHandlerUPP(other);
}

TEST_F(AnApplication, NoticesTheEndOfTheBus) {
    EXPECT_EQ(PLRegisterApplication(FourCharCode("ELSE"), kPLManyInstances, nullptr), paramErr);
    const int descriptor = PLEventFileDescriptor();
    bus.stop();
    pollfd watched{descriptor, POLLIN, 0};
    EXPECT_EQ(poll(&watched, 1, -1), 1);
    EXPECT_EQ(PLDispatchPendingEvents(), connectionInvalid);
    EXPECT_EQ(PLWaitForEvents(-1), connectionInvalid);
    PLUnregisterApplication();
    EXPECT_EQ(PLEventFileDescriptor(), -1);
    const PrivateBus another;
    EXPECT_EQ(PLRegisterApplication(FourCharCode("SELF"), kPLOneInstance, "Self"), noErr);
}

TEST_F(AnApplication, ComesAndGoesWhileOthersSend) {
    std::atomic<bool> done = false;
    std::vector<std::thread> senders;
    for (int i = 0; i < 3; ++i) {
        senders.emplace_back([&done] {
            while (!done) {
                const OSStatus status = TestEvent("SELF", "echo").send(kNoTimeOut);
                EXPECT_TRUE(status == noErr || status == procNotFound ||
                            status == connectionInvalid)
                    << status;
            }
        });
    }
    for (int i = 0; i < 30; ++i) {
        EXPECT_GE(PLWaitForEvents(-1), 0);
        PLUnregisterApplication();
        EXPECT_EQ(PLRegisterApplication(FourCharCode("SELF"), kPLOneInstance, nullptr), noErr);
    }
    done = true;
    PLUnregisterApplication(); // refuses those who wait
    for (std::thread& sender : senders) {
        sender.join();
    }
}

} // namespace
