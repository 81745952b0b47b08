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
/// are replaced, those of schema 3 completed, and all containers keep their numbers. A new or
/// changed index owes a scan. Throws Error when the file belongs to another program or version;
/// DamagedDatabase when it cannot be read.
void prepareSchema(Database& database, const TableFiller& fill = {});

struct ContainerRow {
    std::int64_t id = 0;
    std::string folder;
    std::string file;
    std::string familyKey;
    std::string name;
    std::optional<FontFormat> format; ///< nullopt: that of the first font of its that is read
};

/// [one-thread] Gives numbers to containers of which no font was read. Not to outlive its database.
class ContainerKeeper {
public:
    explicit ContainerKeeper(Database& database);

    /// From now on new containers get higher numbers.
    void reserve(std::int64_t id);
    /// False: another container has the number, or this one has another.
    bool keep(const ContainerRow& row);

private:
    Database& database_;
    Statement reserve_;
    Statement first_;
    Statement write_;
};

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
