// SPDX-License-Identifier: MIT
// The statements that write files, containers, faces and names.
#include "manager/library/indexwriter.h"

#include "faces/namekey.h"
#include "manager/library/packing.h"
#include "manager/library/places.h"
#include "manager/library/spares.h"

#include <algorithm>
#include <utility>
#include <variant>
#include <vector>

namespace manager {

namespace {

// The size of no file: what was not read is not known by its stamp, and is read again.
constexpr std::int64_t sizeOfUnread = -1;

// What is remembered of names and values that are in the index.
constexpr std::size_t maximumFamilies = 100'000;
constexpr std::size_t maximumSharedBytes = std::size_t{32} << 20U;

// FNV-1a. Kept in the index.
std::int64_t hashOf(std::string_view bytes) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char byte : bytes) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3U;
    }
    return static_cast<std::int64_t>(hash);
}

void lower(std::string& text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
}

/// What a word may be part of: families, styles, full names and the PostScript name, folded, a line
/// each. What stands in another line is left out.
std::string namesOf(const faces::Face& face, std::string postScriptKey) {
    std::vector<std::string> lines;
    for (const std::string& name : face.fullNames) {
        lines.push_back(faces::nameKey(name));
    }
    lower(postScriptKey);
    lines.push_back(std::move(postScriptKey));
    for (const faces::Name& name : face.names) {
        lines.push_back(faces::nameKey(name.family));
        lower(lines.emplace_back(name.style));
    }
    std::string names;
    for (const std::string& line : lines) {
        if (names.find(line) == std::string::npos) {
            names += line + "\n";
        }
    }
    return names;
}

} // namespace

IndexWriter::IndexWriter(Database& database)
    : database_(database),
      addDirectory_(database_, "INSERT INTO directory (path, device, shown) VALUES (?, ?, ?)"),
      updateDirectory_(database_, "UPDATE directory SET device = ?, away = 0, shown = ? "
                                  "WHERE id = ?"),
      awayDirectory_(database_, "UPDATE directory SET away = 1 WHERE id = ?"),
      removeDirectory_(database_, "DELETE FROM directory WHERE id = ?"),
      containerOfFile_(database_, "SELECT container, EXISTS (SELECT 1 FROM file AS other WHERE "
                                  "other.container = file.container AND other.spare <> 0) "
                                  "FROM file WHERE id = ? AND container IS NOT NULL"),
      removeFile_(database_, "DELETE FROM file WHERE id = ?"),
      addFile_(database_, "INSERT INTO file (directory, name, size, changed, inode, digest, "
                          "container, problem) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"),
      findContainer_(database_, "SELECT id, format FROM container WHERE folder = ? AND file = ? "
                                "AND family_key = ? AND (format = ? OR format IS NULL) "
                                "ORDER BY format IS NULL, id"),
      addContainer_(database_, "INSERT INTO container (folder, file, family_key, format, name) "
                               "VALUES (?, ?, ?, ?, ?)"),
      claimContainer_(database_, "UPDATE container SET format = ? WHERE id = ?"),
      renameContainer_(database_, "UPDATE container SET name = ?1 WHERE id = ?2 AND name <> ?1 AND "
                                  "NOT EXISTS (SELECT 1 FROM file WHERE container = ?2 AND "
                                  "name < ?3)"),
      addFace_(database_,
               "INSERT INTO face (file, container, number, technology, weight, width, slant, "
               "classification, monospaced, symbolic, colour, glyphs, revision, embedding, "
               "postscript_name, postscript_key, version, foundry, copyright, licence, "
               "licence_link, scripts, languages, features, axes, coverage, position, panose, "
               "measures, family_key, names) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
               "?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
      count_(database_, "UPDATE container SET files = (SELECT count(*) FROM file "
                        "WHERE container = ?1), faces = (SELECT count(*) FROM file JOIN face "
                        "ON face.file = file.id WHERE file.container = ?1 AND file.spare = 0) "
                        "WHERE id = ?1"),
      findTwin_(database_, "SELECT 1 FROM face WHERE postscript_key = ?1 AND container = ?2 AND "
                           "file <> ?3 LIMIT 1"),
      findFamily_(database_, "SELECT id FROM family WHERE name = ?"),
      addFamily_(database_, "INSERT INTO family (name, key, normalised_key) VALUES (?, ?, ?)"),
      addName_(database_, "INSERT INTO name (face, position, family, style, language, kind) "
                          "VALUES (?, ?, ?, ?, ?, ?)"),
      addFullName_(database_, "INSERT INTO full_name (face, position, name, key) "
                              "VALUES (?, ?, ?, ?)"),
      findShared_(database_, "SELECT id FROM shared WHERE kind = ? AND hash = ? AND value = ?"),
      addShared_(database_, "INSERT INTO shared (kind, hash, value) VALUES (?, ?, ?)") {}

std::int64_t IndexWriter::addDirectory(const FoundFolder& folder, bool shown) {
    addDirectory_.bind(1, folder.path).bind(2, folder.device).bind(3, std::int64_t{shown}).run();
    return database_.lastRow();
}

void IndexWriter::updateDirectory(std::int64_t directory, const FoundFolder& folder, bool shown) {
    updateDirectory_.bind(1, folder.device).bind(2, std::int64_t{shown}).bind(3, directory).run();
}

void IndexWriter::remove(std::int64_t file) {
    {
        const StatementUse use(containerOfFile_);
        containerOfFile_.bind(1, file);
        if (containerOfFile_.step()) {
            const std::int64_t container = containerOfFile_.number(0);
            changed_.insert(container);
            if (containerOfFile_.number(1) != 0) {
                unsettled_.insert(container);
            }
        }
    }
    removeFile_.bind(1, file).run();
}

void IndexWriter::write(const FoundFolder& folder, std::int64_t directory, const FoundFile& file,
                        std::int64_t before, const FontFileOutcome& outcome) {
    if (before != 0) {
        remove(before);
    }
    addFile_.bind(1, directory).bind(2, file.name).bind(3, file.stamp.size);
    addFile_.bind(4, file.stamp.changed).bind(5, file.stamp.inode);
    if (const auto* problem = std::get_if<FontFileProblem>(&outcome)) {
        if (!problem->lasting) {
            addFile_.bind(3, sizeOfUnread);
        }
        addFile_.bind(6, std::int64_t{0}).bindNull(7).bind(8, problem->text).run();
        return;
    }
    const auto& [contents, digest] = std::get<ReadFont>(outcome);
    const std::int64_t container = containerOf(folder.path, file.name, contents);
    changed_.insert(container);
    addFile_.bind(6, static_cast<std::int64_t>(digest)).bind(7, container).bindNull(8).run();
    const std::int64_t id = database_.lastRow();
    for (const faces::Face& face : contents.faces) {
        writeFace(id, container, face);
    }
}

std::int64_t IndexWriter::containerOf(const std::string& folder, const std::string& name,
                                      const faces::FontFileContents& contents) {
    const std::string file = contents.collection ? name : std::string();
    const faces::Face& first = contents.faces.front();
    const std::string& family = first.names.front().family;
    const std::string key = contents.collection ? std::string() : faces::nameKey(family);
    const FontFormat format =
        contents.collection ? FontFormat::Collection : formatOf(first.technology);
    const auto number = static_cast<std::int64_t>(format);
    const StatementUse use(findContainer_);
    findContainer_.bind(1, folder).bind(2, file).bind(3, key).bind(4, number);
    if (findContainer_.step()) {
        const std::int64_t container = findContainer_.number(0);
        if (findContainer_.isNull(1)) {
            findContainer_.reset();
            claimContainer_.bind(1, number).bind(2, container).run();
        }
        if (!contents.collection) {
            renameContainer_.bind(1, family).bind(2, container).bind(3, name).run();
        }
        return container;
    }
    addContainer_.bind(1, folder).bind(2, file).bind(3, key).bind(4, number);
    addContainer_.bind(5, contents.collection ? file : family).run();
    return database_.lastRow();
}

void IndexWriter::writeFace(std::int64_t file, std::int64_t container, const faces::Face& face) {
    const std::string psKey = faces::postScriptKey(face.postScriptName);
    const std::string position = packPosition(face.position);
    const std::string measures = face.measures ? packMeasures(*face.measures) : std::string();
    addFace_.bind(1, file).bind(2, container).bind(3, std::int64_t{face.index});
    addFace_.bind(4, static_cast<std::int64_t>(face.technology));
    addFace_.bind(5, face.style.weight).bind(6, face.style.width);
    addFace_.bind(7, static_cast<std::int64_t>(face.style.slant));
    addFace_.bind(8, static_cast<std::int64_t>(face.classification));
    addFace_.bind(9, std::int64_t{face.monospaced}).bind(10, std::int64_t{face.symbolic});
    addFace_.bind(11, std::int64_t{face.colour}).bind(12, std::int64_t{face.glyphs});
    addFace_.bind(13, std::int64_t{face.revision}).bindNull(14);
    if (face.embedding) {
        addFace_.bind(14, std::int64_t{*face.embedding});
    }
    addFace_.bind(15, face.postScriptName).bind(16, psKey).bind(17, face.version);
    bindShared(18, SharedKind::Foundry, face.foundry);
    bindShared(19, SharedKind::Copyright, face.copyright);
    bindShared(20, SharedKind::Licence, face.licence);
    bindShared(21, SharedKind::LicenceLink, face.licenceLink);
    bindShared(22, SharedKind::Scripts, packTags(face.scripts));
    bindShared(23, SharedKind::Languages, packTags(face.languages));
    bindShared(24, SharedKind::Features, packTags(face.features));
    bindShared(25, SharedKind::Axes, packAxes(face.axes));
    bindShared(26, SharedKind::Coverage, packCoverage(face.coverage));
    addFace_.bindNull(27).bindNull(28).bindNull(29);
    if (!position.empty()) {
        addFace_.bind(27, position);
    }
    if (face.panose) {
        addFace_.bindBlob(
            28, {reinterpret_cast<const char*>(face.panose->data()), face.panose->size()});
    }
    if (face.measures) {
        addFace_.bindBlob(29, measures);
    }
    const std::string familyKey = faces::nameKey(face.names.front().family);
    const std::string names = namesOf(face, psKey);
    addFace_.bind(30, familyKey).bind(31, names).run();
    writeNames(database_.lastRow(), face);
    if (psKey.empty()) {
        return;
    }
    const StatementUse use(findTwin_);
    findTwin_.bind(1, psKey).bind(2, container).bind(3, file);
    if (findTwin_.step()) {
        unsettled_.insert(container);
    }
}

void IndexWriter::writeNames(std::int64_t id, const faces::Face& face) {
    for (std::size_t i = 0; i < face.names.size(); ++i) {
        const faces::Name& name = face.names[i];
        addName_.bind(1, id).bind(2, static_cast<std::int64_t>(i)).bind(3, familyId(name.family));
        addName_.bind(4, name.style).bind(5, name.language);
        addName_.bind(6, static_cast<std::int64_t>(name.kind)).run();
    }
    for (std::size_t i = 0; i < face.fullNames.size(); ++i) {
        const std::string key = faces::nameKey(face.fullNames[i]);
        addFullName_.bind(1, id).bind(2, static_cast<std::int64_t>(i));
        addFullName_.bind(3, face.fullNames[i]).bind(4, key).run();
    }
}

void IndexWriter::bindShared(int parameter, SharedKind kind, const std::string& value) {
    if (value.empty()) {
        addFace_.bindNull(parameter);
    } else {
        addFace_.bind(parameter, sharedId(kind, value));
    }
}

std::int64_t IndexWriter::sharedId(SharedKind kind, const std::string& value) {
    const std::string key = static_cast<char>(kind) + value;
    if (const auto known = shared_.find(key); known != shared_.end()) {
        return known->second;
    }
    const auto number = static_cast<std::int64_t>(kind);
    const std::int64_t hash = hashOf(value);
    std::int64_t id = 0;
    const StatementUse use(findShared_);
    findShared_.bind(1, number).bind(2, hash).bindBlob(3, value);
    if (findShared_.step()) {
        id = findShared_.number(0);
    } else {
        addShared_.bind(1, number).bind(2, hash).bindBlob(3, value).run();
        id = database_.lastRow();
    }
    sharedBytes_ += key.size();
    if (sharedBytes_ > maximumSharedBytes) {
        shared_.clear();
        sharedBytes_ = key.size();
    }
    shared_.emplace(key, id);
    return id;
}

std::int64_t IndexWriter::familyId(const std::string& name) {
    if (const auto known = families_.find(name); known != families_.end()) {
        return known->second;
    }
    std::int64_t id = 0;
    const StatementUse use(findFamily_);
    findFamily_.bind(1, name);
    if (findFamily_.step()) {
        id = findFamily_.number(0);
    } else {
        const std::string key = faces::nameKey(name);
        const std::string normalised = faces::normalisedFamilyKey(name);
        addFamily_.bind(1, name).bind(2, key).bind(3, normalised).run();
        id = database_.lastRow();
    }
    if (families_.size() == maximumFamilies) {
        families_.clear();
    }
    families_.emplace(name, id);
    return id;
}

void IndexWriter::settle() {
    for (const std::int64_t container : unsettled_) {
        markSpares(database_, container);
    }
    unsettled_.clear();
    for (const std::int64_t container : changed_) {
        count_.bind(1, container).run();
    }
    changed_.clear();
}

void IndexWriter::sweep() {
    database_.run("DELETE FROM family WHERE NOT EXISTS "
                  "(SELECT 1 FROM name WHERE name.family = family.id)");
    database_.run("DELETE FROM shared WHERE id NOT IN "
                  "(SELECT foundry FROM face WHERE foundry IS NOT NULL "
                  "UNION SELECT copyright FROM face WHERE copyright IS NOT NULL "
                  "UNION SELECT licence FROM face WHERE licence IS NOT NULL "
                  "UNION SELECT licence_link FROM face WHERE licence_link IS NOT NULL "
                  "UNION SELECT scripts FROM face WHERE scripts IS NOT NULL "
                  "UNION SELECT languages FROM face WHERE languages IS NOT NULL "
                  "UNION SELECT features FROM face WHERE features IS NOT NULL "
                  "UNION SELECT axes FROM face WHERE axes IS NOT NULL "
                  "UNION SELECT coverage FROM face WHERE coverage IS NOT NULL)");
    families_.clear();
    shared_.clear();
    sharedBytes_ = 0;
}

} // namespace manager
