// SPDX-License-Identifier: MIT
// The process that reads an archive, and what it says: messages of a kind and a size, then so many
// bytes.
#pragma once

#include "manager/cli/archivereader.h"

#include <cstdint>

namespace manager {

enum class ArchiveSays : std::uint32_t {
    Begin,    ///< an entry's name
    Bytes,    ///< of it
    PassOver, ///< name and why, two fields (fields.h)
    Fail,     ///< what is wrong; the last message
    End,      ///< the last message
};

struct ArchiveMessage {
    ArchiveSays kind{};
    std::uint32_t size = 0;
};

/// A message is never larger.
constexpr std::uint32_t maximumArchiveMessage = 1U << 20U;

/// Reads the archive that `file` is open for, says all of it to `output` and ends the process. To
/// be called in a process of its own.
[[noreturn]] void runArchiveChild(int file, int output, const ArchiveLimits& limits);

} // namespace manager
