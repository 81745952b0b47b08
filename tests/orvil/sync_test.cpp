// SPDX-License-Identifier: MIT
// Mutexes, semaphores and events.
#include "failures.h"
#include "misc/threads/mutex.h"
#include "misc/threads/semaphore.h"
#include "misc/threads/synchevent.h"
#include "waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <vector>

using namespace Orvil;

TEST(AMutex, NamesItsErrors) {
    const auto unexpected = [](int error) {
        return "Mutex: unexpected error: " + std::to_string(error) + ": " + std::strerror(error);
    };
    const std::string invalid = "Mutex: waiting on invalid mutex";
    const std::string tooMany = "Mutex: the maximum number of recursive locks has been exceeded";
    const std::tuple<int, std::string, std::string> cases[] = {
        {EDEADLK, "Mutex: deadlock detected", unexpected(EDEADLK)},
        {EINVAL, invalid, invalid},
        {EAGAIN, tooMany, tooMany},
        {EPERM, "Mutex: tried", "Mutex: tried to unlock unlocked mutex"},
        {EBUSY, unexpected(EBUSY), unexpected(EBUSY)},
    };
    for (const auto& [error, lock, unlock] : cases) {
        EXPECT_EQ(Mutex::lockFailure(error).message(), lock);
        EXPECT_EQ(Mutex::unlockFailure(error).message(), unlock);
    }
    EXPECT_NE(Mutex::lockFailure(EPERM).descriptionHeader().find(
                  "'source/externals/orvil/source/misc/threads/mutex'"),
              std::string::npos);
    EXPECT_EQ(Mutex::lockFailure(EPERM).descriptionCode(), "");
}

TEST(AMutex, FailsToUnlockWhatAnotherThreadHolds) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the thread sanitizer reports the wrong use that is tried here";
#endif
    Mutex mutex(true);
    mutex.lock();
    mutex.lock();
    std::thread([&] {
        EXPECT_EQ(messageOf([&] { mutex.unlock(); }), "Mutex: tried to unlock unlocked mutex");
    }).join();
    mutex.unlock();
    mutex.unlock();
    EXPECT_EQ(messageOf([&] { mutex.unlock(); }), "Mutex: tried to unlock unlocked mutex");
}

TEST(ASemaphore, CountsFromItsInitialValueToItsMaximum) {
    Semaphore semaphore(2);
    EXPECT_TRUE(semaphore.trydec());
    semaphore.dec();
    EXPECT_FALSE(semaphore.trydec());
    semaphore.inc();
    EXPECT_TRUE(semaphore.trydec());
    Semaphore full(Semaphore::maximumValue);
    EXPECT_EQ(messageOf([&] { full.inc(); }),
              "Semaphore (Carbon-MP): failed to increment semaphore");
    EXPECT_EQ(messageOf([] { const Semaphore tooMuch(32768); }),
              "Semaphore (Carbon-MP): failed to create semaphore (intialValue: 32768): -50");
}

TEST(AnEvent, IsClearedByAWaitOnlyWithAutoReset) {
    for (const bool autoReset : {true, false}) {
        SynchEvent event(autoReset);
        EXPECT_FALSE(event.wait(0));
        EXPECT_FALSE(event.wait(1));
        event.signal();
        EXPECT_TRUE(event.wait(0));
        EXPECT_EQ(event.wait(0), !autoReset);
        event.signal();
        event.reset();
        EXPECT_FALSE(event.wait(0));
        event.signal();
        EXPECT_TRUE(event.wait());
    }
}

namespace {

/// Threads that sleep in a wait for an event, so long that only a signal wakes them.
class Sleepers {
public:
    Sleepers(const SynchEvent& event, int count) {
        for (int i = 0; i < count; ++i) {
            std::atomic<pid_t> id = 0;
            threads_.emplace_back([this, &event, &id] {
                id = gettid();
                EXPECT_TRUE(event.wait(1'000'000'000));
                ++woken_;
            });
            // One after the other, so that a sleeping thread can only sleep in the wait.
            while (id == 0 || !isAsleep(id)) {
                std::this_thread::yield();
            }
        }
    }

    void awaitWoken(int count) const {
        while (woken_ < count) {
            std::this_thread::yield();
        }
    }

private:
    std::atomic<int> woken_ = 0;
    std::vector<std::jthread> threads_;
};

} // namespace

// A signal that wakes nobody lets these two run into the test's own time limit.
TEST(AnEvent, LetsOneSleeperGoPerSignalWithAutoReset) {
    SynchEvent event(true);
    const Sleepers sleepers(event, 3);
    for (int signals = 1; signals <= 3; ++signals) {
        event.signal();
        sleepers.awaitWoken(signals);
        // Had an earlier signal let two go, the last one would find nobody and stay.
        EXPECT_FALSE(event.wait(0)) << "after signal " << signals;
    }
}

TEST(AnEvent, LetsAllSleepersGoAtOneSignalWithoutAutoReset) {
    SynchEvent event(false);
    const Sleepers sleepers(event, 3);
    event.signal();
    sleepers.awaitWoken(3);
    EXPECT_TRUE(event.wait(0));
}

TEST(AnEvent, LetsEverySleeperOutWhenItDies) {
    for (const bool autoReset : {true, false}) {
        auto event = std::make_unique<SynchEvent>(autoReset);
        const Sleepers sleepers(*event, 3);
        event.reset();
    }
}
