// SPDX-License-Identifier: MIT
// A thread as an object.
#pragma once

#include "misc/threads/synchevent.h"

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <vector>

namespace Orvil {

/// Subclasses implement run(). Life: not created -> start() -> created and running -> run() returns
/// -> created, not running -> join() or destroy() -> not created.
///
/// The destructor ends with destroy(), which cancels a thread that still runs and waits for it. By
/// then the subclass's members are gone: a subclass whose run() uses any, or that may be destroyed
/// while it runs, calls destroy() or join() in its own destructor. A cancelled run() is unwound at
/// a wait, so objects on its stack are released; what it holds otherwise leaks.
/// Only the thread itself is not waited for: a run() that destroys its own object, by dropping the
/// last reference to it, ends at its next cancellation point and must not use the object any more.
/// run() and everything it calls at cancellation points must not be noexcept.
///
/// Failures are told by returning false; nothing throws, but what run() throws ends the process.
/// start, join, detach and the destructor are [one-thread], the rest is [any-thread].
class Thread {
public:
    Thread();
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;
    /// A cancellation point, after the thread has ended.
    virtual ~Thread() noexcept(false);

    /// [own-thread] What the thread does; returns what getReturnCode() then tells.
    virtual int run() = 0;

    /// False if the thread runs or cannot be made. `detached` only makes isDetached() true and
    /// join() refuse: the thread can be joined all the same, and destroy() does so.
    /// `priority` other than -1 asks for round-robin scheduling, which needs the privilege.
    [[nodiscard]] bool start(bool detached, int priority);
    /// Waits for the end. False if not created or detached. A cancellation point.
    bool join();
    /// Lets a running thread go on by itself. The object must still outlive it, or destroy it.
    bool detach();
    /// Cancels the thread and waits for its end. False if not created, or if it was detached and
    /// has ended; true also for one that has ended and not been joined. Called by run() itself it
    /// does not wait, and the cancellation is acted on later. Not a cancellation point.
    bool destroy();

    [[nodiscard]] bool isRunning() const { return running_; }
    [[nodiscard]] bool isDetached() const { return detached_; }
    /// What run() returned last; 0 before.
    [[nodiscard]] int getReturnCode() const { return returnCode_; }

    static void sleep(unsigned milliseconds);
    static void yield();
    [[nodiscard]] static pthread_t getThreadId();

    /// A key for one value per thread, without a destructor; 0xFFFFFFFF if there is none left.
    [[nodiscard]] static unsigned createTLSKey();
    /// Null if the thread has set none.
    [[nodiscard]] static void* getTLSValue(unsigned key);
    /// False if there is no such key.
    [[nodiscard]] static bool setTLSValue(unsigned key, void* value);

    // Threads are not bound to processors here.
    [[nodiscard]] static int getCurrentProcessor();
    [[nodiscard]] static bool hasProcessorAffinity();
    static bool setCurrentProcessorAffinity(int processor, bool flag);
    static bool setCurrentProcessorAffinity(const std::vector<int>& processors, bool flag);
    [[nodiscard]] static std::vector<int> getCurrentProcessorAffinity();

private:
    static void* entry(void* thread);
    bool destroyDetached();
    bool destroyItself();
    bool isOnItself() const;
    void waitUntilLeft();

    bool created_ = false;
    std::atomic<bool> running_ = false;
    std::atomic<bool> detached_ = false;
    std::atomic<int> returnCode_ = 0;
    SynchEvent startEvent_;
    pthread_t handle_{};
    // A handle that is really detached is good only while its thread lives, which only the thread
    // itself can tell: it sets `left_` under the lock as the last thing it does with the object.
    bool handleDetached_ = false;
    std::atomic<bool> left_ = true; // no thread is at work on the object
    pthread_mutex_t leaveLock_ = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t leaveCondition_ = PTHREAD_COND_INITIALIZER;
};

} // namespace Orvil
