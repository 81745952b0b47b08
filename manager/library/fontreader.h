// SPDX-License-Identifier: MIT
// Reads many font files in processes apart, so that a hostile file costs bounded time and memory
// and can take nothing with it but its own reader.
#pragma once

#include "faces/fontfile.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <variant>

namespace manager {

/// Why a file has no contents.
struct FontFileProblem {
    std::string text;     ///< "PATH: ..."
    bool lasting = false; ///< it lies in the file: as long as that is the same, so is this
};
/// A file that was read.
struct ReadFont {
    faces::FontFileContents contents;
    std::uint64_t digest = 0; ///< of the file's first bytes: files that differ in it differ
    bool operator==(const ReadFont&) const = default;
};
using FontFileOutcome = std::variant<ReadFont, FontFileProblem>;

struct FontReaderLimits {
    unsigned processes = 2;
    std::chrono::milliseconds timePerFile{20'000};
    std::size_t memory = std::size_t{2} << 30U; ///< bytes of address space of a reader
    std::size_t ahead = 5000; ///< no file is read so far behind the first that has no outcome
};

/// [main-thread] Run in a reader's process for one file; faces::readFontFile, unless a test wants
/// worse.
using FontFileFunction = std::function<faces::FontFileContents(const std::string& path)>;
/// [main-thread] Told of each file once, in no order; `position` is the file's place in the list.
using FontFileReceiver = std::function<void(std::size_t position, FontFileOutcome outcome)>;

/// Reads all of `paths`. A reader that dies or takes too long costs its file, which gets a text
/// that says so, and is replaced. Forks: to be called while the process has no other thread
/// and no connection to a bus. Throws Error when no process can be made,
/// Cancelled (see checkCancelled) with some of them told of.
void readFontFiles(std::span<const std::string> paths, const FontReaderLimits& limits,
                   const FontFileReceiver& receive,
                   const FontFileFunction& read = faces::readFontFile);

} // namespace manager
