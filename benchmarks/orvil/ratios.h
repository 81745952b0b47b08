// SPDX-License-Identifier: MIT
// Benchmarks beside a peer, and what their times are to be like.
#pragma once

#include <string>

namespace ratios {

/// Declares that the benchmark `ours` is to take at most `factor` times the time of `peer`, plus
/// `slack` nanoseconds. The program prints what was measured. Call it during static initialisation.
bool atMost(const std::string& ours, const std::string& peer, double factor, double slack = 0);

/// As a speed: `ours` at least `factor` times as fast as `peer`.
inline bool atLeast(const std::string& ours, const std::string& peer, double factor) {
    return atMost(ours, peer, 1 / factor);
}

} // namespace ratios
