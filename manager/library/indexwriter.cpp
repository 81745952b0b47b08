// SPDX-License-Identifier: MIT
// The statements that write files, containers, faces and names.
#include "manager/library/indexwriter.h"
#include "faces/namekey.h"

#include "manager/library/places.h"
#include "manager/library/stylewords.h"

#include <variant>

namespace manager {

namespace {

// The size of no file: what was not read is not known by its stamp, and is read again.
constexpr std::int64_t sizeOfUnread = -1;

} // namespace

IndexWriter::IndexWriter(Database& database)
    : database_(database), removeFile_(database_, "DELETE FROM file WHERE path = ?"),
      addFile_(database_, "INSERT INTO file (path, size, changed, inode, container, problem) "
                          "VALUES (?, ?, ?, ?, ?, ?)"),
      findContainer_(database_, "SELECT id FROM container "
                                "WHERE folder = ? AND file = ? AND family_key = ?"),
      addContainer_(database_, "INSERT INTO container (folder, file, family_key, name) "
                               "VALUES (?, ?, ?, ?)"),
      renameContainer_(database_, "UPDATE container SET name = ?1 WHERE id = ?2 AND NOT EXISTS "
                                  "(SELECT 1 FROM file WHERE container = ?2 AND path < ?3)"),
      addFace_(database_, "INSERT INTO face (file, container, number, type, postscript_name, "
                          "family, style) VALUES (?, ?, ?, ?, ?, ?, ?)"),
      addName_(database_, "INSERT OR IGNORE INTO name (family_key, style_key, face) "
                          "VALUES (?, ?, ?)") {}

void IndexWriter::write(const FoundFile& file, const FontFileOutcome& outcome) {
    remove(file.path);
    addFile_.bind(1, file.path).bind(2, file.stamp.size);
    addFile_.bind(3, file.stamp.changed).bind(4, file.stamp.inode);
    if (const auto* problem = std::get_if<FontFileProblem>(&outcome)) {
        if (!problem->lasting) {
            addFile_.bind(2, sizeOfUnread);
        }
        addFile_.bindNull(5).bind(6, problem->text).run();
        return;
    }
    const auto& contents = std::get<ReadFont>(outcome).contents;
    const std::int64_t container = containerOf(file.path, contents);
    addFile_.bind(5, container).bindNull(6).run();
    const std::int64_t id = database_.lastRow();
    for (const faces::Face& face : contents.faces) {
        writeFace(id, container, face);
    }
}

std::int64_t IndexWriter::containerOf(const std::string& path,
                                      const faces::FontFileContents& contents) {
    const std::string folder = folderOf(path);
    const std::string file = contents.collection ? nameOf(path) : std::string();
    const std::string& family = contents.faces.front().names.front().family;
    const std::string key = contents.collection ? std::string() : faces::nameKey(family);
    const StatementUse use(findContainer_);
    findContainer_.bind(1, folder).bind(2, file).bind(3, key);
    if (findContainer_.step()) {
        const std::int64_t container = findContainer_.number(0);
        if (!contents.collection) {
            renameContainer_.bind(1, family).bind(2, container).bind(3, path).run();
        }
        return container;
    }
    addContainer_.bind(1, folder).bind(2, file).bind(3, key);
    addContainer_.bind(4, contents.collection ? file : family).run();
    return database_.lastRow();
}

void IndexWriter::writeFace(std::int64_t file, std::int64_t container, const faces::Face& face) {
    addFace_.bind(1, file).bind(2, container).bind(3, std::int64_t{face.index});
    addFace_.bind(4, static_cast<std::int64_t>(face.technology)).bind(5, face.postScriptName);
    addFace_.bind(6, face.names.front().family).bind(7, face.names.front().style).run();
    const std::int64_t id = database_.lastRow();
    for (const faces::Name& name : face.names) {
        const std::string familyKey = faces::nameKey(name.family);
        const std::string styleKey = faces::nameKey(name.style);
        for (const std::string& style : {styleKey, styleForm(styleKey)}) {
            addName_.bind(1, familyKey).bind(2, style).bind(3, id).run();
        }
    }
}

} // namespace manager
