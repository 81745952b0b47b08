// SPDX-License-Identifier: MIT
// What a loop is to do later.
#pragma once

#include "manager/library/fields.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <optional>

namespace manager {

/// The milliseconds that an environment variable gives, or what is usual.
[[nodiscard]] inline std::chrono::milliseconds timeOr(const char* variable,
                                                      std::chrono::milliseconds usual) {
    const char* const told = std::getenv(variable);
    const auto time = toNumber<std::int32_t>(told != nullptr ? told : "");
    return time && *time > 0 ? std::chrono::milliseconds(*time) : usual;
}

/// A moment at which something is due, or none.
class Timer {
public:
    void startUnlessRunning(std::chrono::milliseconds after) {
        if (!due_) {
            due_ = std::chrono::steady_clock::now() + after;
        }
    }
    void startAt(std::chrono::steady_clock::time_point due) { due_ = due; }
    void stop() { due_.reset(); }
    /// Starts anew, but puts what was due already off to `longest` from its first start at most.
    void restart(std::chrono::milliseconds after, std::chrono::milliseconds longest) {
        const auto now = std::chrono::steady_clock::now();
        if (!due_) {
            latest_ = now + longest;
        }
        due_ = std::min(now + after, latest_);
    }
    bool takeExpired() {
        if (!due_ || *due_ > std::chrono::steady_clock::now()) {
            return false;
        }
        due_.reset();
        return true;
    }
    /// Shortens a wait in milliseconds (-1: for ever).
    [[nodiscard]] int shorten(int wait) const {
        if (!due_) {
            return wait;
        }
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(*due_ - std::chrono::steady_clock::now());
        const int rest = static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
        return wait < 0 ? rest : std::min(wait, rest);
    }

private:
    std::optional<std::chrono::steady_clock::time_point> due_;
    std::chrono::steady_clock::time_point latest_;
};

/// What is done at most once in a while, and once more after it was wanted last.
class Paced {
public:
    using Time = std::chrono::steady_clock::time_point;

    explicit Paced(std::chrono::milliseconds period) : period_(period) {}

    void want() { isWanted_ = true; }
    /// Whether it is to be done now.
    [[nodiscard]] bool take(Time now) {
        if (!isWanted_ || now < next_) {
            return false;
        }
        isWanted_ = false;
        next_ = now + period_;
        return true;
    }
    /// When it is to be done; nullopt: it is not wanted.
    [[nodiscard]] std::optional<Time> due() const {
        return isWanted_ ? std::optional(next_) : std::nullopt;
    }

private:
    std::chrono::milliseconds period_;
    Time next_{}; ///< the clock is past its beginning
    bool isWanted_ = false;
};

} // namespace manager
