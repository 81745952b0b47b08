// SPDX-License-Identifier: MIT
// Mutexes, semaphores, events and the queue between threads.
#include "misc/threads/mutex.h"
#include "misc/threads/safefifobuffer.h"
#include "misc/threads/semaphore.h"
#include "misc/threads/synchevent.h"
#include "waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace Orvil;

namespace {

template <typename Action>
std::string messageOf(Action action) {
    try {
        action();
    } catch (const Exception& failure) {
        return failure.descriptionMessage().substr(std::strlen("\n    User Message : "));
    }
    return "nothing thrown";
}

} // namespace

TEST(AMutex, NamesItsErrors) {
    struct Case {
        int error;
        const char* lock;
        const char* unlock;
    };
    const std::string other =
        "Mutex: unexpected error: " + std::to_string(EBUSY) + ": " + std::strerror(EBUSY);
    const std::string deadlock =
        "Mutex: unexpected error: " + std::to_string(EDEADLK) + ": " + std::strerror(EDEADLK);
    const Case cases[] = {
        {EDEADLK, "Mutex: deadlock detected", deadlock.c_str()},
        {EINVAL, "Mutex: waiting on invalid mutex", "Mutex: waiting on invalid mutex"},
        {EAGAIN, "Mutex: the maximum number of recursive locks has been exceeded",
         "Mutex: the maximum number of recursive locks has been exceeded"},
        {EPERM, "Mutex: tried", "Mutex: tried to unlock unlocked mutex"},
        {EBUSY, other.c_str(), other.c_str()},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(messageOf([&] { throw Mutex::lockFailure(c.error); }), c.lock);
        EXPECT_EQ(messageOf([&] { throw Mutex::unlockFailure(c.error); }), c.unlock);
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

TEST(AMutex, KeepsOthersOutOfAScope) {
    Mutex mutex(false);
    int counter = 0;
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 10000; ++round) {
                const ScopedLock<Mutex> locked(mutex);
                ++counter;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(counter, 40000);
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

TEST(AnEvent, WakesThoseWhoWait) {
    SynchEvent go(false);
    SynchEvent one(true);
    std::atomic<int> woken = 0;
    std::vector<std::thread> threads;
    threads.reserve(3);
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
            EXPECT_TRUE(go.wait());
            EXPECT_TRUE(one.wait());
            ++woken;
            one.signal();
        });
    }
    go.signal();
    one.signal();
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(woken, 3);
}

TEST(AnEvent, LetsEveryWaiterOutWhenItDies) {
    for (const bool autoReset : {true, false}) {
        auto event = std::make_unique<SynchEvent>(autoReset);
        std::vector<std::thread> threads;
        threads.reserve(3);
        for (int i = 0; i < 3; ++i) {
            std::atomic<pid_t> id = 0;
            threads.emplace_back([&id, waitedFor = event.get()] {
                id = gettid();
                EXPECT_TRUE(waitedFor->wait(1000000));
            });
            // One after the other, so that a sleeping thread can only sleep in the wait.
            while (id == 0 || !isAsleep(id)) {
                std::this_thread::yield();
            }
        }
        event.reset();
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
}

TEST(AQueue, GivesItemsInTheirOrder) {
    SafeFIFOBuffer<std::string> queue(SafeFIFOBuffer<std::string>::unboundedCapacity);
    std::string item = "untouched";
    EXPECT_FALSE(queue.tryDequeue(item));
    EXPECT_EQ(item, "untouched");
    for (const char* text : {"a", "b", "c"}) {
        queue.enqueue(text);
    }
    for (const char* text : {"a", "b", "c"}) {
        EXPECT_TRUE(queue.tryDequeue(item));
        EXPECT_EQ(item, text);
    }
    EXPECT_FALSE(queue.tryDequeue(item));
}

TEST(AQueue, MakesProducersWaitAtItsCapacity) {
    SafeFIFOBuffer<int> queue(2);
    std::atomic<pid_t> id = 0;
    std::atomic<bool> entered = false;
    queue.enqueue(1);
    queue.enqueue(2);
    std::thread producer([&] {
        id = gettid();
        queue.enqueue(3);
        entered = true;
    });
    while (id == 0 || !isAsleep(id)) {
        std::this_thread::yield();
    }
    EXPECT_FALSE(entered);
    int item = 0;
    EXPECT_TRUE(queue.tryDequeue(item));
    EXPECT_EQ(item, 1);
    producer.join();
    for (const int expected : {2, 3}) {
        EXPECT_TRUE(queue.tryDequeue(item));
        EXPECT_EQ(item, expected);
    }
}

TEST(AQueue, ThrowsBeyondItsGreatestLengthAndLosesNothing) {
    SafeFIFOBuffer<int> queue(SafeFIFOBuffer<int>::unboundedCapacity);
    for (int i = 0; i < 32767; ++i) {
        queue.enqueue(i);
    }
    EXPECT_EQ(messageOf([&] { queue.enqueue(32767); }),
              "Semaphore (Carbon-MP): failed to increment semaphore");
    int item = -1;
    for (int i = 0; i < 32767; ++i) {
        ASSERT_TRUE(queue.tryDequeue(item));
        ASSERT_EQ(item, i);
    }
    EXPECT_FALSE(queue.tryDequeue(item));
    queue.enqueue(32768);
    EXPECT_TRUE(queue.tryDequeue(item));
    EXPECT_EQ(item, 32767);
}

namespace {

/// Fails to be copied while `fails` is set.
struct Awkward {
    static inline bool fails = false;
    int value = 0;

    explicit Awkward(int number = 0) : value(number) {}
    Awkward(const Awkward& other) : value(other.value) { mayFail(); }
    Awkward& operator=(const Awkward& other) {
        mayFail();
        value = other.value;
        return *this;
    }
    ~Awkward() = default;

    static void mayFail() {
        if (fails) {
            throw std::runtime_error("copy");
        }
    }
};

} // namespace

TEST(AQueue, LosesNeitherItemNorSlotWhenACopyThrows) {
    SafeFIFOBuffer<Awkward> queue(1);
    Awkward item;
    Awkward::fails = true;
    EXPECT_THROW(queue.enqueue(Awkward(1)), std::runtime_error);
    Awkward::fails = false;
    EXPECT_FALSE(queue.tryDequeue(item));
    queue.enqueue(Awkward(2));
    Awkward::fails = true;
    EXPECT_THROW(queue.tryDequeue(item), std::runtime_error);
    Awkward::fails = false;
    EXPECT_TRUE(queue.tryDequeue(item));
    EXPECT_EQ(item.value, 2);
}

// The test's own time limit is the watchdog on progress.
TEST(AQueue, PassesAMillionItemsBetweenManyThreads) {
    constexpr int producers = 4;
    constexpr int consumers = 4;
    constexpr std::uint32_t perProducer = 250000;
    SafeFIFOBuffer<std::uint32_t> queue(64);
    std::atomic<std::uint32_t> taken = 0;
    std::atomic<std::uint64_t> sum = 0;
    std::vector<std::thread> threads;
    for (std::uint32_t producer = 0; producer < producers; ++producer) {
        threads.emplace_back([&queue, producer] {
            for (std::uint32_t i = 0; i < perProducer; ++i) {
                queue.enqueue(producer << 24U | i);
            }
        });
    }
    for (int consumer = 0; consumer < consumers; ++consumer) {
        threads.emplace_back([&] {
            std::vector<std::int64_t> last(producers, -1);
            std::uint64_t own = 0;
            while (taken < producers * perProducer) {
                std::uint32_t item = 0;
                if (!queue.tryDequeue(item)) {
                    std::this_thread::yield();
                    continue;
                }
                ++taken;
                const std::uint32_t number = item & 0xFFFFFFU;
                EXPECT_GT(std::int64_t{number}, last[item >> 24U])
                    << "one producer's items stay in order";
                last[item >> 24U] = number;
                own += number;
            }
            sum += own;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(sum, std::uint64_t{producers} * perProducer * (perProducer - 1) / 2);
    std::uint32_t item = 0;
    EXPECT_FALSE(queue.tryDequeue(item));
}
