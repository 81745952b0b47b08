// SPDX-License-Identifier: MIT
// A queue between threads.
#pragma once

#include "misc/threads/mutex.h"
#include "misc/threads/semaphore.h"

#include <atomic>
#include <cstdint>
#include <deque>
#include <utility>

namespace Orvil {

/// First in, first out, for any number of producers and consumers on any threads.
/// Throws: what its semaphores, its mutex and T's copying throw.
template <typename T>
class SafeFIFOBuffer {
public:
    /// This capacity does not bound the queue: enqueue never waits. It still holds no more than
    /// this many items, since no semaphore counts further.
    static constexpr std::uint32_t unboundedCapacity = Semaphore::maximumValue;

    explicit SafeFIFOBuffer(std::uint32_t capacity)
        : capacity_(capacity), freeSlots_(capacity), filledSlots_(0), lock_(false) {}

    /// Appends a copy, after waiting for a free slot (a cancellation point). An unbounded queue
    /// throws when 32,767 items wait already; the item is in the queue all the same then, and
    /// the last item of the queue comes out only after a later enqueue.
    void enqueue(const T& item) {
        if (isBounded()) {
            freeSlots_.dec();
        }
        try {
            const ScopedLock<Mutex> locked(lock_);
            items_.push_back(item);
            waiting_.store(items_.size(), std::memory_order_release);
        } catch (...) {
            if (isBounded()) {
                freeSlots_.inc();
            }
            throw;
        }
        filledSlots_.inc();
    }

    /// Moves the oldest item to `item`. False at once if there is none.
    bool tryDequeue(T& item) {
        // Most tries of a poller find nothing: one load tells.
        if (waiting_.load(std::memory_order_acquire) == 0 || !filledSlots_.trydec()) {
            return false;
        }
        const ScopedLock<Mutex> locked(lock_);
        try {
            item = std::move(items_.front());
        } catch (...) {
            filledSlots_.inc();
            throw;
        }
        items_.pop_front();
        waiting_.store(items_.size(), std::memory_order_release);
        if (isBounded()) {
            freeSlots_.inc();
        }
        return true;
    }

private:
    bool isBounded() const { return capacity_ != unboundedCapacity; }

    std::uint32_t capacity_;
    Semaphore freeSlots_;
    Semaphore filledSlots_;
    Mutex lock_;
    std::deque<T> items_;
    std::atomic<std::size_t> waiting_ = 0; // items_.size(), written under the lock
};

} // namespace Orvil
