// SPDX-License-Identifier: MIT
// Which programs have active fonts open.
#pragma once

#include "manager/activation/reason.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace manager {

/// Programs by the folder of the files that they have open.
using Mappers = std::unordered_map<std::string, std::vector<ProcessMark>>;

/// The user's running programs that have files below `root` mapped into memory, by the folder of
/// the file; this one and those that only read fonts for others apart. Reads the memory maps of all
/// of the user's processes.
[[nodiscard]] Mappers mappersOfFilesBelow(const std::string& root);

} // namespace manager
