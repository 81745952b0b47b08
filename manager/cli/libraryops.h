// SPDX-License-Identifier: MIT
// The commands that concern the library: add, remove, scan, list.
#pragma once

#include "manager/cli/report.h"
#include "manager/library/update.h"

#include <memory>
#include <string>
#include <vector>

namespace manager {

/// Opens the library for the server, which must answer soon. Throws DamagedDatabase when a scan is
/// to mend the index. The caller sees to a scan that is owed.
[[nodiscard]] std::unique_ptr<Library> openToAnswer(const Places& places);
/// Opens the library for a command that shows at once what is known of it. A damaged index is begun
/// anew, and then a scan is owed, which the caller sees to.
[[nodiscard]] std::unique_ptr<Library> openKnown(const Places& places);
/// Opens the library for a command that needs what is in it, after a scan if one is owed. Not to be
/// called with a connection to the bus (see readFontFiles).
[[nodiscard]] std::unique_ptr<Library> openScanned(const Places& places);

/// Scans the folders and tells others. What is wrong that was not before. As for openScanned().
std::vector<std::string> scanNow(const Places& places);

/// Each returns an ExitStatus and throws Error. They scan where needed and tell others of changes.
int addCommand(const Places& places, const std::vector<std::string>& paths, bool json);
int removeCommand(const Places& places, const std::vector<std::string>& folders, bool json);
int scanCommand(const Places& places, bool quiet, bool json);
int listCommand(const Places& places, Listing listing);
/// All of standard input.
[[nodiscard]] std::string readInput();

/// Shows the library in a window, what has these words in its names at first, and font files that
/// are among the words in one of their own; with a folder writes pictures of the views there
/// instead.
/// `asked`: for the fonts of a plug-in's command, which is read from standard input.
int showCommand(const Places& places, const std::vector<std::string>& words, bool asked,
                const std::string& pictures);

} // namespace manager
