// SPDX-License-Identifier: MIT
// News of the font manager's library, by notification and by Apple event, and who is told.
#include "MacGLYNotifyHandler.h"
#include "misc/exception.h"
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

using namespace GLY;
using BSDNotification::Daemon;
using Texts = std::vector<std::string>;

namespace {

const std::string changed = "<cmd cmd=\"fontChanged\"></cmd>";

constexpr AEEventClass newsClass = FourCharCode("FILC");

/// Writes its name into a list when it is told, and does something then.
class Observer : public IGLYChangeNotifier {
public:
    Observer(std::string name, Texts& told) : name_(std::move(name)), told_(told) {}
    std::int32_t OnGLYNotify(const std::string& text) override {
        EXPECT_EQ(text, changed);
        told_.push_back(name_);
        if (reaction) {
            reaction();
        }
        return 0;
    }
    std::function<void()> reaction;

private:
    std::string name_;
    Texts& told_;
};

class TheNews : public testing::Test {
protected:
    ~TheNews() override {
        handler_.end();
        EXPECT_EQ(platform_.liveRoutines, 0);
        EXPECT_TRUE(platform_.tokens.empty());
        EXPECT_TRUE(platform_.handlers.empty());
    }

    /// What was told since the last call.
    Texts told() { return std::exchange(told_, {}); }
    void tell() { handler_.notifiyAll(changed); }
    void pushTimes(int times) {
        for (int i = 0; i < times; ++i) {
            handler_.push();
        }
    }

    scripted::Platform platform_;
    Texts told_;
    MacGLYNotifyHandler handler_;
    Observer a_{"a", told_};
    Observer b_{"b", told_};
};

} // namespace

TEST_F(TheNews, GoToObserversInOrderAsOftenAsTheyRegistered) {
    handler_.registerNotifer(&b_);
    handler_.registerNotifer(&a_);
    handler_.registerNotifer(&b_);
    EXPECT_EQ(told(), Texts{});
    tell();
    EXPECT_EQ(told(), (Texts{"b", "a", "b"}));
    handler_.unregisterNotifer(&b_); // its first registration
    tell();
    EXPECT_EQ(told(), (Texts{"a", "b"}));
    handler_.unregisterNotifer(&a_);
    handler_.registerNotifer(&a_); // again, at the end
    tell();
    EXPECT_EQ(told(), (Texts{"b", "a"}));
    handler_.registerNotifer(&b_);
    handler_.clearNotifiers(); // not what is queued
    tell();
    EXPECT_EQ(told(), Texts{"b"});
}

TEST_F(TheNews, ReachAnObserverThatChangesTheListMeanwhile) {
    a_.reaction = [this] {
        handler_.unregisterNotifer(&a_);
        handler_.registerNotifer(&b_);
    };
    handler_.registerNotifer(&a_);
    tell();
    EXPECT_EQ(told(), Texts{"a"});
    tell();
    EXPECT_EQ(told(), Texts{"b"});

    b_.reaction = [this] { handler_.clearNotifiers(); };
    handler_.registerNotifer(&a_);
    tell();
    EXPECT_EQ(told(), Texts{"b"});
    tell();
    EXPECT_EQ(told(), Texts{});
}

TEST_F(TheNews, MustBeXml) {
    handler_.registerNotifer(&a_);
    EXPECT_THROW(handler_.notifiyAll("fontChanged"), Orvil::Exception);
    EXPECT_EQ(told(), Texts{});
    tell();
    EXPECT_EQ(told(), Texts{"a"});
}

TEST_F(TheNews, ComeByNotificationOnePerPush) {
    handler_.registerNotifer(&a_);
    handler_.push();
    handler_.start();
    EXPECT_EQ(platform_.registered, Texts{"org.glyphora.Glyphora.FontLibraryChanged"});
    handler_.push();
    EXPECT_EQ(told(), Texts{});
    platform_.post(libraryChangedName);
    platform_.post(libraryChangedName);
    platform_.post("org.example.SomethingElse");
    platform_.awaitAllNoticed();
    handler_.push();
    EXPECT_EQ(told(), Texts{"a"});
    handler_.push();
    EXPECT_EQ(told(), Texts{"a"});
    pushTimes(3);
    EXPECT_EQ(told(), Texts{});
}

TEST_F(TheNews, ComeByTheTwoAppleEventsOfTheirClass) {
    handler_.registerNotifer(&a_);
    handler_.start();
    const std::pair<AEEventID, std::size_t> cases[] = {{FourCharCode("FSBC"), 1},
                                                       {FourCharCode("FFSC"), 1},
                                                       {FourCharCode("fsbc"), 0},
                                                       {FourCharCode("****"), 0}};
    for (const auto& [eventID, notices] : cases) {
        EXPECT_EQ(platform_.handle(newsClass, eventID), noErr);
        EXPECT_EQ(told().size(), notices);
    }
    EXPECT_EQ(platform_.handle(FourCharCode("aevt"), FourCharCode("FSBC")), errAEHandlerNotFound);
    platform_.post(libraryChangedName);
    platform_.awaitAllNoticed();
    platform_.handle(newsClass, FourCharCode("FSBC"));
    pushTimes(2);
    EXPECT_EQ(told().size(), 2U); // of both channels
}

TEST_F(TheNews, NeverBringAFailureToTheirSender) {
    handler_.registerNotifer(&a_);
    handler_.start();
    a_.reaction = [] { throw std::runtime_error("refresh failed"); };
    EXPECT_EQ(platform_.handle(newsClass, FourCharCode("FSBC")), noErr);
    a_.reaction = [] { throw 1; };
    EXPECT_EQ(platform_.handle(newsClass, FourCharCode("FSBC")), noErr);
    EXPECT_EQ(told().size(), 2U);
}

TEST_F(TheNews, EndAndBeginAgain) {
    handler_.end();
    for (int round = 0; round < 2; ++round) {
        handler_.start();
        handler_.start(); // watches once all the same
        EXPECT_TRUE(platform_.hasHandler(newsClass, typeWildCard));
        EXPECT_EQ(platform_.liveRoutines, 1);
        handler_.end();
        EXPECT_FALSE(platform_.hasHandler(newsClass, typeWildCard));
        EXPECT_EQ(platform_.liveRoutines, 0);
    }
    EXPECT_EQ(platform_.registered.size(), 2U);
    EXPECT_EQ(platform_.cancelled, (std::vector<int>{1, 2}));
    handler_.registerNotifer(&a_);
    handler_.push();
    EXPECT_EQ(told(), Texts{});
}

TEST_F(TheNews, CannotBeWatchedWithoutAToken) {
    platform_.registerStatus = 1000000;
    EXPECT_THAT([&] { handler_.start(); },
                testing::ThrowsMessage<std::runtime_error>("token could not be registered"));
    // The other channel is open, and the empty daemon has no news.
    handler_.registerNotifer(&a_);
    handler_.push();
    EXPECT_EQ(told(), Texts{});
    EXPECT_EQ(platform_.handle(newsClass, FourCharCode("FSBC")), noErr);
    EXPECT_EQ(told(), Texts{"a"});
}

TEST_F(TheNews, LeaveOtherHandlersOfTheirEventsAlone) {
    MacGLYNotifyHandler other;
    other.start();
    handler_.end();
    EXPECT_TRUE(platform_.hasHandler(newsClass, typeWildCard));
    handler_.start(); // takes the events over
    other.end();
    EXPECT_TRUE(platform_.hasHandler(newsClass, typeWildCard));
}

TEST(TheProcessWideHandler, IsOneUntilItIsRenewed) {
    const scripted::Platform platform;
    Texts told;
    Observer observer("a", told);
    IGLYNotifyHandler* const first = NotifiyHandlerFactory::getNotifyHandler(false);
    EXPECT_EQ(NotifiyHandlerFactory::getNotifyHandler(false), first);
    EXPECT_FALSE(first->WaitForLaunch());
    first->registerNotifer(&observer);
    first->notifiyAll(changed);
    IGLYNotifyHandler* const renewed = NotifiyHandlerFactory::getNotifyHandler(true);
    EXPECT_EQ(NotifiyHandlerFactory::getNotifyHandler(false), renewed);
    told.clear();
    renewed->notifiyAll(changed);
    EXPECT_EQ(told, Texts{});
}

TEST(ADaemon, KeepsTheMarksOfEachNameApart) {
    scripted::Platform platform;
    Daemon daemon;
    EXPECT_FALSE(daemon.hasFired(""));
    daemon.addListener("b");
    daemon.addListener("a");
    platform.post("a");
    platform.post("b");
    platform.post("b");
    platform.awaitAllNoticed();
    EXPECT_FALSE(daemon.hasFired("c"));
    EXPECT_TRUE(daemon.hasFired("b"));
    EXPECT_TRUE(daemon.hasFired("")); // of a
    EXPECT_FALSE(daemon.hasFired("a"));
    EXPECT_TRUE(daemon.hasFired("")); // of b
    EXPECT_FALSE(daemon.hasFired(""));
}

TEST(ADaemon, CancelsEveryTokenOnce) {
    scripted::Platform platform;
    {
        Daemon daemon;
        daemon.addListener("a");
        daemon.addListener("b");
        daemon.addListener("a"); // the first reader of the name goes
        EXPECT_EQ(platform.cancelled, std::vector<int>{1});
        daemon.removeListener("unknown");
        daemon.removeListener("b");
        EXPECT_EQ(platform.cancelled, (std::vector<int>{1, 2}));
        EXPECT_FALSE(daemon.hasFired("b"));
        daemon.removeListener("");
        EXPECT_EQ(platform.cancelled, (std::vector<int>{1, 2, 3}));
        daemon.addListener("a");
    }
    EXPECT_EQ(platform.cancelled, (std::vector<int>{1, 2, 3, 4}));
    EXPECT_TRUE(platform.tokens.empty());
}
