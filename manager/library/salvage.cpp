// SPDX-License-Identifier: MIT
// A bad page costs the rows on it: those of others are looked up one by one. Where the way to them
// is lost, too, a copy of the containers' keys stands in the index that keeps them unique.
#include "manager/library/salvage.h"

#include <algorithm>
#include <functional>

namespace manager {

namespace {

// A page has a tenth of that many rows. Where more are missing in a row the way to them is lost.
constexpr std::int64_t mostMissing = 1000;

using RowReader = std::function<void(const Statement& row)>;

/// Reads what `sql` finds from a number on that is its parameter, as is its first column.
void readByNumber(Database& damaged, const std::string& sql, const RowReader& take) {
    Statement read(damaged, sql.c_str());
    std::int64_t last = 0; // that was read
    for (std::int64_t next = 1; next <= last + mostMissing; ++next) {
        try {
            const StatementUse use(read);
            read.bind(1, next);
            while (read.step()) {
                last = std::max(last, read.number(0));
                take(read);
            }
            return;
        } catch (const Locked&) {
            throw;
        } catch (const Error&) {
            next = std::max(next, last);
        }
    }
}

void readUpToDamage(Database& damaged, const std::string& sql, const RowReader& take) {
    Statement read(damaged, sql.c_str());
    while (read.step()) {
        take(read);
    }
}

/// One attempt, which may fail for itself.
template <class Attempt>
void attempt(Attempt&& action) {
    try {
        action();
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): what it did so far counts
    }
}

void takeContainer(const Statement& row, Salvage& found) {
    constexpr std::int64_t highest = 2'147'483'646; // another can follow
    ContainerRow container{row.number(0), row.text(1), row.text(2), row.text(3), row.text(4), {}};
    if (container.id < 1 || container.id > highest || !container.folder.starts_with('/') ||
        container.file.empty() == container.familyKey.empty()) {
        return;
    }
    const std::int64_t format = row.number(5);
    if (!row.isNull(5) && format >= 0 && format <= 3) {
        container.format = static_cast<FontFormat>(format);
    }
    found.lastNumber = std::max(found.lastNumber, container.id);
    found.containers.emplace(container.id, std::move(container));
}

} // namespace

Salvage salvage(const std::string& damagedPath) {
    Salvage found;
    attempt([&] {
        Database damaged = Database::damaged(damagedPath);
        const auto take = [&](const Statement& row) { takeContainer(row, found); };
        attempt([&] {
            readUpToDamage(damaged,
                           "SELECT seq FROM sqlite_sequence WHERE name = 'container' AND "
                           "seq BETWEEN 1 AND 2147483646",
                           [&](const Statement& row) { found.lastNumber = row.number(0); });
        });
        std::string source = ", NULL FROM container ";
        attempt([&] { // schema 2 has no such column
            const Statement isThere(damaged, "SELECT format FROM container");
            source = ", format FROM container ";
        });
        const std::string keys = "SELECT id, folder, file, family_key, ";
        attempt([&] {
            readByNumber(damaged, keys + "name" + source + "WHERE id >= ? ORDER BY id", take);
        });
        // The keys' copy has no names; the next scan gives them.
        source.insert(0, "file || family_key");
        for (const char* order : {"ORDER BY folder, file, family_key",
                                  "ORDER BY folder DESC, file DESC, family_key DESC"}) {
            attempt([&] { readUpToDamage(damaged, keys + source + order, take); });
        }
        const auto takeProblem = [&](const Statement& row) {
            if (!row.isNull(1)) {
                found.problems.insert(row.text(1));
            }
        };
        attempt([&] {
            readByNumber(damaged, "SELECT id, problem FROM file WHERE id >= ? ORDER BY id",
                         takeProblem);
        });
        attempt(
            [&] { readUpToDamage(damaged, "SELECT 0, problem FROM walk_problem", takeProblem); });
    });
    return found;
}

} // namespace manager
