// SPDX-License-Identifier: MIT
// The index as a file, and what stands beside it: the mark of when it was last known to be sound,
// and the last number that it gave, which outlives its damage.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace manager {

/// What tells one index file from another, and a whole one from one that was cut: it only grows.
struct IndexFile {
    std::int64_t inode = -1; ///< -1: there is none
    std::int64_t size = 0;
};
[[nodiscard]] IndexFile indexFile(const std::string& path);

/// How long the file was or has to be, when less is left; nullopt: it is not known to be cut.
[[nodiscard]] std::optional<std::int64_t> lengthBeforeCut(const std::string& path);

/// Whether the file has a mark, and is as it was when it got it.
[[nodiscard]] bool hasMark(const std::string& path);
[[nodiscard]] bool isAsMarked(const std::string& path);
/// Without a mark the index is read as a whole when it is opened next, so a failure may pass.
void writeMark(const std::string& path) noexcept;

/// 0: none is known.
[[nodiscard]] std::int64_t lastNumberOf(const std::string& path);
/// A failure may pass, too: the index itself has the number.
void keepLastNumber(const std::string& path, std::int64_t number) noexcept;

} // namespace manager
