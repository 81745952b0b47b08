// SPDX-License-Identifier: MIT
// A thread that does what a test tells it.
#pragma once

#include "misc/threads/semaphore.h"
#include "misc/threads/thread.h"

#include <atomic>
#include <functional>
#include <utility>

class Task : public Orvil::Thread {
public:
    explicit Task(std::function<int(Task&)> work) : work_(std::move(work)) {}
    ~Task() override { destroy(); }

    int run() override { return work_(*this); }

    Orvil::Semaphore reached{0};
    Orvil::SynchEvent goOn{false};

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
