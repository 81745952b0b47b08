// SPDX-License-Identifier: MIT
// Schema version 1.
//
// container: one family in one folder (file empty, family_key set) or one collection file (file
// set, family_key empty). Rows stay when their files go, and numbers are never given twice, so that
// a number keeps its meaning across scans. file: every file named like a font; one that holds none
// has a problem and no container. face: `number` is fontconfig's index. name: the keys by which a
// face is found, families and styles in their pairs.
#include "manager/library/schema.h"

#include <string>

namespace manager {

namespace {

constexpr std::int64_t applicationId = 0x474C5946;
constexpr std::int64_t schemaVersion = 1;

constexpr const char* tables = R"sql(
CREATE TABLE directory (path TEXT PRIMARY KEY) WITHOUT ROWID;
CREATE TABLE container (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    folder TEXT NOT NULL,
    file TEXT NOT NULL,
    family_key TEXT NOT NULL,
    name TEXT NOT NULL,
    UNIQUE (folder, file, family_key)
);
CREATE TABLE file (
    id INTEGER PRIMARY KEY,
    path TEXT NOT NULL UNIQUE,
    size INTEGER NOT NULL,
    changed INTEGER NOT NULL,
    inode INTEGER NOT NULL,
    container INTEGER REFERENCES container (id),
    problem TEXT
);
CREATE INDEX file_container ON file (container);
CREATE TABLE face (
    id INTEGER PRIMARY KEY,
    file INTEGER NOT NULL REFERENCES file (id) ON DELETE CASCADE,
    container INTEGER NOT NULL REFERENCES container (id),
    number INTEGER NOT NULL,
    type INTEGER NOT NULL,
    postscript_name TEXT NOT NULL,
    family TEXT NOT NULL,
    style TEXT NOT NULL
);
CREATE INDEX face_file ON face (file);
CREATE INDEX face_container ON face (container);
CREATE INDEX face_postscript_name ON face (postscript_name);
CREATE TABLE name (
    family_key TEXT NOT NULL,
    style_key TEXT NOT NULL,
    face INTEGER NOT NULL REFERENCES face (id) ON DELETE CASCADE,
    PRIMARY KEY (family_key, style_key, face)
) WITHOUT ROWID;
CREATE INDEX name_face ON name (face);
)sql";

std::int64_t pragma(Database& database, const char* sql) {
    Statement statement(database, sql);
    return statement.step() ? statement.number(0) : 0;
}

} // namespace

void prepareSchema(Database& database) {
    const auto isCurrent = [&] {
        return pragma(database, "PRAGMA application_id") == applicationId &&
               pragma(database, "PRAGMA user_version") == schemaVersion;
    };
    if (isCurrent()) {
        return;
    }
    Transaction transaction(database);
    if (isCurrent()) {
        return; // another process made the tables in the meantime
    }
    const std::int64_t version = pragma(database, "PRAGMA user_version");
    if (pragma(database, "SELECT count(*) FROM sqlite_master") != 0) {
        if (pragma(database, "PRAGMA application_id") != applicationId) {
            throw Error(database.path() + ": not an index of this program");
        }
        throw Error(database.path() + ": written by another version of this program (schema " +
                    std::to_string(version) + ", known: " + std::to_string(schemaVersion) + ")");
    }
    database.run(tables);
    database.run(("PRAGMA application_id=" + std::to_string(applicationId)).c_str());
    database.run(("PRAGMA user_version=" + std::to_string(schemaVersion)).c_str());
    transaction.commit();
}

std::int64_t salvageContainers(Database& fresh, const std::string& damagedPath) {
    std::int64_t salvaged = 0;
    Transaction transaction(fresh);
    try {
        Database damaged(damagedPath);
        Statement read(damaged, "SELECT id, folder, file, family_key, name FROM container "
                                "WHERE id BETWEEN 1 AND 2147483647");
        Statement write(fresh, "INSERT OR IGNORE INTO container (id, folder, file, family_key, "
                               "name) VALUES (?, ?, ?, ?, ?)");
        while (read.step()) {
            const std::string folder = read.text(1);
            const std::string file = read.text(2);
            const std::string family = read.text(3);
            const std::string name = read.text(4);
            write.bind(1, read.number(0)).bind(2, folder).bind(3, file).bind(4, family);
            write.bind(5, name).run();
            ++salvaged;
        }
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): the damage begins here
    }
    transaction.commit();
    return salvaged;
}

} // namespace manager
