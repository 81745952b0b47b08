// SPDX-License-Identifier: MIT
// Intrusive pointers beside boost's, the queue beside a deque under a standard mutex.
#include "misc/threads/safefifobuffer.h"
#include "misc/threads/smartpointer.h"
#include "ratios.h"

#include <benchmark/benchmark.h>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <atomic>
#include <deque>
#include <mutex>
#include <thread>

namespace {

class Ours : public Orvil::SmartPointable {};
class Peer : public boost::intrusive_ref_counter<Peer, boost::thread_safe_counter> {
public:
    virtual ~Peer() = default;
};

template <typename Pointer>
void copyAndRelease(benchmark::State& state, const Pointer& held) {
    for (auto _ : state) {
        Pointer copy(held);
        benchmark::DoNotOptimize(copy);
    }
}

void pointer_copy(benchmark::State& state) {
    copyAndRelease(state, Orvil::SmartPointer<Ours>(new Ours));
}
BENCHMARK(pointer_copy);

void pointer_copy_boost(benchmark::State& state) {
    copyAndRelease(state, boost::intrusive_ptr<Peer>(new Peer));
}
BENCHMARK(pointer_copy_boost);

/// A second thread, as every queue has. The C library leaves the atomic instructions out of its
/// mutexes while there is but one, which no user of a queue would ever see.
class SecondThread {
public:
    SecondThread() : thread_([this] { ended_.wait(false); }) {}
    SecondThread(const SecondThread&) = delete;
    SecondThread& operator=(const SecondThread&) = delete;
    ~SecondThread() {
        ended_ = true;
        ended_.notify_one();
        thread_.join();
    }

private:
    std::atomic<bool> ended_ = false;
    std::thread thread_;
};

void queue_pass(benchmark::State& state) {
    const SecondThread second;
    Orvil::SafeFIFOBuffer<int> queue(32767);
    int item = 0;
    for (auto _ : state) {
        queue.enqueue(1);
        benchmark::DoNotOptimize(queue.tryDequeue(item));
    }
}
BENCHMARK(queue_pass);

void queue_pass_mutex_deque(benchmark::State& state) {
    const SecondThread second;
    std::mutex mutex;
    std::deque<int> queue;
    int item = 0;
    for (auto _ : state) {
        {
            const std::lock_guard<std::mutex> locked(mutex);
            queue.push_back(1);
        }
        const std::lock_guard<std::mutex> locked(mutex);
        if (!queue.empty()) {
            item = queue.front();
            queue.pop_front();
        }
        benchmark::DoNotOptimize(item);
    }
}
BENCHMARK(queue_pass_mutex_deque);

void queue_empty_try(benchmark::State& state) {
    Orvil::SafeFIFOBuffer<int> queue(32767);
    int item = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(queue.tryDequeue(item));
    }
}
BENCHMARK(queue_empty_try);

void queue_empty_atomic_load(benchmark::State& state) {
    const std::atomic<int> waiting = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(waiting.load(std::memory_order_acquire) == 0);
    }
}
BENCHMARK(queue_empty_atomic_load);

const bool expected = ratios::atMost("pointer_copy", "pointer_copy_boost", 1.05) &&
                      ratios::atMost("queue_pass", "queue_pass_mutex_deque", 1.5) &&
                      ratios::atMost("queue_empty_try", "queue_empty_atomic_load", 1, 3);

} // namespace
