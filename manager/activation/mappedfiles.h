// SPDX-License-Identifier: MIT
// Which programs have active fonts open.
#pragma once

#include "manager/activation/reason.h"
#include "manager/library/library.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace manager {

/// Programs by the folder of the files that they have open.
using Mappers = std::unordered_map<std::string, std::vector<ProcessMark>>;

/// The user's running programs that have files below `root` mapped into memory, by the folder of
/// the file; this one and those that only read fonts for others apart. Reads the memory maps of all
/// of the user's processes.
[[nodiscard]] Mappers mappersOfFilesBelow(const std::string& root);

/// That each of these programs has files in `folder` open.
[[nodiscard]] std::vector<Reason> usesIn(const std::string& folder, const Mappers& mappers);
/// "container 7: in use by inkscape (4711); WHAT when that ends"
[[nodiscard]] std::string inUseText(ContainerId id, const std::vector<Reason>& uses,
                                    std::string_view what);

} // namespace manager
