// SPDX-License-Identifier: MIT
// How long a thread sleeps when signals come in between. The system's nanosleep is replaced here: a
// script answers where there is one, and otherwise the clock.
#include "misc/threads/thread.h"
#include "waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace Orvil;

namespace {

/// What the scripted sleep was asked for, in seconds and nanoseconds, and what it leaves each time.
struct Script {
    using Time = std::pair<time_t, long>;
    std::vector<Time> asked;
    std::vector<Time> rests; // one for every sleep that a signal interrupts
};
thread_local Script* script = nullptr;

} // namespace

extern "C" int nanosleep(const timespec* wanted, timespec* rest) {
    if (script == nullptr) {
        errno = clock_nanosleep(CLOCK_MONOTONIC, 0, wanted, rest);
        return errno == 0 ? 0 : -1;
    }
    const std::size_t call = script->asked.size();
    script->asked.emplace_back(wanted->tv_sec, wanted->tv_nsec);
    if (call >= script->rests.size()) {
        return 0;
    }
    if (rest != nullptr) {
        std::tie(rest->tv_sec, rest->tv_nsec) = script->rests[call];
    }
    errno = EINTR;
    return -1;
}

TEST(ASleep, GoesOnForTheRestAfterEachSignal) {
    Script interrupted{{}, {{1, 2}, {0, 400'000'000}, {0, 1}}};
    script = &interrupted;
    Thread::sleep(1500);
    script = nullptr;
    EXPECT_EQ(interrupted.asked,
              (std::vector<Script::Time>{{1, 500'000'000}, {1, 2}, {0, 400'000'000}, {0, 1}}));
}

namespace {
std::atomic<int> signalsSeen = 0;
void countSignal(int /*number*/) {
    ++signalsSeen;
}
} // namespace

TEST(ASleep, TakesItsWholeTimeInSpiteOfSignals) {
    signalsSeen = 0;
    struct sigaction action {};
    action.sa_handler = countSignal;
    struct sigaction before {};
    sigaction(SIGUSR1, &action, &before);
    std::thread disturber([sleeper = Thread::getThreadId(), id = gettid()] {
        for (int sent = 0; sent < 3; ++sent) {
            while (!isAsleep(id)) {
                Thread::yield();
            }
            pthread_kill(sleeper, SIGUSR1);
            while (signalsSeen == sent) {
                Thread::yield();
            }
        }
    });
    const auto start = std::chrono::steady_clock::now();
    Thread::sleep(220);
    const auto slept = std::chrono::steady_clock::now() - start;
    disturber.join();
    sigaction(SIGUSR1, &before, nullptr);
    EXPECT_EQ(signalsSeen, 3);
    EXPECT_GE(slept, std::chrono::milliseconds(220));
}
