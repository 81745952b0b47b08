// SPDX-License-Identifier: MIT
// The incremental scan.
#include "manager/library/update.h"

#include "manager/library/indexwriter.h"
#include "manager/library/places.h"

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

/// One scan, step by step.
class Update {
public:
    Update(Library& library, const UpdateProgress& progress)
        : library_(library), progress_(progress), writer_(library.database()) {}

    UpdateReport run(std::span<const std::string> folders, const FontReaderLimits& limits,
                     const FontFileFunction& read) {
        const FoundFiles found = findFontFiles(folders, library_.places().fonts());
        report_.unreadFolders = found.unreadRoots;
        known_ = knownFiles(library_.database());
        for (const FoundFile& file : found.files) {
            if (!isKnown(file)) {
                paths_.push_back(file.path);
                files_.push_back(&file);
            }
        }
        writeWalk(found);
        readFontFiles(
            paths_, limits,
            [this](std::size_t position, FontFileOutcome outcome) {
                take(position, std::move(outcome));
            },
            read);
        if (!portion_.empty() || library_.isScanOwed()) {
            writePortion(Portion::Last);
        }
        return std::move(report_);
    }

private:
    enum class Portion { Another, Last };

    // Whether the file is as it was; it then counts as unchanged.
    bool isKnown(const FoundFile& file) {
        const auto position = known_.find(file.path);
        if (position == known_.end()) {
            return false;
        }
        KnownFile& known = position->second;
        known.found = true;
        if (known.stamp != file.stamp) {
            return false;
        }
        ++report_.unchanged;
        if (!known.problem.empty()) {
            report_.knownProblems.push_back(known.problem);
        }
        return true;
    }

    // Removes what is gone, and records the folders that the walk visited.
    void writeWalk(const FoundFiles& found) {
        Transaction transaction(library_.database());
        for (const auto& [path, file] : known_) {
            if (!file.found) {
                writer_.remove(path);
                ++report_.removed;
            }
        }
        writeDirectories(library_.database(), found.directories);
        writeWalkProblems(library_.database(), found.problems, report_);
        transaction.commit();
    }

    // Fonts are read side by side and come in any order, but are written in the order of their
    // paths: the same folders get the same container numbers, whatever machine reads them.
    void take(std::size_t position, FontFileOutcome outcome) {
        early_.emplace(position, std::move(outcome));
        while (!early_.empty() && early_.begin()->first == next_) {
            portion_.emplace_back(next_++, std::move(early_.begin()->second));
            early_.erase(early_.begin());
            if (portion_.size() == portionSize) {
                writePortion(Portion::Another);
            }
        }
    }

    void writePortion(Portion which) {
        Transaction transaction(library_.database());
        for (const auto& [position, outcome] : portion_) {
            write(*files_[position], outcome);
        }
        if (which == Portion::Last) {
            library_.database().run("UPDATE state SET scan_owed = 0");
        }
        transaction.commit();
        if (progress_ && !portion_.empty()) {
            progress_(next_, paths_.size());
        }
        portion_.clear();
    }

    void write(const FoundFile& file, const FontFileOutcome& outcome) {
        const auto* problem = std::get_if<FontFileProblem>(&outcome);
        const auto before = known_.find(file.path);
        if (problem != nullptr && !problem->lasting && before != known_.end() &&
            before->second.problem == problem->text) {
            report_.knownProblems.push_back(problem->text);
            ++report_.unchanged;
            return;
        }
        writer_.write(file, outcome);
        ++report_.read;
        if (problem != nullptr) {
            report_.problems.push_back(problem->text);
        }
    }

    Library& library_;
    const UpdateProgress& progress_;
    IndexWriter writer_;
    std::unordered_map<std::string, KnownFile> known_;
    UpdateReport report_;
    std::vector<std::string> paths_; ///< of what is to be read
    std::vector<const FoundFile*> files_;
    std::map<std::size_t, FontFileOutcome> early_; ///< read before those that stand before them
    std::vector<std::pair<std::size_t, FontFileOutcome>> portion_;
    std::size_t next_ = 0; ///< the first that is not in a portion yet
};

} // namespace

UpdateReport updateLibrary(Library& library, std::span<const std::string> folders,
                           const FontReaderLimits& limits, const UpdateProgress& progress,
                           const FontFileFunction& read) {
    return Update(library, progress).run(folders, limits, read);
}

} // namespace manager
