// SPDX-License-Identifier: MIT
// The tables of the library's index.
#pragma once

#include "manager/library/database.h"

#include <functional>

namespace manager {

/// [one-thread] Fills tables that were just made, in the transaction that makes them: nobody sees
/// them empty.
using TableFiller = std::function<void(Database&)>;

/// Makes the tables in an empty database, or checks that they are this version's. A new index owes
/// a scan. Throws Error when the file belongs to another program or version; DamagedDatabase when
/// it cannot be read.
void prepareSchema(Database& database, const TableFiller& fill = {});

/// Gives a container its number, unless either is taken. No `folder`: the number alone is reserved,
/// so that no container gets it.
struct ContainerRow {
    std::int64_t id = 0;
    std::string folder;
    std::string file;
    std::string familyKey;
    std::string name;
};
void keepContainer(Database& database, const ContainerRow& row);

/// Copies what can still be read of the containers' numbers from a damaged database into a new one,
/// in a transaction of the caller's.
void salvageContainers(Database& fresh, const std::string& damagedPath);

} // namespace manager
