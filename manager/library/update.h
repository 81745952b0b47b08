// SPDX-License-Identifier: MIT
// Brings the index up to date with the folders on disk.
#pragma once

#include "manager/library/cancel.h"
#include "manager/library/fontreader.h"
#include "manager/library/library.h"

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace manager {

struct UpdateReport {
    std::size_t read = 0;      ///< files that were new or changed
    std::size_t unchanged = 0; ///< files passed over because size, time and inode are as known, or
                               ///< that could not be read for the same passing reason again
    std::size_t removed = 0;   ///< files that are gone
    std::size_t away = 0;      ///< files kept, though the folder that they lie in is not there now
    bool moved = false;        ///< folders went away or came back, or the desktop's own changed
    bool resumed = false;      ///< a scan before had changed something and was ended in the midst
    std::vector<std::string> unreadFolders; ///< of those to be walked
    std::vector<std::string> problems;      ///< "PATH: ..." of what was found bad this time
    std::vector<std::string> knownProblems; ///< of what was bad already and is so still

    [[nodiscard]] bool changed() const { return read != 0 || removed != 0 || moved || resumed; }
};

/// Some of the files were read, the next scan reads the others.
class ScanCancelled : public Cancelled {
public:
    ScanCancelled(std::size_t ofFiles, std::size_t all)
        : Cancelled("cancelled before its end"), read(ofFiles), wanted(all) {}

    std::size_t read;   ///< files
    std::size_t wanted; ///< files
};

/// What a scan does with files.
enum class UpdateStep : std::uint8_t { Read, Compare };
/// [main-thread] Told now and then with how many files of how many it was done.
using UpdateProgress = std::function<void(UpdateStep step, std::size_t done, std::size_t total)>;

/// Walks the folders and reads what is new or changed (see readFontFiles for where it may be
/// called). The folder of the active fonts is passed over. The index is written in portions, so
/// that others can read it meanwhile, and what was written stays when the process ends early.
/// Containers keep their numbers. What lies in a folder that is away stays in the index, marked;
/// when it is back as it was, nothing is read again. What was in the way of reading a file and may
/// pass is tried again each time. Throws Error; ScanCancelled (see checkCancelled).
UpdateReport updateLibrary(Library& library, std::span<const std::string> folders,
                           const FontReaderLimits& limits, const UpdateProgress& progress = {},
                           const FontFileFunction& read = faces::readFontFile);

} // namespace manager
