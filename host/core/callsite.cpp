// SPDX-License-Identifier: MIT
// The list of all call sites. Sites are made while the program starts, before any thread.
#include "host/core/callsite.h"

#include <algorithm>
#include <tuple>

namespace host {

namespace {
constinit CallSite* firstSite = nullptr;
} // namespace

CallSite::CallSite(const char* suiteName, const char* callName) noexcept
    : suite_(suiteName), call_(callName), next_(firstSite) {
    firstSite = this;
}

void CallSite::failWith(SPErr error, std::uint64_t from) noexcept {
    fault_ = error;
    faultFrom_ = from;
}

CallSite* CallSite::find(std::string_view suite, std::string_view call) noexcept {
    for (CallSite* site = firstSite; site != nullptr; site = site->next_) {
        if (site->call_ == call && (suite.empty() || site->suite_ == suite)) {
            return site;
        }
    }
    return nullptr;
}

void CallSite::resetAll() noexcept {
    for (CallSite* site = firstSite; site != nullptr; site = site->next_) {
        site->count_.store(0, std::memory_order_relaxed);
        site->failWith(kNoErr);
    }
}

std::vector<CallSite::Count> CallSite::counts() {
    std::vector<Count> result;
    for (const CallSite* site = firstSite; site != nullptr; site = site->next_) {
        if (site->count() > 0) {
            result.push_back({site->suite_, site->call_, site->count()});
        }
    }
    std::sort(result.begin(), result.end(), [](const Count& left, const Count& right) {
        return std::tie(left.suite, left.call) < std::tie(right.suite, right.call);
    });
    return result;
}

} // namespace host
