// SPDX-License-Identifier: MIT
// What plug-ins did wrong and the host put right.
#pragma once

#include "host/core/frontend.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

struct Misbehaviour {
    std::string plugin;
    std::string what;
    std::uint64_t times = 1;
};

/// [any-thread] Equal entries are counted, and only the first is told, so that a fault in a loop
/// floods nobody; beyond the first thousand, different ones share an entry.
class Ledger {
public:
    /// `frontend` outlives the ledger.
    explicit Ledger(Frontend& frontend) noexcept : frontend_(frontend) {}

    /// When memory runs out the entry is lost: there is nobody left to tell.
    void report(std::string_view plugin, std::string_view what) noexcept;

    /// In order of first appearance.
    [[nodiscard]] std::vector<Misbehaviour> entries() const;

private:
    static constexpr std::size_t maximumEntries = 1000;

    Frontend& frontend_;
    mutable std::mutex mutex_;
    std::vector<Misbehaviour> entries_;
    std::map<std::pair<std::string, std::string>, std::size_t, std::less<>> places_;
};

} // namespace host
