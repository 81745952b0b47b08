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
/// [any-thread] Throws what its semaphores, its mutex and T's copying throw.
template <typename T>
class SafeFIFOBuffer {
public:
    /// This capacity does not bound the queue: enqueue never waits. It still holds no more than
    /// this many items, since no semaphore counts further.
    static constexpr std::uint32_t unboundedCapacity = Semaphore::maximumValue;

    explicit SafeFIFOBuffer(std::uint32_t capacity)
        : capacity_(capacity), freeSlots_(capacity), lock_(false) {}

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
            const std::uint32_t filled = filledSlots_.load(std::memory_order_relaxed);
            if (filled == Semaphore::maximumValue) {
                throw Semaphore::incrementFailure();
            }
            filledSlots_.store(filled + 1, std::memory_order_release);
        } catch (...) {
            if (isBounded()) {
                freeSlots_.inc();
            }
            throw;
        }
    }

    /// Moves the oldest item to `item`. False at once if there is none.
    [[nodiscard]] bool tryDequeue(T& item) {
        // Most tries of a poller find nothing: one load tells.
        if (filledSlots_.load(std::memory_order_acquire) == 0) {
            return false;
        }
        const ScopedLock<Mutex> locked(lock_);
        const std::uint32_t filled = filledSlots_.load(std::memory_order_relaxed);
        if (filled == 0) {
            return false;
        }
        item = std::move(items_.front());
        items_.pop_front();
        filledSlots_.store(filled - 1, std::memory_order_release);
        if (isBounded()) {
            freeSlots_.inc();
        }
        return true;
    }

private:
    bool isBounded() const { return capacity_ != unboundedCapacity; }

    std::uint32_t capacity_;
    Semaphore freeSlots_;
    // Stands for a semaphore of filled slots: as nobody waits for one, a count that is written
    // under the lock does the same, maximum and failure included, at half the price.
    std::atomic<std::uint32_t> filledSlots_ = 0;
    Mutex lock_;
    std::deque<T> items_;
};

} // namespace Orvil
