// SPDX-License-Identifier: MIT
// Reads archives of unknown origin in a process apart, which can write no file and open none.
#pragma once

#include "faces/fontfile.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace manager {

/// What an archive may cost at most. One that goes beyond is refused as a whole.
struct ArchiveLimits {
    std::size_t entries = 50'000;
    std::int64_t fileBytes = faces::maximumFontFileSize;
    std::int64_t bytes = std::int64_t{4} << 30U;      ///< of all files
    std::int64_t ratio = 200;                         ///< of these to the archive's
    std::int64_t freeBytes = std::int64_t{16} << 20U; ///< for which no ratio holds
    std::size_t memory = std::size_t{1} << 30U;       ///< of the process
    unsigned seconds = 120;                           ///< of its processor time
};

/// [main-thread] Told what an archive holds, in its order.
struct ArchiveReceiver {
    /// A file that is wanted (see placeOf) begins.
    std::function<void(const std::string& entry)> begin;
    /// The next bytes of it.
    std::function<void(std::string_view bytes)> take;
    /// Something that would be wanted is passed over.
    std::function<void(const std::string& entry, const std::string& why)> passOver;
};

/// Reads the whole archive. Throws Error, "ARCHIVE: ENTRY: ...", when it cannot be read to its end,
/// is encrypted or goes beyond the limits: what was received is then not to be trusted; Cancelled
/// (see checkCancelled). Forks: to be called while the process has no other thread and no
/// connection to a bus.
void readArchive(const std::string& archive, const ArchiveReceiver& receiver,
                 const ArchiveLimits& limits = {});

} // namespace manager
