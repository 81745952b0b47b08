// SPDX-License-Identifier: MIT
// Schema version 5.
//
// container: one family in one folder in one format (file empty, family_key set) or one collection
// file (file set, family_key empty); files counts all of its files, faces those of no spare. Rows
// stay when their files go, and numbers are never given twice, so that a number keeps its meaning
// across scans. format is NULL until it is known. directory: every folder that was walked; away: it
// lies in a library folder that is not there now; shown: the desktop shows it by itself. file:
// every file named like a font; one that holds none has a problem and no container. A file of size
// -1 could not be read for a reason outside of it and is read again by the next scan. digest: of
// its first bytes; whole: of all of them, of files that some other file is like as far as that
// tells. spare: all of its faces are another file's of its container, too. face: `number` is
// fontconfig's index; family_key is that of the name to show, names all that a word may be part of,
// a line each. name: the families and styles of a face in their pairs, the one to show at position
// 0. family: each family's name once, with the keys by which it is found. shared: what many faces
// have in common, each value once. walk_problem: what the last scan could not look at. state: one
// row; scan_owed is 1 until a scan has filled a new index, 2 until one has read all files again,
// whether they have changed or not, else 3 from the first change of a scan to its end.
//
// Schema 4 had no counts and no `names`; the scans to come leave out of these what stands in
// others. Schema 3 had no column `whole`, and with it fonts of mere bitmaps were faces and
// instances had lost the sign of their coordinates: a scan that reads all is owed. Schema 2 had one
// container for all formats of a family in a folder. Its number stays with the format that most of
// its faces have; of as many OpenType with PostScript outlines comes before TrueType, and Type 1
// last. So an active set keeps its number and, at its next update, the most of its files.
#include "manager/library/schema.h"

#include <string>

namespace manager {

namespace {

constexpr std::int64_t applicationId = 0x474C5946;
constexpr std::int64_t schemaVersion = 5;
constexpr std::int64_t versionWithoutCounts = 4;
constexpr std::int64_t versionWithoutWhole = 3;
constexpr std::int64_t versionWithoutFormats = 2;

constexpr const char* tables = R"sql(
CREATE TABLE container (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    folder TEXT NOT NULL,
    file TEXT NOT NULL,
    family_key TEXT NOT NULL,
    format INTEGER,
    name TEXT NOT NULL,
    files INTEGER NOT NULL DEFAULT 0,
    faces INTEGER NOT NULL DEFAULT 0,
    UNIQUE (folder, file, family_key, format)
);
CREATE TABLE directory (
    id INTEGER PRIMARY KEY,
    path TEXT NOT NULL UNIQUE,
    device INTEGER NOT NULL DEFAULT 0,
    away INTEGER NOT NULL DEFAULT 0,
    shown INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE file (
    id INTEGER PRIMARY KEY,
    directory INTEGER NOT NULL REFERENCES directory (id),
    name TEXT NOT NULL,
    size INTEGER NOT NULL,
    changed INTEGER NOT NULL,
    inode INTEGER NOT NULL,
    digest INTEGER NOT NULL,
    whole BLOB,
    container INTEGER REFERENCES container (id),
    spare INTEGER NOT NULL DEFAULT 0,
    problem TEXT,
    UNIQUE (directory, name)
);
CREATE INDEX file_container ON file (container);
CREATE INDEX file_spare ON file (container) WHERE spare <> 0;
CREATE TABLE face (
    id INTEGER PRIMARY KEY,
    file INTEGER NOT NULL REFERENCES file (id) ON DELETE CASCADE,
    container INTEGER NOT NULL REFERENCES container (id),
    number INTEGER NOT NULL,
    technology INTEGER NOT NULL,
    weight REAL NOT NULL,
    width REAL NOT NULL,
    slant INTEGER NOT NULL,
    classification INTEGER NOT NULL,
    monospaced INTEGER NOT NULL,
    symbolic INTEGER NOT NULL,
    colour INTEGER NOT NULL,
    glyphs INTEGER NOT NULL,
    revision INTEGER NOT NULL,
    embedding INTEGER,
    postscript_name TEXT NOT NULL,
    postscript_key TEXT NOT NULL,
    version TEXT NOT NULL,
    foundry INTEGER,
    copyright INTEGER,
    licence INTEGER,
    licence_link INTEGER,
    scripts INTEGER,
    languages INTEGER,
    features INTEGER,
    axes INTEGER,
    coverage INTEGER,
    position TEXT,
    panose BLOB,
    measures BLOB,
    family_key TEXT NOT NULL DEFAULT '',
    names TEXT NOT NULL DEFAULT ''
);
CREATE INDEX face_file ON face (file);
CREATE INDEX face_container ON face (container);
CREATE INDEX face_postscript_key ON face (postscript_key, container);
CREATE TABLE family (
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL UNIQUE,
    key TEXT NOT NULL,
    normalised_key TEXT NOT NULL
);
CREATE INDEX family_key ON family (key);
CREATE INDEX family_normalised_key ON family (normalised_key);
CREATE TABLE name (
    face INTEGER NOT NULL REFERENCES face (id) ON DELETE CASCADE,
    position INTEGER NOT NULL,
    family INTEGER NOT NULL REFERENCES family (id),
    style TEXT NOT NULL,
    language TEXT NOT NULL,
    kind INTEGER NOT NULL,
    PRIMARY KEY (face, position)
) WITHOUT ROWID;
CREATE INDEX name_family ON name (family);
CREATE TABLE full_name (
    face INTEGER NOT NULL REFERENCES face (id) ON DELETE CASCADE,
    position INTEGER NOT NULL,
    name TEXT NOT NULL,
    key TEXT NOT NULL,
    PRIMARY KEY (face, position)
) WITHOUT ROWID;
CREATE INDEX full_name_key ON full_name (key);
CREATE TABLE shared (
    id INTEGER PRIMARY KEY,
    kind INTEGER NOT NULL,
    hash INTEGER NOT NULL,
    value BLOB NOT NULL
);
CREATE INDEX shared_hash ON shared (kind, hash);
CREATE TABLE walk_problem (problem TEXT PRIMARY KEY) WITHOUT ROWID;
CREATE TABLE state (scan_owed INTEGER NOT NULL);
INSERT INTO state (scan_owed) VALUES (1);
)sql";

// The formats by their numbers: Type 1, TrueType, PostScript, collection. Reserved numbers that
// no container has are kept by the sequence.
constexpr const char* setPreviousAside = R"sql(
CREATE TEMP TABLE numbered AS
    SELECT id, folder, file, family_key, name,
        CASE WHEN file <> '' THEN 3 ELSE
            (SELECT CASE type WHEN 0 THEN 0 WHEN 2 THEN 2 ELSE 1 END AS format
             FROM face WHERE container = container.id
             GROUP BY format ORDER BY count(*) DESC, format DESC LIMIT 1) END AS format
    FROM container;
CREATE TEMP TABLE last_number AS SELECT seq FROM sqlite_sequence WHERE name = 'container';
DROP TABLE name;
DROP TABLE face;
DROP TABLE file;
DROP TABLE container;
DROP TABLE directory;
DROP TABLE walk_problem;
DROP TABLE state;
)sql";
constexpr const char* takePreviousOver = R"sql(
INSERT INTO container (id, folder, file, family_key, format, name)
    SELECT id, folder, file, family_key, format, name FROM temp.numbered;
INSERT INTO sqlite_sequence (name, seq)
    SELECT 'container', 0 WHERE NOT EXISTS
        (SELECT 1 FROM sqlite_sequence WHERE name = 'container');
UPDATE sqlite_sequence SET seq = max(seq, (SELECT ifnull(max(seq), 0) FROM temp.last_number))
    WHERE name = 'container';
DROP TABLE temp.numbered;
DROP TABLE temp.last_number;
)sql";

constexpr const char* addWhole = R"sql(
ALTER TABLE file ADD COLUMN whole BLOB;
UPDATE state SET scan_owed = 2;
)sql";

// The faces by name, with all that most searches look at, so that they need not read the table; and
// files by what is in them.
constexpr const char* addOrders =
    "CREATE INDEX face_order ON face (family_key, weight, width, slant, file, axes, technology, "
    "classification, monospaced, embedding, foundry, scripts, languages, features, coverage, "
    "names);"
    "CREATE INDEX file_whole ON file (whole) WHERE whole IS NOT NULL";

constexpr const char* addCounts = R"sql(
ALTER TABLE container ADD COLUMN files INTEGER NOT NULL DEFAULT 0;
ALTER TABLE container ADD COLUMN faces INTEGER NOT NULL DEFAULT 0;
UPDATE container SET
    files = (SELECT count(*) FROM file WHERE file.container = container.id),
    faces = (SELECT count(*) FROM file JOIN face ON face.file = file.id
             WHERE file.container = container.id AND file.spare = 0);
ALTER TABLE face ADD COLUMN family_key TEXT NOT NULL DEFAULT '';
ALTER TABLE face ADD COLUMN names TEXT NOT NULL DEFAULT '';
UPDATE face SET
    family_key = ifnull((SELECT family.key FROM name JOIN family ON family.id = name.family
                         WHERE name.face = face.id AND name.position = 0), ''),
    names = lower(postscript_key) || char(10) ||
        ifnull((SELECT group_concat(family.key || char(10) || lower(name.style), char(10))
                FROM name JOIN family ON family.id = name.family
                WHERE name.face = face.id), '') || char(10) ||
        ifnull((SELECT group_concat(key, char(10)) FROM full_name
                WHERE full_name.face = face.id), '');
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
    const bool isNew = pragma(database, "SELECT count(*) FROM sqlite_master") == 0;
    if (!isNew) {
        if (pragma(database, "PRAGMA application_id") != applicationId) {
            throw Error(database.path() + ": not an index of this program");
        }
        if (version < versionWithoutFormats || version > versionWithoutCounts) {
            throw Error(database.path() + ": written by another version of this program (schema " +
                        std::to_string(version) + ", known: " + std::to_string(schemaVersion) +
                        ")");
        }
    }
    if (version == versionWithoutWhole || version == versionWithoutCounts) {
        if (version == versionWithoutWhole) {
            database.run(addWhole);
        }
        database.run(addCounts);
    } else if (!isNew) {
        database.run((std::string(setPreviousAside) + tables + takePreviousOver).c_str());
    } else {
        database.run(tables);
        if (fill) {
            fill(database);
        }
    }
    database.run(addOrders);
    database.run(("PRAGMA application_id=" + std::to_string(applicationId)).c_str());
    database.run(("PRAGMA user_version=" + std::to_string(schemaVersion)).c_str());
    transaction.commit();
}

ContainerKeeper::ContainerKeeper(Database& database)
    : database_(database),
      reserve_(database, "UPDATE sqlite_sequence SET seq = max(seq, ?) WHERE name = 'container'"),
      first_(database, "INSERT INTO sqlite_sequence (name, seq) VALUES ('container', ?)"),
      write_(database, "INSERT OR IGNORE INTO container (id, folder, file, family_key, name, "
                       "format) VALUES (?, ?, ?, ?, ?, ?)") {}

void ContainerKeeper::reserve(std::int64_t id) {
    reserve_.bind(1, id).run();
    if (sqlite3_changes(database_.handle()) == 0) {
        first_.bind(1, id).run();
    }
}

bool ContainerKeeper::keep(const ContainerRow& row) {
    write_.bind(1, row.id).bind(2, row.folder).bind(3, row.file).bind(4, row.familyKey);
    write_.bind(5, row.name).bindNull(6);
    if (row.format) {
        write_.bind(6, static_cast<std::int64_t>(*row.format));
    }
    write_.run();
    return sqlite3_changes(database_.handle()) != 0;
}

} // namespace manager
