// SPDX-License-Identifier: MIT
// Schema version 2.
//
// container: one family in one folder (file empty, family_key set) or one collection file (file
// set, family_key empty). Rows stay when their files go, and numbers are never given twice, so that
// a number keeps its meaning across scans. file: every file named like a font; one that holds none
// has a problem and no container. face: `number` is fontconfig's index. name: the keys by which a
// face is found, families and styles in their pairs. A file of size -1 could not be read for a
// reason outside of it and is read again by the next scan. walk_problem: what the last scan could
// not look at. state: one row; scan_owed until a scan has filled a new index.
#include "manager/library/schema.h"

#include <string>

namespace manager {

namespace {

constexpr std::int64_t applicationId = 0x474C5946;
constexpr std::int64_t schemaVersion = 2;

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
CREATE TABLE walk_problem (problem TEXT PRIMARY KEY) WITHOUT ROWID;
CREATE TABLE state (scan_owed INTEGER NOT NULL);
INSERT INTO state (scan_owed) VALUES (1);
)sql";

std::int64_t pragma(Database& database, const char* sql) {
    Statement statement(database, sql);
    return statement.step() ? statement.number(0) : 0;
}

} // namespace

void prepareSchema(Database& database, const TableFiller& fill) {
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
    if (fill) {
        fill(database);
    }
    database.run(("PRAGMA application_id=" + std::to_string(applicationId)).c_str());
    database.run(("PRAGMA user_version=" + std::to_string(schemaVersion)).c_str());
    transaction.commit();
}

void keepContainer(Database& database, const ContainerRow& row) {
    Statement reserve(database, "UPDATE sqlite_sequence SET seq = max(seq, ?) "
                                "WHERE name = 'container'");
    reserve.bind(1, row.id).run();
    if (sqlite3_changes(database.handle()) == 0) {
        Statement first(database,
                        "INSERT INTO sqlite_sequence (name, seq) VALUES ('container', ?)");
        first.bind(1, row.id).run();
    }
    if (row.folder.empty()) {
        return;
    }
    Statement write(database, "INSERT OR IGNORE INTO container (id, folder, file, family_key, "
                              "name) VALUES (?, ?, ?, ?, ?)");
    write.bind(1, row.id).bind(2, row.folder).bind(3, row.file).bind(4, row.familyKey);
    write.bind(5, row.name).run();
}

void salvageContainers(Database& fresh, const std::string& damagedPath) {
    // The last number given comes first: no number of a container that cannot be read is to be
    // given to another.
    for (const char* sql : {"SELECT seq, '', '', '', '' FROM sqlite_sequence "
                            "WHERE name = 'container' AND seq BETWEEN 1 AND 2147483646",
                            "SELECT id, folder, file, family_key, name FROM container "
                            "WHERE id BETWEEN 1 AND 2147483647"}) {
        try {
            Database damaged(damagedPath, MissingFile::IsAnError);
            Statement read(damaged, sql);
            while (read.step()) {
                keepContainer(fresh, {read.number(0), read.text(1), read.text(2), read.text(3),
                                      read.text(4)});
            }
        } catch (const Error&) { // NOLINT(bugprone-empty-catch): the damage begins here
        }
    }
}

} // namespace manager
