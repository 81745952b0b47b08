// SPDX-License-Identifier: MIT
// The queue between threads.
#include "failures.h"
#include "misc/threads/safefifobuffer.h"
#include "waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <vector>

using namespace Orvil;

namespace {

/// Appends `item` to a full queue by another thread, which must wait until `makeRoom` has run.
template <typename T>
void enqueueByWaiting(SafeFIFOBuffer<T>& queue, const T& item,
                      const std::function<void()>& makeRoom) {
    std::atomic<pid_t> id = 0;
    std::atomic<bool> entered = false;
    std::thread producer([&] {
        id = gettid();
        queue.enqueue(item);
        entered = true;
    });
    while (!entered && (id == 0 || !isAsleep(id))) {
        std::this_thread::yield();
    }
    EXPECT_FALSE(entered);
    makeRoom();
    producer.join();
}

} // namespace

TEST(AQueue, MakesProducersWaitAtItsCapacity) {
    SafeFIFOBuffer<int> queue(2);
    int item = 0;
    queue.enqueue(1);
    queue.enqueue(2);
    enqueueByWaiting(queue, 3, [&] {
        EXPECT_TRUE(queue.tryDequeue(item));
        EXPECT_EQ(item, 1);
    });
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
    EXPECT_EQ(item.value, 0);
    queue.enqueue(Awkward(2));
    Awkward::fails = true;
    EXPECT_THROW(std::ignore = queue.tryDequeue(item), std::runtime_error);
    Awkward::fails = false;
    enqueueByWaiting(queue, Awkward(3), [&] { EXPECT_TRUE(queue.tryDequeue(item)); });
    EXPECT_EQ(item.value, 2);
    EXPECT_TRUE(queue.tryDequeue(item));
    EXPECT_EQ(item.value, 3);
}

// The test's own time limit is the watchdog on progress.
TEST(AQueue, PassesAMillionItemsBetweenManyThreads) {
    constexpr int producers = 4;
    constexpr int consumers = 4;
    constexpr std::uint32_t perProducer = 250000;
    SafeFIFOBuffer<std::uint32_t> queue(64);
    std::atomic<std::uint32_t> taken = 0;
    std::atomic<std::uint64_t> sum = 0;
    std::vector<std::jthread> threads;
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
    threads.clear();
    EXPECT_EQ(sum, std::uint64_t{producers} * perProducer * (perProducer - 1) / 2);
    std::uint32_t item = 0;
    EXPECT_FALSE(queue.tryDequeue(item));
}
