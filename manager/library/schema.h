// SPDX-License-Identifier: MIT
// The tables of the library's index.
#pragma once

#include "manager/library/database.h"

namespace manager {

/// Makes the tables in an empty database, or checks that they are this version's. Throws Error when
/// the file belongs to another program or a newer version; DamagedDatabase when it cannot be read.
void prepareSchema(Database& database);

/// Copies what can still be read of the containers' numbers from a damaged database into a new one.
/// Returns how many.
std::int64_t salvageContainers(Database& fresh, const std::string& damagedPath);

} // namespace manager
