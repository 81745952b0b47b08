// SPDX-License-Identifier: MIT
// Reading what is left of a damaged index.
#pragma once

#include "manager/library/schema.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace manager {

struct Salvage {
    std::map<std::int64_t, ContainerRow> containers; ///< by number
    std::int64_t lastNumber = 0;                     ///< the highest that is known to be given
    std::set<std::string> problems;                  ///< that people have been told of
};

/// Passes over what cannot be read, row by row. Never throws Error.
[[nodiscard]] Salvage salvage(const std::string& damagedPath);

} // namespace manager
