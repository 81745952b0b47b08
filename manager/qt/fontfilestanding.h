// SPDX-License-Identifier: MIT
// What there is to be told of font files that were opened by themselves.
#pragma once

#include "manager/cli/fontfiles.h"
#include "manager/qt/libraryreader.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace manager {

struct FileStanding {
    std::optional<FileInLibrary> known; ///< nullopt: it has none such
    bool isActive = false;
    std::vector<Reason> reasons; ///< for which it is active
};

/// In the reader's thread. `contents` are those of the files, which are absolute paths. Throws
/// Error.
[[nodiscard]] std::vector<FileStanding>
readStandings(Desk& desk, const std::vector<std::string>& files,
              const std::vector<faces::FontFileContents>& contents);

/// For people, in their language.
[[nodiscard]] QString wordsOf(const FileStanding& standing);

} // namespace manager
