// SPDX-License-Identifier: MIT
// Questions to the index.
#include "manager/library/library.h"
#include "faces/namekey.h"

#include "manager/library/error.h"
#include "manager/library/facelookup.h"
#include "manager/library/fields.h"
#include "manager/library/indexfile.h"
#include "manager/library/schema.h"

#include <optional>

namespace manager {

namespace {

Database openPrepared(const Places& places, const TableFiller& fill, MissingFile missing,
                      std::chrono::milliseconds patience) {
    makeFolders(places.own());
    Database database(places.database(), missing, patience);
    prepareSchema(database, fill);
    return database;
}

// A directory is that of the container's folder, where all of its files lie.
constexpr const char* allContainers =
    "SELECT container.id, container.name, container.folder, container.file, container.format, "
    "directory.away, directory.shown, container.faces FROM container "
    "JOIN directory ON directory.path = container.folder WHERE container.faces > 0 "
    "ORDER BY container.name, container.id";

Container containerFrom(const Statement& statement) {
    Container container;
    container.id = static_cast<ContainerId>(statement.number(0));
    container.name = statement.text(1);
    container.folder = statement.text(2);
    container.file = statement.text(3);
    container.faces = statement.number(7);
    if (!statement.isNull(4)) {
        container.format = static_cast<FontFormat>(statement.number(4));
    }
    container.away = statement.number(5) != 0;
    container.shownByDesktop = statement.number(6) != 0;
    return container;
}

std::vector<std::string> texts(Database& database, const char* sql) {
    Statement statement(database, sql);
    std::vector<std::string> result;
    while (statement.step()) {
        result.push_back(statement.text(0));
    }
    return result;
}

} // namespace

std::optional<ContainerId> toContainerId(std::string_view text) {
    const auto number = toNumber<std::int32_t>(text);
    if (!number || *number < 1) {
        return std::nullopt;
    }
    return static_cast<ContainerId>(*number);
}

Library::Library(const Places& places, const TableFiller& fill, MissingFile missing,
                 std::chrono::milliseconds patience)
    : places_(places), database_(openPrepared(places, fill, missing, patience)),
      file_(indexFile(places.database())),
      byPostScriptKey_(database_, faceLookUp("face", "face.postscript_key = ?").c_str()),
      byFullName_(database_,
                  faceLookUp("full_name JOIN face ON face.id = full_name.face", "full_name.key = ?")
                      .c_str()),
      byFamily_(database_, faceLookUp("family JOIN name ON name.family = family.id "
                                      "JOIN face ON face.id = name.face",
                                      "family.key = ?")
                               .c_str()),
      byNormalisedFamily_(database_, faceLookUp("family JOIN name ON name.family = family.id "
                                                "JOIN face ON face.id = name.face",
                                                "family.normalised_key = ?")
                                         .c_str()),
      byId_(database_, (faceColumns() + "WHERE face.id = ?").c_str()),
      names_(database_, "SELECT family.name, name.style, name.language, name.kind FROM name "
                        "JOIN family ON family.id = name.family WHERE name.face = ? "
                        "ORDER BY name.position"),
      fullNames_(database_, "SELECT name FROM full_name WHERE face = ? ORDER BY position"),
      container_(database_,
                 "SELECT container.id, container.name, container.folder, container.file, "
                 "container.format, directory.away, directory.shown, container.faces "
                 "FROM container JOIN directory ON directory.path = container.folder "
                 "WHERE container.id = ?"),
      files_(database_, "SELECT directory.path, file.name, size, changed, inode, "
                        "(SELECT version FROM face WHERE face.file = file.id "
                        "ORDER BY number LIMIT 1) FROM file "
                        "JOIN directory ON directory.id = file.directory "
                        "WHERE container = ? AND spare = 0 ORDER BY file.name") {}

std::optional<Container> Library::container(ContainerId id) {
    const StatementUse use(container_);
    container_.bind(1, static_cast<std::int64_t>(id));
    if (!container_.step() || container_.number(7) == 0) {
        return std::nullopt;
    }
    return containerFrom(container_);
}

std::vector<LibraryFile> Library::files(ContainerId id) {
    const StatementUse use(files_);
    files_.bind(1, static_cast<std::int64_t>(id));
    std::vector<LibraryFile> files;
    while (files_.step()) {
        files.push_back({joinPath(files_.text(0), files_.text(1)),
                         {files_.number(2), files_.number(3), files_.number(4)},
                         files_.text(5)});
    }
    return files;
}

std::optional<ContainerId> Library::containerOfFile(const std::string& path) {
    Statement statement(database_, "SELECT file.container FROM directory "
                                   "JOIN file ON file.directory = directory.id "
                                   "WHERE directory.path = ? AND file.name = ? "
                                   "AND file.container IS NOT NULL");
    const std::string folder = folderOf(path);
    const std::string name = nameOf(path);
    statement.bind(1, folder).bind(2, name);
    return statement.step() ? std::optional(static_cast<ContainerId>(statement.number(0)))
                            : std::nullopt;
}

std::vector<Container> Library::containers() {
    Statement statement(database_, allContainers);
    std::vector<Container> result;
    while (statement.step()) {
        result.push_back(containerFrom(statement));
    }
    return result;
}

std::vector<ContainerId> Library::findContainers(std::string_view name) {
    const std::string key = faces::nameKey(name);
    Statement statement(database_, "SELECT DISTINCT face.container FROM family "
                                   "JOIN name ON name.family = family.id "
                                   "JOIN face ON face.id = name.face WHERE family.key = ? "
                                   "ORDER BY face.container");
    statement.bind(1, key);
    std::vector<ContainerId> result;
    while (statement.step()) {
        result.push_back(static_cast<ContainerId>(statement.number(0)));
    }
    return result;
}

std::vector<ContainerId> Library::findContainersLike(std::string_view pattern) {
    std::string own(pattern);
    for (std::size_t at = 0; (at = own.find("[!", at)) != std::string::npos; ++at) {
        own[at + 1] = '^'; // as SQLite writes it
    }
    const std::string key = faces::nameKey(own);
    const std::string postScriptKey = faces::postScriptKey(own);
    // A name alone is found by the indexes; a pattern has to be held against every name.
    const bool isName = own.find_first_of("*?[") == std::string::npos;
    const std::string like = isName ? "= ?" : "GLOB ?";
    Statement statement(database_, ("SELECT face.container FROM family "
                                    "JOIN name ON name.family = family.id "
                                    "JOIN face ON face.id = name.face WHERE family.key " +
                                    like + "1 UNION SELECT container FROM face WHERE " +
                                    (isName ? "postscript_key = ?3 AND " : "") +
                                    "postscript_name " + like + "2 ORDER BY 1")
                                       .c_str());
    statement.bind(1, key).bind(2, own);
    if (isName) {
        statement.bind(3, postScriptKey);
    }
    std::vector<ContainerId> result;
    while (statement.step()) {
        result.push_back(static_cast<ContainerId>(statement.number(0)));
    }
    return result;
}

std::optional<ContainerId> Library::findPlace(const Container& place) {
    const std::string key = place.file.empty() ? faces::nameKey(place.name) : std::string();
    Statement statement(database_, "SELECT id FROM container "
                                   "WHERE folder = ? AND file = ? AND family_key = ? "
                                   "AND (?5 IS NULL OR format IS ?5) "
                                   "ORDER BY id = ?4 DESC, id");
    statement.bind(1, place.folder).bind(2, place.file).bind(3, key);
    statement.bind(4, static_cast<std::int64_t>(place.id));
    if (place.format) {
        statement.bind(5, static_cast<std::int64_t>(*place.format));
    }
    if (!statement.step()) {
        return std::nullopt;
    }
    return static_cast<ContainerId>(statement.number(0));
}

// Bad files are those without a container.
LibraryCounts Library::counts(const std::string& folder) {
    const Reading together(database_);
    const PathRange range(folder);
    Statement held(database_, "SELECT count(*), ifnull(sum(files), 0), ifnull(sum(faces), 0) "
                              "FROM container WHERE files > 0 AND "
                              "(folder = ?1 OR (folder >= ?2 AND folder < ?3))");
    const std::string files = "SELECT count(*) FROM file "
                              "JOIN directory ON directory.id = file.directory WHERE " +
                              std::string(atOrUnder);
    Statement bad(database_, (files + " AND file.container IS NULL").c_str());
    Statement away(database_,
                   (files + " AND directory.away AND file.container IS NOT NULL").c_str());
    for (Statement* statement : {&held, &bad, &away}) {
        statement->bind(1, folder).bind(2, range.first).bind(3, range.last).step();
    }
    return {held.number(1), held.number(2), held.number(0), bad.number(0), away.number(0)};
}

std::vector<std::string> Library::directories() {
    return texts(database_, "SELECT path FROM directory ORDER BY path");
}

std::vector<std::string> Library::problems() {
    // Only files that hold no font have one, and those are found by an index.
    return texts(database_, "SELECT problem FROM file "
                            "WHERE container IS NULL AND problem IS NOT NULL "
                            "UNION SELECT problem FROM walk_problem ORDER BY problem");
}

bool Library::isScanOwed() {
    Statement statement(database_, "SELECT 1 FROM state WHERE scan_owed IN (1, 2)");
    return statement.step();
}

bool Library::isReadingOwed() {
    Statement statement(database_, "SELECT 1 FROM state WHERE scan_owed = 2");
    return statement.step();
}

bool Library::isScanUnfinished() {
    Statement statement(database_, "SELECT 1 FROM state WHERE scan_owed = 3");
    return statement.step();
}

} // namespace manager
