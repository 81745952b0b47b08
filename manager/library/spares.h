// SPDX-License-Identifier: MIT
// A container shows one file for each face. Of a face that several of its files hold the newest
// version is shown, of the same version that of the first file by name. A file none of whose faces
// is shown is a spare.
#pragma once

#include "manager/library/database.h"

#include <cstdint>

namespace manager {

/// Decides it for a container anew.
void markSpares(Database& database, std::int64_t container);

} // namespace manager
