// SPDX-License-Identifier: MIT
// Whether files are one font: links to one file, or copies with the same bytes.
#pragma once

#include "manager/library/library.h"

#include <functional>
#include <string>
#include <unordered_set>

namespace manager {

/// Meets files and tells which it has met before, as themselves or as others with the same bytes.
class MetFiles {
public:
    /// Whether the face's file, and all that have its bytes, were not met before.
    bool isNew(const FaceMatch& face);

private:
    std::unordered_set<std::string> met_;
};

[[nodiscard]] bool haveSameBytes(const FaceMatch& a, const FaceMatch& b);

/// Reads the files that may be copies of others and were not yet read as a whole, and writes their
/// digests to the index. Those that cannot be read count as no copies. `progress` is told of each
/// file how many of how many were read before. Throws Error, and Cancelled (see checkCancelled)
/// with what was read written.
void digestAlike(Database& database,
                 const std::function<void(std::size_t done, std::size_t total)>& progress);

} // namespace manager
