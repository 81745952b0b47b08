// SPDX-License-Identifier: MIT
// The incremental scan.
#include "manager/library/update.h"

#include "manager/library/places.h"
#include "manager/library/stylewords.h"

#include <map>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace manager {

namespace {

struct KnownFile {
    FileStamp stamp;
    std::string problem; ///< empty: it holds fonts
    bool found = false;
};

// The size of no file: what was not read is not known by its stamp, and is read again.
constexpr std::int64_t sizeOfUnread = -1;

/// Writes results to the index.
class Writer {
public:
    explicit Writer(Library& library)
        : database_(library.database()), removeFile_(database_, "DELETE FROM file WHERE path = ?"),
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

    void remove(std::string_view path) { removeFile_.bind(1, path).run(); }

    void write(const FoundFile& file, const FontFileOutcome& outcome) {
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
        const auto& contents = std::get<FontFileContents>(outcome);
        const std::int64_t container = containerOf(file.path, contents);
        addFile_.bind(5, container).bindNull(6).run();
        const std::int64_t id = database_.lastRow();
        for (const FaceRecord& face : contents.faces) {
            writeFace(id, container, face);
        }
    }

private:
    std::int64_t containerOf(const std::string& path, const FontFileContents& contents) {
        const std::string folder = folderOf(path);
        const std::string file = contents.collection ? nameOf(path) : std::string();
        const std::string& family = contents.faces.front().names.front().family;
        const std::string key = contents.collection ? std::string() : nameKey(family);
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

    void writeFace(std::int64_t file, std::int64_t container, const FaceRecord& face) {
        addFace_.bind(1, file).bind(2, container).bind(3, std::int64_t{face.index});
        addFace_.bind(4, static_cast<std::int64_t>(face.type)).bind(5, face.postScriptName);
        addFace_.bind(6, face.names.front().family).bind(7, face.names.front().style).run();
        const std::int64_t id = database_.lastRow();
        for (const FaceName& name : face.names) {
            const std::string familyKey = nameKey(name.family);
            const std::string styleKey = nameKey(name.style);
            for (const std::string& style : {styleKey, styleForm(styleKey)}) {
                addName_.bind(1, familyKey).bind(2, style).bind(3, id).run();
            }
        }
    }

    Database& database_;
    Statement removeFile_;
    Statement addFile_;
    Statement findContainer_;
    Statement addContainer_;
    Statement renameContainer_; // after its first file by path, in whatever order they are read
    Statement addFace_;
    Statement addName_;
};

std::unordered_map<std::string, KnownFile> knownFiles(Database& database) {
    std::unordered_map<std::string, KnownFile> known;
    Statement statement(database, "SELECT path, size, changed, inode, problem FROM file");
    while (statement.step()) {
        known.emplace(statement.text(0),
                      KnownFile{{statement.number(1), statement.number(2), statement.number(3)},
                                statement.text(4)});
    }
    return known;
}

void writeDirectories(Database& database, const std::vector<std::string>& directories) {
    Statement read(database, "SELECT path FROM directory");
    std::set<std::string> gone;
    while (read.step()) {
        gone.insert(read.text(0));
    }
    read.reset();
    Statement add(database, "INSERT OR IGNORE INTO directory (path) VALUES (?)");
    for (const std::string& path : directories) {
        if (gone.erase(path) == 0) {
            add.bind(1, path).run();
        }
    }
    Statement remove(database, "DELETE FROM directory WHERE path = ?");
    for (const std::string& path : gone) {
        remove.bind(1, path).run();
    }
}

/// Replaces the walk's problems, and sorts them into new and known ones.
void writeWalkProblems(Database& database, const std::vector<std::string>& problems,
                       UpdateReport& report) {
    std::set<std::string> known;
    Statement read(database, "SELECT problem FROM walk_problem");
    while (read.step()) {
        known.insert(read.text(0));
    }
    read.reset();
    for (const std::string& problem : problems) {
        (known.contains(problem) ? report.knownProblems : report.problems).push_back(problem);
    }
    if (known == std::set<std::string>(problems.begin(), problems.end())) {
        return;
    }
    database.run("DELETE FROM walk_problem");
    Statement add(database, "INSERT OR IGNORE INTO walk_problem (problem) VALUES (?)");
    for (const std::string& problem : problems) {
        add.bind(1, problem).run();
    }
}

// A portion large enough to make commits cheap, small enough not to keep readers of the index from
// seeing progress, and to lose little when the process is killed.
constexpr std::size_t portionSize = 500;

} // namespace

UpdateReport updateLibrary(Library& library, std::span<const std::string> folders,
                           const FontReaderLimits& limits, const UpdateProgress& progress,
                           const FontFileFunction& read) {
    Database& database = library.database();
    const FoundFiles found = findFontFiles(folders, library.places().fonts());
    UpdateReport report;
    report.unreadFolders = found.unreadRoots;

    std::vector<std::string> paths;
    std::vector<const FoundFile*> files;
    auto known = knownFiles(database);
    {
        for (const FoundFile& file : found.files) {
            const auto position = known.find(file.path);
            if (position != known.end()) {
                position->second.found = true;
                if (position->second.stamp == file.stamp) {
                    ++report.unchanged;
                    if (!position->second.problem.empty()) {
                        report.knownProblems.push_back(position->second.problem);
                    }
                    continue;
                }
            }
            paths.push_back(file.path);
            files.push_back(&file);
        }
        Transaction transaction(database);
        Writer writer(library);
        for (const auto& [path, file] : known) {
            if (!file.found) {
                writer.remove(path);
                ++report.removed;
            }
        }
        writeDirectories(database, found.directories);
        writeWalkProblems(database, found.problems, report);
        transaction.commit();
    }

    // Fonts are read side by side and come in any order, but are written in the order of their
    // paths: the same folders get the same container numbers, whatever machine reads them.
    std::map<std::size_t, FontFileOutcome> early;
    std::vector<std::pair<std::size_t, FontFileOutcome>> portion;
    std::size_t next = 0;
    Writer writer(library);
    const auto write = [&](const FoundFile& file, const FontFileOutcome& outcome) {
        const auto* problem = std::get_if<FontFileProblem>(&outcome);
        const auto before = known.find(file.path);
        if (problem != nullptr && !problem->lasting && before != known.end() &&
            before->second.problem == problem->text) {
            report.knownProblems.push_back(problem->text);
            ++report.unchanged;
            return;
        }
        writer.write(file, outcome);
        ++report.read;
        if (problem != nullptr) {
            report.problems.push_back(problem->text);
        }
    };
    enum class Portion { Another, Last };
    const auto writePortion = [&](Portion which) {
        Transaction transaction(database);
        for (const auto& [position, outcome] : portion) {
            write(*files[position], outcome);
        }
        if (which == Portion::Last) {
            database.run("UPDATE state SET scan_owed = 0");
        }
        transaction.commit();
        if (progress && !portion.empty()) {
            progress(next, paths.size());
        }
        portion.clear();
    };
    const auto receive = [&](std::size_t position, FontFileOutcome outcome) {
        early.emplace(position, std::move(outcome));
        while (!early.empty() && early.begin()->first == next) {
            portion.emplace_back(next++, std::move(early.begin()->second));
            early.erase(early.begin());
            if (portion.size() == portionSize) {
                writePortion(Portion::Another);
            }
        }
    };
    readFontFiles(paths, limits, receive, read);
    if (!portion.empty() || library.isScanOwed()) {
        writePortion(Portion::Last);
    }
    return report;
}

} // namespace manager
