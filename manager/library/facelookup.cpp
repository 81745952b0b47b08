// SPDX-License-Identifier: MIT
// Looking faces up, and reading them from their rows.
#include "manager/library/facelookup.h"

#include "faces/namekey.h"
#include "manager/library/library.h"
#include "manager/library/packing.h"

#include <algorithm>
#include <utility>

namespace manager {

namespace {

// Columns of faceColumns().
enum Column {
    Id,
    InContainer,
    Technology,
    PostScriptName,
    Folder,
    Shown,
    Away,
    FileName,
    Size,
    Changed,
    Inode,
    Whole,
    Weight,
    Width,
    Slant,
    Version,
    Revision,
    Foundry,
    Axes,
    Family,
    StyleName,
    ContainerName,
    ContainerFile,
    ContainerFormat,
    ContainerFaces,
    Number,
    Classification,
    Monospaced,
    Symbolic,
    Colour,
    Glyphs,
    Embedding,
    Copyright,
    Licence,
    LicenceLink,
    Scripts,
    Languages,
    Features,
    Coverage,
    InstancePosition,
    Panose,
    Measures,
};

constexpr std::string_view columns =
    "face.id, face.container, face.technology, face.postscript_name, directory.path, "
    "directory.shown, directory.away, file.name, file.size, file.changed, file.inode, file.whole, "
    "face.weight, face.width, face.slant, face.version, face.revision, "
    "(SELECT value FROM shared WHERE id = face.foundry), "
    "(SELECT value FROM shared WHERE id = face.axes), first_family.name, first_name.style, "
    "container.name, container.file, container.format, container.faces";

constexpr std::string_view moreColumns =
    ", face.number, face.classification, face.monospaced, face.symbolic, face.colour, face.glyphs, "
    "face.embedding, "
    "(SELECT value FROM shared WHERE id = face.copyright), "
    "(SELECT value FROM shared WHERE id = face.licence), "
    "(SELECT value FROM shared WHERE id = face.licence_link), "
    "(SELECT value FROM shared WHERE id = face.scripts), "
    "(SELECT value FROM shared WHERE id = face.languages), "
    "(SELECT value FROM shared WHERE id = face.features), "
    "(SELECT value FROM shared WHERE id = face.coverage), "
    "face.position, face.panose, face.measures";

constexpr std::string_view joined =
    " JOIN file ON file.id = face.file JOIN directory ON directory.id = file.directory "
    "JOIN name AS first_name ON first_name.face = face.id AND first_name.position = 0 "
    "JOIN family AS first_family ON first_family.id = first_name.family "
    "JOIN container ON container.id = face.container ";

} // namespace

std::string faceColumns(std::string_view from) {
    return std::string("SELECT ").append(columns).append(" FROM ").append(from).append(joined);
}

std::string faceLookUp(std::string_view from, std::string_view condition) {
    return faceColumns(from) + "WHERE " + std::string(condition) +
           " AND file.spare = 0 AND directory.away = 0";
}

FaceMatch Library::matchOf(const Statement& row) {
    FaceMatch match;
    match.id = static_cast<FaceId>(row.number(Id));
    match.container = static_cast<ContainerId>(row.number(InContainer));
    match.type = static_cast<faces::Technology>(row.number(Technology));
    match.postScriptName = row.text(PostScriptName);
    match.folder = row.text(Folder);
    match.shownByDesktop = row.number(Shown) != 0;
    match.away = row.number(Away) != 0;
    match.fileName = row.text(FileName);
    match.stamp = {row.number(Size), row.number(Changed), row.number(Inode)};
    match.whole = row.text(Whole);
    match.style = {row.real(Weight), row.real(Width), static_cast<faces::Slant>(row.number(Slant))};
    match.version = row.text(Version);
    match.revision = static_cast<std::uint32_t>(row.number(Revision));
    match.foundry = row.text(Foundry);
    match.axes = unpackAxes(row.view(Axes));
    match.familyName = row.text(Family);
    match.styleName = row.text(StyleName);
    Container& holder = match.holder;
    holder.id = match.container;
    holder.name = row.text(ContainerName);
    holder.folder = match.folder;
    holder.file = row.text(ContainerFile);
    holder.faces = row.number(ContainerFaces);
    if (!row.isNull(ContainerFormat)) {
        holder.format = static_cast<FontFormat>(row.number(ContainerFormat));
    }
    holder.shownByDesktop = match.shownByDesktop;
    holder.away = match.away;
    return match;
}

void Library::addNames(FaceMatch& match) {
    const StatementUse names(names_);
    names_.bind(1, static_cast<std::int64_t>(match.id));
    while (names_.step()) {
        match.names.push_back({names_.text(0), names_.text(1), names_.text(2),
                               static_cast<faces::NameKind>(names_.number(3))});
    }
    const StatementUse fullNames(fullNames_);
    fullNames_.bind(1, static_cast<std::int64_t>(match.id));
    while (fullNames_.step()) {
        match.fullNames.push_back(fullNames_.text(0));
    }
}

FaceDetails Library::detailsOf(const Statement& row) {
    FaceDetails details{matchOf(row), {}};
    addNames(details.match);
    const FaceMatch& match = details.match;
    faces::Face& face = details.face;
    face.index = static_cast<std::uint32_t>(row.number(Number));
    face.technology = match.type;
    face.postScriptName = match.postScriptName;
    face.fullNames = match.fullNames;
    face.names = match.names;
    face.style = match.style;
    face.version = match.version;
    face.revision = match.revision;
    face.foundry = match.foundry;
    face.copyright = row.text(Copyright);
    face.licence = row.text(Licence);
    face.licenceLink = row.text(LicenceLink);
    if (!row.isNull(Embedding)) {
        face.embedding = static_cast<std::uint16_t>(row.number(Embedding));
    }
    face.classification = static_cast<faces::Classification>(row.number(Classification));
    if (const std::string_view panose = row.view(Panose); panose.size() == 10) {
        std::copy(panose.begin(), panose.end(), face.panose.emplace().begin());
    }
    face.monospaced = row.number(Monospaced) != 0;
    face.symbolic = row.number(Symbolic) != 0;
    face.colour = row.number(Colour) != 0;
    if (!row.isNull(Measures)) {
        face.measures = unpackMeasures(row.view(Measures));
    }
    face.glyphs = static_cast<std::uint32_t>(row.number(Glyphs));
    face.scripts = unpackTags(row.view(Scripts));
    face.languages = unpackTags(row.view(Languages));
    face.features = unpackTags(row.view(Features));
    face.axes = match.axes;
    face.position = unpackPosition(row.view(InstancePosition));
    face.coverage = unpackCoverage(row.view(Coverage));
    return details;
}

std::vector<FaceMatch> Library::find(Statement& statement, std::string_view wanted, Names names) {
    std::vector<FaceMatch> found;
    if (wanted.empty()) {
        return found;
    }
    const Reading together(database_);
    const StatementUse use(statement);
    statement.bind(1, wanted);
    while (statement.step()) {
        found.push_back(matchOf(statement));
    }
    // Here and not in the statement: for the few that there are, SQLite makes tables each time.
    const auto key = [](const FaceMatch& face) { return std::pair(face.container, face.id); };
    std::sort(found.begin(), found.end(),
              [&](const FaceMatch& a, const FaceMatch& b) { return key(a) < key(b); });
    found.erase(std::unique(found.begin(), found.end(),
                            [](const FaceMatch& a, const FaceMatch& b) { return a.id == b.id; }),
                found.end());
    if (names == Names::All) {
        for (FaceMatch& face : found) {
            addNames(face);
        }
    }
    return found;
}

std::vector<FaceMatch> Library::findByPostScriptKey(std::string_view key) {
    return find(byPostScriptKey_, key, Names::All);
}
std::vector<FaceMatch> Library::findByFullName(std::string_view key) {
    return find(byFullName_, key, Names::All);
}
std::vector<FaceMatch> Library::findByFamily(std::string_view key) {
    return find(byFamily_, key, Names::All);
}
std::vector<FaceMatch> Library::findByNormalisedFamily(std::string_view key) {
    return find(byNormalisedFamily_, key, Names::All);
}

std::vector<FaceMatch> Library::findByPostScriptName(std::string_view name) {
    return find(byPostScriptKey_, faces::postScriptKey(name), Names::First);
}

std::optional<FaceDetails> Library::face(FaceId id) {
    const Reading together(database_);
    Statement statement(database_, ("SELECT " + std::string(columns) + std::string(moreColumns) +
                                    " FROM face" + std::string(joined) + "WHERE face.id = ?")
                                       .c_str());
    statement.bind(1, static_cast<std::int64_t>(id));
    return statement.step() ? std::optional(detailsOf(statement)) : std::nullopt;
}

std::optional<FaceMatch> Library::match(FaceId id) {
    const StatementUse use(byId_);
    byId_.bind(1, static_cast<std::int64_t>(id));
    return byId_.step() ? std::optional(matchOf(byId_)) : std::nullopt;
}

std::vector<FaceDetails> Library::faces(ContainerId id) {
    const Reading together(database_);
    Statement statement(database_, ("SELECT " + std::string(columns) + std::string(moreColumns) +
                                    " FROM face" + std::string(joined) +
                                    "WHERE face.container = ? ORDER BY file.name, face.id")
                                       .c_str());
    statement.bind(1, static_cast<std::int64_t>(id));
    std::vector<FaceDetails> result;
    while (statement.step()) {
        result.push_back(detailsOf(statement));
    }
    return result;
}

std::vector<FaceMatch> Library::findAway(std::string_view postScriptKey, std::string_view family) {
    const Reading together(database_);
    Statement statement(
        database_,
        (faceColumns() +
         "WHERE (face.postscript_key = ?1 AND ?1 <> '' OR face.id IN (SELECT name.face FROM family "
         "JOIN name ON name.family = family.id WHERE family.key = ?2)) "
         "AND file.spare = 0 AND directory.away = 1 ORDER BY face.id")
            .c_str());
    statement.bind(1, postScriptKey).bind(2, family);
    std::vector<FaceMatch> found;
    while (statement.step()) {
        addNames(found.emplace_back(matchOf(statement)));
    }
    return found;
}

bool Library::hasAwayFolders() {
    Statement statement(database_, "SELECT EXISTS (SELECT 1 FROM directory WHERE away = 1)");
    return statement.step() && statement.number(0) != 0;
}

ComparableFaces Library::comparableFaces() {
    Statement statement(database_,
                        "SELECT face.id, face.measures, face.weight, face.slant, face.monospaced, "
                        "(SELECT value FROM shared WHERE id = face.scripts) FROM face "
                        "JOIN file ON file.id = face.file AND file.spare = 0 "
                        "JOIN directory ON directory.id = file.directory AND directory.away = 0 "
                        "WHERE face.measures IS NOT NULL");
    ComparableFaces result;
    faces::Face face;
    while (statement.step()) {
        face.measures = unpackMeasures(statement.view(1));
        face.style.weight = statement.real(2);
        face.style.slant = static_cast<faces::Slant>(statement.number(3));
        face.monospaced = statement.number(4) != 0;
        face.scripts = unpackTags(statement.view(5));
        if (const auto likeness = faces::likenessOf(face)) {
            result.ids.push_back(static_cast<FaceId>(statement.number(0)));
            result.likenesses.push_back(*likeness);
        }
    }
    return result;
}

Library::Generation Library::generation() {
    Statement statement(database_, "PRAGMA data_version"); // of what others change
    statement.step();
    return {statement.number(0), sqlite3_total_changes(database_.handle())};
}

} // namespace manager
