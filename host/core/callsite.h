// SPDX-License-Identifier: MIT
// One record per call of every suite: how often it was made, and whether it is to fail on purpose.
#pragma once

#include "sp/types.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Lives as long as the process and stands in one list with all others. Counting is for one thread
/// at a time; the fault is set on the main thread.
class CallSite {
public:
    CallSite(const char* suiteName, const char* callName) noexcept;
    CallSite(const CallSite&) = delete;
    CallSite& operator=(const CallSite&) = delete;

    /// For messages.
    std::string name() const { return std::string("\"") + suite_ + "\" " + call_; }
    std::uint64_t count() const noexcept { return count_.load(std::memory_order_relaxed); }

    /// Counts one call and gives the code that it must fail with, kNoErr for none.
    [[nodiscard]] SPErr enter() noexcept {
        const std::uint64_t number = count_.load(std::memory_order_relaxed) + 1;
        count_.store(number, std::memory_order_relaxed);
        return fault_ == kNoErr || number < faultFrom_ ? kNoErr : fault_;
    }

    /// Makes the call fail from its `from`th time on (1: at once). kNoErr ends it.
    void failWith(SPErr error, std::uint64_t from = 1) noexcept;

    /// The site of a call, nullptr if there is none. An empty `suite` means the first that has the
    /// call.
    [[nodiscard]] static CallSite* find(std::string_view suite, std::string_view call) noexcept;
    /// Forgets counts and faults.
    static void resetAll() noexcept;

    struct Count {
        std::string suite;
        std::string call;
        std::uint64_t count;
    };
    /// The calls that were made at least once, by suite and call.
    [[nodiscard]] static std::vector<Count> counts();

private:
    const char* suite_;
    const char* call_;
    CallSite* next_;
    std::atomic<std::uint64_t> count_ = 0;
    SPErr fault_ = kNoErr;
    std::uint64_t faultFrom_ = 1;
};

} // namespace host
