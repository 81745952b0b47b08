// SPDX-License-Identifier: MIT
// Questions to the index, and its repair.
#include "manager/library/library.h"
#include "faces/namekey.h"

#include "manager/library/error.h"
#include "manager/library/fields.h"
#include "manager/library/schema.h"
#include "manager/library/stylewords.h"

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace manager {

namespace {

constexpr const char* faceColumns = "SELECT face.container, face.type, face.postscript_name, "
                                    "face.family, face.style, file.path FROM ";

Database openPrepared(const Places& places, const TableFiller& fill, MissingFile missing) {
    makeFolders(places.own());
    Database database(places.database(), missing);
    prepareSchema(database, fill);
    return database;
}

void keepKnown(Database& database, const KnownContainers& known) {
    for (const auto& [id, name, folder, file] : known ? known() : std::vector<KnownContainer>()) {
        keepContainer(database, {static_cast<std::int64_t>(id), folder, file,
                                 file.empty() ? faces::nameKey(name) : std::string(), name});
    }
}

std::int64_t inodeOf(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? static_cast<std::int64_t>(status.st_ino) : -1;
}

std::vector<FaceMatch> matches(Statement& statement) {
    std::vector<FaceMatch> found;
    while (statement.step()) {
        found.push_back({static_cast<ContainerId>(statement.number(0)),
                         static_cast<faces::Technology>(statement.number(1)), statement.text(2),
                         statement.text(3), statement.text(4), nameOf(statement.text(5))});
    }
    return found;
}

Container containerFrom(const Statement& statement) {
    return {static_cast<ContainerId>(statement.number(0)), statement.text(1), statement.text(2),
            statement.text(3), statement.number(4)};
}

// The texts between `folder/` and `folder0` are those that begin with `folder/`: '0' follows '/'.
struct PathRange {
    explicit PathRange(const std::string& folder)
        : first(folder == "/" ? "/" : folder + "/"), last(folder == "/" ? "0" : folder + "0") {}
    std::string first;
    std::string last;
};

std::int64_t count(Database& database, const char* sql, const PathRange& range) {
    Statement statement(database, sql);
    statement.bind(1, range.first).bind(2, range.last);
    statement.step();
    return statement.number(0);
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

Library::Library(const Places& places, const TableFiller& fill, MissingFile missing)
    : places_(places), database_(openPrepared(places, fill, missing)),
      inode_(inodeOf(places.database())),
      byPostScriptName_(database_,
                        (std::string(faceColumns) + "face JOIN file ON file.id = face.file "
                                                    "WHERE face.postscript_name = ? "
                                                    "ORDER BY face.container, face.id")
                            .c_str()),
      byName_(database_, (std::string(faceColumns) +
                          "name JOIN face ON face.id = name.face JOIN file ON file.id = face.file "
                          "WHERE name.family_key = ? AND name.style_key = ? "
                          "ORDER BY face.container, face.id")
                             .c_str()),
      container_(database_, "SELECT id, name, folder, file, 0 FROM container WHERE id = ?"),
      faceCount_(database_, "SELECT count(*) FROM face WHERE container = ?") {}

std::vector<FaceMatch> Library::findByPostScriptName(std::string_view name) {
    if (name.empty()) {
        return {}; // faces without a name do not answer to it
    }
    const StatementUse use(byPostScriptName_);
    byPostScriptName_.bind(1, name);
    return matches(byPostScriptName_);
}

std::vector<FaceMatch> Library::findByFamilyAndStyle(std::string_view family,
                                                     std::string_view style) {
    const std::string familyKey = faces::nameKey(family);
    const auto find = [&](std::string_view styleKey) {
        const StatementUse use(byName_);
        byName_.bind(1, familyKey).bind(2, styleKey);
        return matches(byName_);
    };
    const std::string styleKey = faces::nameKey(style);
    std::vector<FaceMatch> found = find(styleKey);
    if (found.empty()) {
        found = find(styleForm(styleKey));
    }
    if (found.empty() && styleKey.empty()) {
        found = find("medium");
    }
    return found;
}

std::optional<Container> Library::container(ContainerId id) {
    const StatementUse countUse(faceCount_);
    faceCount_.bind(1, static_cast<std::int64_t>(id));
    faceCount_.step();
    const std::int64_t faces = faceCount_.number(0);
    const StatementUse use(container_);
    container_.bind(1, static_cast<std::int64_t>(id));
    if (faces == 0 || !container_.step()) {
        return std::nullopt;
    }
    Container container = containerFrom(container_);
    container.faces = faces;
    return container;
}

std::vector<LibraryFile> Library::files(ContainerId id) {
    Statement statement(database_, "SELECT path, size, changed, inode FROM file "
                                   "WHERE container = ? ORDER BY path");
    statement.bind(1, static_cast<std::int64_t>(id));
    std::vector<LibraryFile> files;
    while (statement.step()) {
        files.push_back(
            {statement.text(0), {statement.number(1), statement.number(2), statement.number(3)}});
    }
    return files;
}

std::vector<Container> Library::containers() {
    Statement statement(database_,
                        "SELECT container.id, container.name, container.folder, container.file, "
                        "count(*) FROM container JOIN face ON face.container = container.id "
                        "GROUP BY container.id ORDER BY container.name, container.id");
    std::vector<Container> result;
    while (statement.step()) {
        result.push_back(containerFrom(statement));
    }
    return result;
}

std::vector<ContainerId> Library::findContainers(std::string_view name) {
    const std::string key = faces::nameKey(name);
    Statement statement(database_, "SELECT DISTINCT face.container FROM name "
                                   "JOIN face ON face.id = name.face WHERE name.family_key = ? "
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
    Statement statement(database_, "SELECT face.container FROM name "
                                   "JOIN face ON face.id = name.face WHERE name.family_key GLOB ? "
                                   "UNION SELECT container FROM face WHERE postscript_name GLOB ? "
                                   "ORDER BY 1");
    statement.bind(1, key).bind(2, own);
    std::vector<ContainerId> result;
    while (statement.step()) {
        result.push_back(static_cast<ContainerId>(statement.number(0)));
    }
    return result;
}

std::optional<ContainerId> Library::findPlace(const Container& place) {
    const std::string key = place.file.empty() ? faces::nameKey(place.name) : std::string();
    Statement statement(database_, "SELECT id FROM container "
                                   "WHERE folder = ? AND file = ? AND family_key = ?");
    statement.bind(1, place.folder).bind(2, place.file).bind(3, key);
    if (!statement.step()) {
        return std::nullopt;
    }
    return static_cast<ContainerId>(statement.number(0));
}

LibraryCounts Library::counts(const std::string& folder) {
    const PathRange range(folder);
    return {count(database_,
                  "SELECT count(*) FROM file WHERE path >= ? AND path < ? AND problem IS NULL",
                  range),
            count(database_,
                  "SELECT count(*) FROM file JOIN face ON face.file = file.id "
                  "WHERE path >= ? AND path < ?",
                  range),
            count(database_,
                  "SELECT count(DISTINCT container) FROM file WHERE path >= ? AND path < ?", range),
            count(database_,
                  "SELECT count(*) FROM file WHERE path >= ? AND path < ? AND problem IS NOT NULL",
                  range)};
}

std::vector<std::string> Library::directories() {
    return texts(database_, "SELECT path FROM directory ORDER BY path");
}

std::vector<std::string> Library::problems() {
    return texts(database_, "SELECT problem FROM file WHERE problem IS NOT NULL "
                            "UNION SELECT problem FROM walk_problem ORDER BY problem");
}

bool Library::isScanOwed() {
    Statement statement(database_, "SELECT scan_owed FROM state");
    return statement.step() && statement.number(0) != 0;
}

bool Library::isReplaced() const {
    return inodeOf(database_.path()) != inode_;
}

void Library::check() {
    Statement statement(database_, "PRAGMA quick_check(1)");
    const std::string result = statement.step() ? statement.text(0) : "no answer";
    if (result != "ok") {
        throw DamagedDatabase(database_.path() + ": " + result);
    }
}

std::unique_ptr<Library> openLibrary(const Places& places, const KnownContainers& known,
                                     const std::function<void(const std::string&)>& report) {
    const auto open = [&](MissingFile missing) {
        const auto keep = [&](Database& fresh) { keepKnown(fresh, known); };
        auto library = std::make_unique<Library>(places, keep, missing);
        library->check();
        return library;
    };
    // Nobody looks at an index that another process has only begun, or is moving aside.
    std::optional<FileLock> lock;
    try {
        makeFolders(places.own());
        lock.emplace(places.database() + ".lock");
    } catch (const Error&) {
        if (access(places.database().c_str(), R_OK) != 0) {
            throw;
        }
        return open(MissingFile::IsAnError); // as it is: where nothing can be written
    }
    std::string damage;
    try {
        return open(MissingFile::IsMade);
    } catch (const DamagedDatabase& error) {
        damage = error.what();
    }
    const std::string aside = places.database() + ".damaged-" + std::to_string(std::time(nullptr));
    for (const char* part : {"", "-wal", "-shm"}) {
        if (rename((places.database() + part).c_str(), (aside + part).c_str()) != 0 &&
            *part == '\0') {
            throw systemError(places.database(), "is damaged and cannot be moved aside", errno);
        }
    }
    report(damage + "; moved to " + nameOf(aside) + ", the recorded folders are scanned anew");
    // What is active comes first: it has its number on disk.
    return std::make_unique<Library>(places, [&](Database& fresh) {
        keepKnown(fresh, known);
        salvageContainers(fresh, aside);
    });
}

} // namespace manager
