// SPDX-License-Identifier: MIT
// Files of an archive, each under a number until it is known where it is to lie.
#pragma once

#include "manager/cli/archivenames.h"
#include "manager/cli/archivereader.h"
#include "manager/cli/tally.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace manager {

struct UnpackedFile {
    std::string entry; ///< its name in the archive
    EntryPlace place;
    std::string path; ///< where it is now
};

/// [one-thread] Takes the fonts and texts of one archive, and remarks upon what is passed over.
class Unpacking {
public:
    Unpacking(std::string archive, Tally& tally) : archive_(std::move(archive)), tally_(tally) {}

    /// Writes the files into `folder`, which is empty. Throws Error and Cancelled as readArchive
    /// does, and leaves files there. Forks, as that does.
    [[nodiscard]] std::vector<UnpackedFile> unpack(const std::string& folder,
                                                   const ArchiveLimits& limits = {});
    /// Moves files that were unpacked to their places in `folder`. Of several of one name the first
    /// is kept. Returns how many are fonts. Throws Error.
    [[nodiscard]] std::size_t putInPlace(const std::vector<UnpackedFile>& files,
                                         const std::string& folder);
    /// Tells how many more were passed over than were remarked upon: of a forged one no end.
    void finish();

private:
    void passOver(const std::string& entry, const std::string& why);

    std::string archive_;
    Tally& tally_;
    std::size_t passedOver_ = 0;
};

} // namespace manager
