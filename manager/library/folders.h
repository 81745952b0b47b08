// SPDX-License-Identifier: MIT
// The recorded library folders: a text file of its own, one folder a line, so that the index can be
// thrown away and made again from it.
#pragma once

#include "manager/library/places.h"

#include <span>
#include <string>
#include <vector>

namespace manager {

/// The recorded folders, in order of recording, and then the one of this session; none when nothing
/// was recorded yet. Throws Error
/// (file, line) on a file that is not the manager's.
[[nodiscard]] std::vector<std::string> readFolders(const Places& places);

/// The canonical path of the folder of fonts that are there for this session alone; empty: none
/// was. It lies where the system keeps what goes with the session.
[[nodiscard]] std::string sessionFolder(const Places& places);
/// The same, made if need be. Throws Error, also when nothing goes with the session: there is no
/// $XDG_RUNTIME_DIR.
[[nodiscard]] std::string makeSessionFolder(const Places& places);

/// Records the folders, given as the user writes them: each must exist and is kept as its canonical
/// absolute path. One that is recorded already, or lies under a recorded one, changes nothing.
/// Returns those that are new. Throws Error, and then records none.
std::vector<std::string> addFolders(const Places& places, std::span<const std::string> folders);

/// Forgets folders; one that no longer exists may be named by its recorded path. Returns the
/// recorded paths that were removed. Throws Error when one is not recorded, and then removes none.
std::vector<std::string> removeFolders(const Places& places, std::span<const std::string> folders);

} // namespace manager
