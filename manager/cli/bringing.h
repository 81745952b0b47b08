// SPDX-License-Identifier: MIT
// Takes single font files and archives of them into the library: copies in a folder of the
// manager's own.
#pragma once

#include "manager/cli/tally.h"
#include "manager/library/places.h"

#include <string>
#include <vector>

namespace manager {

/// Copies the font files to `places.singleFonts()`, each whole or not at all, under a name that is
/// free there; of an archive (see hasArchiveName) the fonts and what texts there are of them, in a
/// folder named for it, all or nothing. Fonts that the library has already, byte for byte, are
/// remarked upon, and those that are no fonts fail; both are passed over. When it is cancelled (see
/// checkCancelled), that fails, and what was copied stays. Returns whether any was copied. Forks:
/// to be called while the process has no other thread and no connection to a bus. Throws Error.
bool bringFiles(const Places& places, const std::vector<std::string>& files, Tally& tally);

} // namespace manager
