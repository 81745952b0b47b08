// SPDX-License-Identifier: MIT
// How far a command is, on standard error: for people on a line that is written over, for programs
// in lines of JSON.
#pragma once

#include <cstddef>
#include <cstdint>

namespace manager {

enum class ProgressForm : std::uint8_t {
    None,
    Terminal, ///< from a second on; wiped away in the end
    Lines,    ///< at once
};

/// What a command is at.
enum class Work : std::uint8_t { Unpack, Read, Compare, Copy, Activate, Deactivate };

// [main-thread] Of the process, as its standard error is.

/// Begins; until then nothing is told.
void setProgress(ProgressForm form);
/// Tells it now and then. `total`: 0 when it is not known.
void tellProgress(Work work, std::size_t done, std::size_t total);
/// Wipes the line away, for other lines to be written.
void wipeProgress();

} // namespace manager
