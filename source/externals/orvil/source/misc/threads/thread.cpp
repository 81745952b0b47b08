// SPDX-License-Identifier: MIT
// Threads over POSIX.
#include "misc/threads/thread.h"

#include "misc/threads/cancellation.h"

#include <cerrno>
#include <climits>
#include <ctime>
#include <sched.h>

namespace Orvil {

namespace {

/// Whether run() has destroyed the object that it runs for.
thread_local bool ownObjectGone = false;

/// The attributes of a thread to be made.
class Attribute {
public:
    explicit Attribute(int priority) {
        pthread_attr_init(&attribute_);
        // Joinable whatever start() was told about detaching.
        pthread_attr_setdetachstate(&attribute_, PTHREAD_CREATE_JOINABLE);
        if (priority != -1) {
            sched_param parameter{};
            parameter.sched_priority = priority;
            // The policy first: a priority is checked against it.
            valid_ = pthread_attr_setinheritsched(&attribute_, PTHREAD_EXPLICIT_SCHED) == 0 &&
                     pthread_attr_setschedpolicy(&attribute_, SCHED_RR) == 0 &&
                     pthread_attr_setschedparam(&attribute_, &parameter) == 0;
        }
    }
    Attribute(const Attribute&) = delete;
    Attribute& operator=(const Attribute&) = delete;
    ~Attribute() { pthread_attr_destroy(&attribute_); }

    bool isValid() const { return valid_; }
    const pthread_attr_t* get() const { return &attribute_; }

private:
    pthread_attr_t attribute_{};
    bool valid_ = true;
};

} // namespace

Thread::Thread() : startEvent_(false) {}

Thread::~Thread() noexcept(false) {
    destroy();
    ownObjectGone = ownObjectGone || isOnItself();
    pthread_cond_destroy(&leaveCondition_);
    pthread_mutex_destroy(&leaveLock_);
}

bool Thread::start(bool detached, int priority) {
    if (running_ || isOnItself()) {
        return false;
    }
    detached_ = false;
    destroy();
    created_ = false;
    handleDetached_ = false;
    startEvent_.reset();
    const Attribute attribute(priority);
    left_ = false;
    if (!attribute.isValid() || pthread_create(&handle_, attribute.get(), entry, this) != 0) {
        left_ = true;
        return false;
    }
    detached_ = detached;
    running_ = true;
    created_ = true;
    startEvent_.signal();
    return true;
}

void* Thread::entry(void* thread) {
    auto& self = *static_cast<Thread*>(thread);
    const auto leave = [&self] {
        if (ownObjectGone) {
            return;
        }
        const CancellationBlock block;
        pthread_mutex_lock(&self.leaveLock_);
        // With the mark: who sees that the thread no longer runs finds nothing to cancel either.
        self.running_ = false;
        self.left_ = true;
        pthread_cond_broadcast(&self.leaveCondition_);
        pthread_mutex_unlock(&self.leaveLock_);
    };
    try {
        self.startEvent_.wait();
        const int code = self.run();
        if (!ownObjectGone) {
            self.returnCode_ = code;
        }
    } catch (...) {
        // A cancellation comes this way too, and must go on.
        leave();
        throw;
    }
    leave();
    return nullptr;
}

bool Thread::join() {
    if (!created_ || detached_) {
        return false;
    }
    const int result = pthread_join(handle_, nullptr);
    if (result != 0 && result != ESRCH) {
        return false;
    }
    created_ = false;
    running_ = false;
    return true;
}

bool Thread::detach() {
    if (!created_ || !running_) {
        return false;
    }
    if (!handleDetached_) {
        const int result = pthread_detach(handle_);
        if (result != 0 && result != EINVAL) {
            return false;
        }
    }
    handleDetached_ = true;
    detached_ = true;
    return true;
}

bool Thread::destroy() {
    const CancellationBlock block;
    const bool onItself = isOnItself();
    if (!created_) {
        if (!onItself) {
            waitUntilLeft(); // it may have destroyed itself
        }
        return false;
    }
    if (onItself) {
        return destroyItself();
    }
    if (handleDetached_) {
        return destroyDetached();
    }
    const bool cancelled = pthread_cancel(handle_) == 0;
    pthread_join(handle_, nullptr);
    if (!cancelled) {
        return false;
    }
    running_ = false;
    created_ = false;
    return true;
}

// A detached thread cannot be joined; it is waited for by the mark that it leaves. Under the lock
// it has not left yet, so its handle is good.
bool Thread::destroyDetached() {
    pthread_mutex_lock(&leaveLock_);
    const bool cancelled = !left_ && pthread_cancel(handle_) == 0;
    pthread_mutex_unlock(&leaveLock_);
    waitUntilLeft();
    if (!cancelled) {
        return false;
    }
    running_ = false;
    created_ = false;
    return true;
}

// A join of the calling thread fails, and a wait for it would never end. Nobody can join it later.
bool Thread::destroyItself() {
    pthread_cancel(handle_);
    if (!handleDetached_) {
        pthread_detach(handle_);
        handleDetached_ = true;
    }
    running_ = false;
    created_ = false;
    return true;
}

/// Whether the caller is the thread itself. The handle alone does not tell: once the thread has
/// left, the system may have given it to another.
bool Thread::isOnItself() const {
    return !left_ && pthread_equal(handle_, pthread_self()) != 0;
}

void Thread::waitUntilLeft() {
    pthread_mutex_lock(&leaveLock_);
    while (!left_) {
        pthread_cond_wait(&leaveCondition_, &leaveLock_);
    }
    pthread_mutex_unlock(&leaveLock_);
}

// The unwinding of a cancelled thread leaves the address sanitizer's marks around the locals of the
// frames that it cuts off, and trips over them later; so there are none here.
[[gnu::no_sanitize_address]] void Thread::sleep(unsigned milliseconds) {
    timespec rest{};
    rest.tv_sec = static_cast<time_t>(milliseconds / 1000);
    rest.tv_nsec = static_cast<long>(milliseconds % 1000) * 1'000'000;
    while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

void Thread::yield() {
    sched_yield();
}

pthread_t Thread::getThreadId() {
    return pthread_self();
}

unsigned Thread::createTLSKey() {
    pthread_key_t key{};
    return pthread_key_create(&key, nullptr) == 0 ? key : UINT_MAX;
}

void* Thread::getTLSValue(unsigned key) {
    return pthread_getspecific(key);
}

bool Thread::setTLSValue(unsigned key, void* value) {
    return pthread_setspecific(key, value) == 0;
}

int Thread::getCurrentProcessor() {
    return 0;
}

bool Thread::hasProcessorAffinity() {
    return false;
}

bool Thread::setCurrentProcessorAffinity(int /*processor*/, bool /*flag*/) {
    return true;
}

bool Thread::setCurrentProcessorAffinity(const std::vector<int>& /*processors*/, bool /*flag*/) {
    return true;
}

std::vector<int> Thread::getCurrentProcessorAffinity() {
    return {};
}

} // namespace Orvil
