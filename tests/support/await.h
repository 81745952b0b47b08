// SPDX-License-Identifier: MIT
// Waits for what other processes and threads do.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace testsupport {

/// Whether the condition came true, in a time far beyond what anything here takes.
inline bool await(const std::function<bool()>& condition) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (Clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

} // namespace testsupport
