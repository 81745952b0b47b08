// SPDX-License-Identifier: MIT
// How long a thread sleeps when signals come in between. The system's nanosleep is replaced here: a
// script answers where there is one, and otherwise the clock.
#include "misc/threads/thread.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <ctime>
#include <tuple>
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
