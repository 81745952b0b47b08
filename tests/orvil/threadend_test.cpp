// SPDX-License-Identifier: MIT
// How threads come to an end: cancellation, detaching, and objects that go while their threads run.
#include "misc/threads/semaphore.h"
#include "misc/threads/smartpointer.h"
#include "misc/threads/thread.h"
#include "task.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <utility>

using namespace Orvil;

TEST(AThread, IsCancelledInAnUntimedWaitAndUnwoundDetachedOrNot) {
    for (const bool detached : {false, true}) {
        std::atomic<bool> left = false;
        Task task([&](Task& self) {
            const Scope scope(left);
            self.reached.inc();
            self.goOn.wait();
            return 1;
        });
        EXPECT_TRUE(task.start(false, -1));
        EXPECT_TRUE(!detached || (task.detach() && task.detach() && !task.join()));
        EXPECT_EQ(task.isDetached(), detached);
        task.reached.dec();
        EXPECT_TRUE(task.destroy());
        EXPECT_TRUE(left);
        EXPECT_FALSE(task.isRunning());
        EXPECT_EQ(task.getReturnCode(), 0);
    }
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

TEST(ADetachedThread, LeavesNothingToDestroyOnceItHasEnded) {
    Task task([](Task& self) {
        self.reached.inc();
        self.goOn.wait();
        return 3;
    });
    // Again and again, and asked at once, since the last steps of a thread are short.
    for (int round = 0; round < 10000; ++round) {
        task.goOn.reset();
        ASSERT_TRUE(task.start(false, -1));
        ASSERT_TRUE(task.detach());
        task.reached.dec();
        task.goOn.signal();
        while (task.isRunning()) {
            Thread::yield();
        }
        ASSERT_FALSE(task.destroy()) << "in round " << round;
        ASSERT_FALSE(task.detach());
        ASSERT_EQ(task.getReturnCode(), 3);
    }
}

namespace {

class SharedThread : public Thread, public SmartPointable {
public:
    SharedThread(Semaphore& ended) : ended_(ended) {}
    ~SharedThread() override {
        destroy();
        ended_.inc();
    }
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
        EXPECT_TRUE(held->start(false, -1));
        self.reached.inc();
        self.goOn.wait();
        return 0;
    });
    EXPECT_TRUE(task.start(false, -1));
    task.reached.dec();
    EXPECT_TRUE(task.destroy());
    EXPECT_TRUE(ended.trydec());
}

namespace {

/// Holds itself until its run() lets go.
class SelfHeldThread : public Thread, public SmartPointable {
public:
    SelfHeldThread(Semaphore& goOn, Semaphore& ended, std::atomic<bool>& passed)
        : goOn_(goOn), ended_(ended), passed_(passed) {
        self_ = this;
    }
    ~SelfHeldThread() override { destroy(); }
    int run() override {
        struct AtEnd {
            Semaphore& ended;
            ~AtEnd() { ended.inc(); }
        };
        const AtEnd atEnd{ended_};
        std::atomic<bool>& passed = passed_;
        goOn_.dec();
        SmartPointer<SelfHeldThread> last = std::move(self_);
        last = nullptr;
        pthread_testcancel();
        passed = true;
        return 1;
    }

private:
    Semaphore& goOn_;
    Semaphore& ended_;
    std::atomic<bool>& passed_;
    SmartPointer<SelfHeldThread> self_;
};

} // namespace

TEST(AThread, MayDropTheLastReferenceOnItselfAndIsCancelled) {
    // Static, as the threads cannot be joined and are still on their way out at the end.
    static Semaphore goOn(0);
    static Semaphore ended(0);
    static std::atomic<bool> passed = false;
    for (const bool detached : {false, true}) {
        SmartPointer<SelfHeldThread> thread(new SelfHeldThread(goOn, ended, passed));
        EXPECT_TRUE(thread->start(false, -1));
        EXPECT_TRUE(!detached || thread->detach());
        thread = nullptr;
        goOn.inc();
        ended.dec();
        EXPECT_FALSE(passed);
    }
}

TEST(AThread, MayDestroyItselfAndIsWaitedForByItsObject) {
    for (const bool detached : {false, true}) {
        std::atomic<bool> left = false;
        {
            Task task([&](Task& self) {
                const Scope scope(left);
                self.goOn.wait();
                EXPECT_TRUE(self.destroy());
                EXPECT_FALSE(self.isRunning());
                EXPECT_FALSE(self.start(false, -1)) << "not before the thread has left";
                self.reached.inc();
                pthread_testcancel();
                return 1;
            });
            EXPECT_TRUE(task.start(false, -1));
            EXPECT_TRUE(!detached || task.detach());
            task.goOn.signal();
            task.reached.dec();
            EXPECT_FALSE(task.destroy());
        }
        EXPECT_TRUE(left);
    }
}

TEST(ADestroyedThread, IsACancellationPointThatEndsTheDestroyer) {
    std::atomic<bool> passed = false;
    std::atomic<bool> left = false;
    Semaphore ended(0);
    Task task([&](Task& self) {
        const Scope scope(left);
        auto inner = std::make_unique<SharedThread>(ended);
        EXPECT_TRUE(inner->start(false, -1));
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
