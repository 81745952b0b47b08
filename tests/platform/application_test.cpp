// SPDX-License-Identifier: MIT
// A registered application: which handler gets an event, on which thread, and until when.
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
using platformtest::TestEvent;
using testsupport::PrivateBus;

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

class AnApplication : public testing::Test {
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
        PLUnregisterApplication();
    }
    OSErr install(const char (&eventClass)[5], const char (&id)[5], const std::string& which) {
        upps.push_back(NewAEEventHandlerUPP(note));
        installed.emplace_back(FourCharCode(eventClass), FourCharCode(id));
        return AEInstallEventHandler(FourCharCode(eventClass), FourCharCode(id), upps.back(),
                                     &handled[which], false);
    }
    PrivateBus bus;
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
    std::vector<std::jthread> senders;
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
}

} // namespace
