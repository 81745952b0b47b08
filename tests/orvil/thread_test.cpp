// SPDX-License-Identifier: MIT
// The life of threads: start, end, cancellation, detaching and use again.
#include "misc/threads/semaphore.h"
#include "misc/threads/smartpointer.h"
#include "misc/threads/thread.h"
#include "waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <functional>
#include <memory>
#include <sched.h>
#include <stdexcept>
#include <thread>
#include <unistd.h>
#include <utility>

using namespace Orvil;

namespace {

class Task : public Thread {
public:
    explicit Task(std::function<int(Task&)> work) : work_(std::move(work)) {}
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    ~Task() override { destroy(); }

    int run() override { return work_(*this); }

    Semaphore reached{0};
    SynchEvent goOn{false};

private:
    std::function<int(Task&)> work_;
};

/// Tells that it was left, by unwinding too.
struct Scope {
    explicit Scope(std::atomic<bool>& flag) : left(flag) {}
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    ~Scope() { left = true; }
    std::atomic<bool>& left;
};

} // namespace

TEST(AThread, RunsOnceAndCanBeUsedAgain) {
    int runs = 0;
    Task task([&](Task& self) {
        EXPECT_TRUE(self.isRunning());
        return ++runs;
    });
    EXPECT_FALSE(task.isRunning());
    EXPECT_FALSE(task.join());
    EXPECT_FALSE(task.destroy());
    EXPECT_FALSE(task.detach());
    EXPECT_EQ(task.getReturnCode(), 0);
    for (int round = 1; round <= 3; ++round) {
        EXPECT_TRUE(task.start(false, -1));
        EXPECT_TRUE(task.join());
        EXPECT_FALSE(task.isRunning());
        EXPECT_FALSE(task.isDetached());
        EXPECT_EQ(task.getReturnCode(), round);
        EXPECT_FALSE(task.join());
    }
}

TEST(AThread, StartsAgainAfterItHasFinishedUnjoined) {
    Task task([](Task& self) {
        self.reached.inc();
        return 0;
    });
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(task.start(false, -1));
        task.reached.dec();
        while (task.isRunning()) {
            Thread::yield();
        }
    }
    EXPECT_TRUE(task.destroy());
    EXPECT_FALSE(task.destroy());
}

TEST(AThread, RefusesToStartWhileItRuns) {
    Task task([](Task& self) {
        self.reached.inc();
        self.goOn.wait();
        return 5;
    });
    EXPECT_TRUE(task.start(false, -1));
    EXPECT_FALSE(task.start(false, -1));
    task.goOn.signal();
    EXPECT_TRUE(task.join());
    EXPECT_EQ(task.getReturnCode(), 5);
}

TEST(AThread, IsCancelledInAnUntimedWaitAndUnwound) {
    std::atomic<bool> left = false;
    Task task([&](Task& self) {
        const Scope scope(left);
        self.reached.inc();
        self.goOn.wait();
        return 1;
    });
    EXPECT_TRUE(task.start(false, -1));
    task.reached.dec();
    EXPECT_TRUE(task.destroy());
    EXPECT_TRUE(left);
    EXPECT_FALSE(task.isRunning());
    EXPECT_EQ(task.getReturnCode(), 0);
}

TEST(AThread, IsCancelledWhileItTakesFromASemaphore) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the address sanitizer cannot follow a forced unwinding out of the semaphore";
#endif
    std::atomic<bool> left = false;
    Semaphore empty(0);
    Task task([&](Task& self) {
        const Scope scope(left);
        self.reached.inc();
        empty.dec();
        return 1;
    });
    EXPECT_TRUE(task.start(false, -1));
    task.reached.dec();
    EXPECT_TRUE(task.destroy());
    EXPECT_TRUE(left);
    empty.inc();
    EXPECT_TRUE(empty.trydec()) << "a cancelled wait takes nothing";
}

TEST(AThread, EndsWithItsObject) {
    for (const bool detached : {false, true}) {
        std::atomic<bool> left = false;
        {
            Task task([&](Task& self) {
                const Scope scope(left);
                self.reached.inc();
                for (;;) {
                    Thread::sleep(1);
                }
                return 0;
            });
            EXPECT_TRUE(task.start(detached, -1));
            task.reached.dec();
        }
        EXPECT_TRUE(left);
    }
}

TEST(AThread, OnlyCallsItselfDetachedWhenStartedSo) {
    Task task([](Task& self) {
        self.goOn.wait();
        return 0;
    });
    EXPECT_TRUE(task.start(true, -1));
    EXPECT_TRUE(task.isDetached());
    EXPECT_FALSE(task.join());
    task.goOn.signal();
    EXPECT_TRUE(task.destroy());
}

TEST(ADetachedThread, IsWaitedForByItsObjectAllTheSame) {
    std::atomic<bool> left = false;
    Task task([&](Task& self) {
        const Scope scope(left);
        self.reached.inc();
        self.goOn.wait();
        return 0;
    });
    EXPECT_TRUE(task.start(false, -1));
    EXPECT_TRUE(task.detach());
    EXPECT_TRUE(task.detach());
    EXPECT_TRUE(task.isDetached());
    EXPECT_FALSE(task.join());
    task.reached.dec();
    EXPECT_TRUE(task.destroy());
    EXPECT_TRUE(left);
}

TEST(ADetachedThread, LeavesNothingToDestroyOnceItHasEnded) {
    Task task([](Task& self) {
        self.reached.inc();
        self.goOn.wait();
        return 3;
    });
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(task.start(false, -1));
        EXPECT_TRUE(task.detach());
        task.reached.dec();
        task.goOn.signal();
        while (task.isRunning()) {
            Thread::yield();
        }
        EXPECT_FALSE(task.destroy());
        EXPECT_FALSE(task.detach());
        EXPECT_EQ(task.getReturnCode(), 3);
    }
}

TEST(AThread, CannotStartWithAnImpossiblePriority) {
    Task task([](Task&) { return 0; });
    EXPECT_FALSE(task.start(false, 100000));
    EXPECT_FALSE(task.isRunning());
    EXPECT_FALSE(task.join());
    // Allowed or not by the system, one of both in full.
    const bool started = task.start(false, sched_get_priority_min(SCHED_RR));
    EXPECT_EQ(task.join(), started);
}

TEST(AThread, PassesOnWhatRunThrows) {
    EXPECT_DEATH(
        {
            Task task([](Task&) -> int { throw std::runtime_error("from run"); });
            task.start(false, -1);
            task.join();
        },
        "from run");
}

namespace {

class SharedThread : public Thread, public SmartPointable {
public:
    SharedThread(Semaphore& ended) : ended_(ended) {}
    ~SharedThread() override {
        destroy();
        ended_.inc();
    }
    SharedThread(const SharedThread&) = delete;
    SharedThread& operator=(const SharedThread&) = delete;
    int run() override {
        for (;;) {
            sleep(1);
        }
        return 0;
    }

private:
    Semaphore& ended_;
};

} // namespace

TEST(ACancelledThread, MayHoldTheLastReferenceOnAnotherThread) {
    Semaphore ended(0);
    Task task([&](Task& self) {
        const SmartPointer<SharedThread> held(new SharedThread(ended));
        held->start(false, -1);
        self.reached.inc();
        self.goOn.wait();
        return 0;
    });
    EXPECT_TRUE(task.start(false, -1));
    task.reached.dec();
    EXPECT_TRUE(task.destroy());
    EXPECT_TRUE(ended.trydec());
}

TEST(ADestroyedThread, IsACancellationPointThatEndsTheDestroyer) {
    std::atomic<bool> passed = false;
    std::atomic<bool> left = false;
    Semaphore ended(0);
    Task task([&](Task& self) {
        const Scope scope(left);
        auto inner = std::make_unique<SharedThread>(ended);
        inner->start(false, -1);
        pthread_cancel(pthread_self());
        delete inner.release();
        passed = true;
        self.reached.inc();
        return 0;
    });
    EXPECT_TRUE(task.start(false, -1));
    EXPECT_TRUE(task.join());
    EXPECT_TRUE(left);
    EXPECT_FALSE(passed);
    EXPECT_TRUE(ended.trydec());
}

namespace {
std::atomic<int> signalsSeen = 0;
void countSignal(int /*number*/) {
    ++signalsSeen;
}
} // namespace

TEST(ASleep, TakesItsWholeTimeInSpiteOfSignals) {
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
    Thread::sleep(1020);
    const auto slept = std::chrono::steady_clock::now() - start;
    disturber.join();
    sigaction(SIGUSR1, &before, nullptr);
    EXPECT_EQ(signalsSeen, 3);
    EXPECT_GE(slept, std::chrono::milliseconds(1020));
}

TEST(AThreadsOwnValue, IsSeenByThatThreadOnly) {
    const unsigned key = Thread::createTLSKey();
    int value = 0;
    EXPECT_EQ(Thread::getTLSValue(key), nullptr);
    EXPECT_TRUE(Thread::setTLSValue(key, &value));
    EXPECT_EQ(Thread::getTLSValue(key), &value);
    std::thread([key] { EXPECT_EQ(Thread::getTLSValue(key), nullptr); }).join();
    EXPECT_FALSE(Thread::setTLSValue(0xFFFFFFFF, &value));
    EXPECT_TRUE(pthread_key_delete(key) == 0);
}

TEST(AThread, IsNotBoundToAProcessor) {
    EXPECT_EQ(Thread::getCurrentProcessor(), 0);
    EXPECT_FALSE(Thread::hasProcessorAffinity());
    EXPECT_TRUE(Thread::setCurrentProcessorAffinity(1, true));
    EXPECT_TRUE(Thread::setCurrentProcessorAffinity(std::vector<int>{0, 1}, false));
    EXPECT_TRUE(Thread::getCurrentProcessorAffinity().empty());
}
