// SPDX-License-Identifier: MIT
// Threads and time: the critical section's count, semaphores with their limits, hand-over,
// cancellation and signals, delays and the clock.
#include "platform/multiprocessing.h"
#include "platform/threads.h"
#include "platform/timing.h"

#include <gtest/gtest.h>

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>
#include <vector>

namespace {

TEST(ACriticalSection, NestsAndEndsAsOftenAsItBegan) {
    EXPECT_EQ(ThreadEndCritical(), threadProtocolErr);
    EXPECT_EQ(ThreadBeginCritical(), noErr);
    EXPECT_EQ(ThreadBeginCritical(), noErr);
    EXPECT_EQ(ThreadEndCritical(), noErr);
    EXPECT_EQ(ThreadEndCritical(), noErr);
    EXPECT_EQ(ThreadEndCritical(), threadProtocolErr);
}

class ASemaphore : public testing::Test {
protected:
    void make(MPSemaphoreCount maximum, MPSemaphoreCount initial) {
        ASSERT_EQ(MPCreateSemaphore(maximum, initial, &semaphore), noErr);
    }
    void TearDown() override {
        if (semaphore != nullptr) {
            EXPECT_EQ(MPDeleteSemaphore(semaphore), noErr);
        }
    }
    /// How many can be taken at once.
    int drain() {
        int taken = 0;
        while (MPWaitOnSemaphore(semaphore, kDurationImmediate) == noErr) {
            ++taken;
        }
        return taken;
    }
    MPSemaphoreID semaphore = nullptr;
};

TEST_F(ASemaphore, RefusesValuesOutOfRange) {
    MPSemaphoreID made = nullptr;
    for (const auto& [maximum, initial] : std::vector<std::pair<unsigned, unsigned>>{
             {0, 0}, {1, 2}, {32768, 0}, {4'000'000'000U, 0}, {5, 4'000'000'000U}}) {
        EXPECT_EQ(MPCreateSemaphore(maximum, initial, &made), paramErr) << maximum << initial;
    }
    EXPECT_EQ(MPCreateSemaphore(1, 0, nullptr), paramErr);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(MPWaitOnSemaphore(nullptr, kDurationImmediate), kMPInvalidIDErr);
    EXPECT_EQ(MPSignalSemaphore(nullptr), kMPInvalidIDErr);
    EXPECT_EQ(MPDeleteSemaphore(nullptr), kMPInvalidIDErr);
}

TEST_F(ASemaphore, FailsToSignalAtTheMaximumAndLosesNothing) {
    make(32767, 32766);
    EXPECT_EQ(MPSignalSemaphore(semaphore), noErr);
    EXPECT_EQ(MPSignalSemaphore(semaphore), kMPInsufficientResourcesErr);
    EXPECT_EQ(drain(), 32767);
    EXPECT_EQ(MPWaitOnSemaphore(semaphore, 1), kMPTimeoutErr);
    EXPECT_EQ(MPSignalSemaphore(semaphore), noErr);
    EXPECT_EQ(MPWaitOnSemaphore(semaphore, kDurationForever), noErr);
}

TEST_F(ASemaphore, HandsEverySignalToExactlyOneWaiter) {
    constexpr int threadCount = 3;
    constexpr int timesEach = 20'000;
    make(50, 0); // small, so that signallers run into the maximum
    std::vector<std::jthread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([this] {
            for (int given = 0; given < timesEach;) {
                MPSignalSemaphore(semaphore) == noErr ? void(++given) : std::this_thread::yield();
            }
        });
        threads.emplace_back([this] {
            for (int taken = 0; taken < timesEach; ++taken) {
                EXPECT_EQ(MPWaitOnSemaphore(semaphore, kDurationForever), noErr);
            }
        });
    }
    threads.clear(); // a lost signal would leave a waiter here for ever
    EXPECT_EQ(drain(), 0);
}

struct Unwound {
    std::atomic<bool>& flag;
    ~Unwound() { flag = true; }
};

struct Waiter {
    MPSemaphoreID semaphore;
    Duration timeout;
    std::atomic<bool> unwound = false;
    std::atomic<bool> returned = false;
    sem_t started{};
};

void* waitInThread(void* data) {
    auto& waiter = *static_cast<Waiter*>(data);
    const Unwound guard{waiter.unwound};
    sem_post(&waiter.started);
    EXPECT_EQ(MPWaitOnSemaphore(waiter.semaphore, waiter.timeout), noErr);
    waiter.returned = true;
    return nullptr;
}

TEST_F(ASemaphore, CanBeCancelledInAWaitWithoutTaking) {
    for (const Duration timeout : {Duration{kDurationForever}, Duration{3'600'000}}) {
        make(2, 0);
        Waiter waiter{semaphore, timeout};
        sem_init(&waiter.started, 0, 0);
        pthread_t thread{};
        ASSERT_EQ(pthread_create(&thread, nullptr, waitInThread, &waiter), 0);
        sem_wait(&waiter.started);
        EXPECT_EQ(pthread_cancel(thread), 0);
        void* result = nullptr;
        EXPECT_EQ(pthread_join(thread, &result), 0);
        EXPECT_EQ(result, PTHREAD_CANCELED);
        EXPECT_TRUE(waiter.unwound);
        EXPECT_FALSE(waiter.returned);
        EXPECT_EQ(MPSignalSemaphore(semaphore), noErr);
        EXPECT_EQ(MPSignalSemaphore(semaphore), noErr);
        EXPECT_EQ(drain(), 2);
        MPDeleteSemaphore(semaphore);
        semaphore = nullptr;
        sem_destroy(&waiter.started);
    }
}

std::atomic<int> interruptions = 0;

TEST_F(ASemaphore, GoesOnWaitingAfterASignalHandler) {
    make(1, 0);
    struct sigaction action {};
    action.sa_handler = [](int) { ++interruptions; }; // no SA_RESTART
    struct sigaction previous {};
    sigaction(SIGUSR1, &action, &previous);
    Waiter waiter{semaphore, kDurationForever};
    sem_init(&waiter.started, 0, 0);
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, nullptr, waitInThread, &waiter), 0);
    sem_wait(&waiter.started);
    while (interruptions < 20) {
        const int before = interruptions;
        while (interruptions == before) {
            // Again and again: a sanitizer may keep a handler back until the next signal.
            pthread_kill(thread, SIGUSR1);
            std::this_thread::yield();
        }
    }
    EXPECT_FALSE(waiter.returned);
    MPSignalSemaphore(semaphore);
    pthread_join(thread, nullptr);
    EXPECT_TRUE(waiter.returned);
    sigaction(SIGUSR1, &previous, nullptr);
    sem_destroy(&waiter.started);
}

TEST(ADelay, LastsAtLeastItsTicks) {
    const std::uint32_t before = TickCount();
    std::uint32_t after = 0;
    Delay(3, &after);
    EXPECT_GE(after - before, 3U);
    EXPECT_GE(TickCount(), after);
    Delay(0, nullptr);
}

TEST(TheClock, CountsFromTheYear2001) {
    using namespace std::chrono;
    const auto sinceEpoch = [] {
        return duration<double>(system_clock::now() - sys_days(year{2001} / January / 1)).count();
    };
    const double before = sinceEpoch();
    const double told = CFAbsoluteTimeGetCurrent();
    const double after = sinceEpoch();
    constexpr double rounding = 1e-5;
    EXPECT_GE(told, before - rounding);
    EXPECT_LE(told, after + rounding);
}

} // namespace
