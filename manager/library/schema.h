// SPDX-License-Identifier: MIT
// The tables of the library's index.
#pragma once

#include "manager/library/database.h"
#include "manager/library/fontformat.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace manager {

/// [one-thread] Fills tables that were just made, in the transaction that makes them: nobody sees
/// them empty.
using TableFiller = std::function<void(Database&)>;

/// Makes the tables in an empty database, or checks that they are this version's. Those of schema 2
/// are replaced, and all containers keep their numbers. A new or replaced index owes a scan. Throws
/// Error when the file belongs to another program or version; DamagedDatabase when it cannot be
/// read.
void prepareSchema(Database& database, const TableFiller& fill = {});

/// Gives a container its number, unless that is taken. No `folder`: the number alone is reserved,
/// so that no container gets it.
struct ContainerRow {
    std::int64_t id = 0;
    std::string folder;
    std::string file;
    std::string familyKey;
    std::string name;
    std::optional<FontFormat> format; ///< nullopt: that of the first font of its that is read
};
void keepContainer(Database& database, const ContainerRow& row);

/// Copies what can still be read of the containers' numbers from a damaged database into a new one,
/// in a transaction of the caller's.
void salvageContainers(Database& fresh, const std::string& damagedPath);

/// What the table `shared` holds, each value of a kind once.
enum class SharedKind : std::uint8_t {
    Foundry = 1,
    Copyright,
    Licence,
    LicenceLink,
    Scripts,
    Languages,
    Features,
    Axes,
    Coverage,
};

} // namespace manager
