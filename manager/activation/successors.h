// SPDX-License-Identifier: MIT
// What takes the place of active files that the library has under other names by now, or passes
// over for newer ones.
#pragma once

#include "manager/activation/activation.h"
#include "manager/library/library.h"

#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace manager {

/// Asked for what is shown when the library may have forgotten what was in a file.
using DesktopReader = std::function<const DesktopFaces&()>;

/// By the name of a file of the set that is not among the `files` of its container: that of one
/// that takes its place, as they have all its faces. None for a file with a face that has gone.
/// `folder` is the set's. Throws Error when the index cannot be read.
[[nodiscard]] std::map<std::string, std::string>
successorsIn(const SetRecord& set, const std::string& folder, std::span<const LibraryFile> files,
             Library& library, const DesktopReader& desktop);

/// All that the library has of a container, to be activated for these reasons. Throws like
/// successorsIn().
[[nodiscard]] ContainerFonts wholeOf(const Container& container, std::vector<Reason> reasons,
                                     Library& library, const Activation& activation,
                                     const DesktopReader& desktop);

} // namespace manager
