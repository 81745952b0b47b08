// SPDX-License-Identifier: MIT
// The incremental scan.
#include "manager/library/update.h"

#include "manager/library/cancel.h"
#include "manager/library/desktopfolders.h"
#include "manager/library/indexwriter.h"
#include "manager/library/knownfolders.h"
#include "manager/library/places.h"
#include "manager/library/samefile.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <map>
#include <set>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace manager {

namespace {

// Long enough to make commits cheap, which write each changed page once; short enough not to keep
// readers of the index from seeing progress, and to lose little when the process is killed.
constexpr std::chrono::milliseconds portionTime{700};
constexpr std::size_t portionSize = 5000;

// Names and values that no face has any more stay until so many files in a hundred were replaced:
// to find them takes reading the whole index.
constexpr std::size_t sweepPercentage = 3;

/// One scan, step by step.
class Update {
public:
    Update(Library& library, const UpdateProgress& progress)
        : library_(library), progress_(progress), writer_(library.database()) {}

    UpdateReport run(std::span<const std::string> folders, const FontReaderLimits& limits,
                     const FontFileFunction& read) {
        // The walk waits for the kernel meanwhile.
        auto known = std::async([this] { return knownFolders(library_.database()); });
        found_ = findFontFiles(folders, library_.places().fonts());
        known_ = known.get();
        told_ = readWalkProblems(library_.database());
        readsAll_ = library_.isReadingOwed();
        report_.resumed = library_.isScanUnfinished();
        for (const auto& [path, folder] : known_) {
            knownFileCount_ += folder.files.size();
            for (const KnownFile& file : folder.files) {
                if (readsAll_ && !file.problem.empty()) {
                    told_.insert(file.problem);
                }
            }
        }
        findShownFolders();
        findAwayFolders(folders);
        report_.unreadFolders = found_.unreadRoots;
        for (std::size_t i = 0; i < found_.folders.size(); ++i) {
            compare(i);
        }
        writeWalk();
        lastPortion_ = Clock::now();
        readFiles(limits, read);
        if (report_.changed() || library_.isScanOwed()) {
            digestAlike(library_.database(), [this](std::size_t done, std::size_t total) {
                if (progress_) {
                    progress_(UpdateStep::Compare, done, total);
                }
            });
        }
        writePortion(Portion::Last);
        library_.vouch();
        return std::move(report_);
    }

private:
    using Clock = std::chrono::steady_clock;
    enum class Portion { Another, Last };

    /// A file to be read.
    struct Task {
        std::size_t folder; ///< its place in what was found, as the file's in the folder
        std::size_t file;
        std::int64_t before = 0; ///< its row in the index
        std::string problem;     ///< that it had
    };

    void findShownFolders() {
        const std::vector<std::string> desktop = desktopFolders();
        for (const FoundFolder& folder : found_.folders) {
            if (std::any_of(desktop.begin(), desktop.end(),
                            [&](const std::string& by) { return liesUnder(folder.path, by); })) {
                shown_.insert(folder.path);
                if (!shown_.contains(folderOf(folder.path))) {
                    found_.problems.push_back(folder.path +
                                              ": the desktop shows the fonts in it anyway");
                }
            }
        }
    }

    void findAwayFolders(std::span<const std::string> roots) {
        std::erase_if(found_.folders, [&](const FoundFolder& folder) {
            if (!folder.isEmpty || !lacksItsDisk(known_, folder)) {
                return false;
            }
            found_.unread.push_back(folder.path);
            if (std::find(roots.begin(), roots.end(), folder.path) != roots.end()) {
                found_.unreadRoots.push_back(folder.path);
            }
            found_.problems.push_back(folder.path + ": empty, and not the disk that was there");
            return true;
        });
    }

    [[nodiscard]] bool isAway(const std::string& path) const {
        return std::any_of(found_.unread.begin(), found_.unread.end(),
                           [&](const std::string& gone) { return liesUnder(path, gone); });
    }

    // Files that are as they were count as unchanged, others are to be read.
    void compare(std::size_t position) {
        const FoundFolder& folder = found_.folders[position];
        const auto entry = known_.find(folder.path);
        const bool isKnown = entry != known_.end();
        if (isKnown) {
            entry->second.met = true;
        }
        auto known = isKnown ? entry->second.files.begin() : std::vector<KnownFile>::iterator();
        const auto end = isKnown ? entry->second.files.end() : known;
        for (std::size_t i = 0; i < folder.files.size(); ++i) {
            const FoundFile& file = folder.files[i];
            while (known != end && known->name < file.name) {
                ++known;
            }
            if (known == end || known->name != file.name) {
                plan({position, i, 0, {}});
                continue;
            }
            known->found = true;
            if (known->stamp != file.stamp || readsAll_) {
                plan({position, i, known->id, known->problem});
                continue;
            }
            ++report_.unchanged;
            if (!known->problem.empty()) {
                report_.knownProblems.push_back(known->problem);
            }
        }
    }

    void plan(Task task) {
        const FoundFolder& folder = found_.folders[task.folder];
        paths_.push_back(joinPath(folder.path, folder.files[task.file].name));
        tasks_.push_back(std::move(task));
    }

    // Removes what is gone, marks what is away, and records the folders that the walk visited.
    void writeWalk() {
        Transaction transaction(library_.database());
        for (const auto& [path, folder] : known_) {
            const bool away = !folder.met && isAway(path);
            for (const KnownFile& file : folder.files) {
                if (away) {
                    ++report_.away;
                } else if (!file.found && !isAway(joinPath(path, file.name))) {
                    writer_.remove(file.id);
                    ++report_.removed;
                }
            }
            if (away && !folder.away) {
                writer_.markAway(folder.id);
                report_.moved = true;
            } else if (!folder.met && !away) {
                writer_.removeDirectory(folder.id);
            }
        }
        for (const FoundFolder& folder : found_.folders) {
            const auto known = known_.find(folder.path);
            const bool shown = shown_.contains(folder.path);
            directories_.push_back(known == known_.end() ? 0 : known->second.id);
            if (known == known_.end()) {
                directories_.back() = writer_.addDirectory(folder, shown);
            } else if (known->second.away || known->second.shown != shown ||
                       known->second.device != folder.device) {
                writer_.updateDirectory(known->second.id, folder, shown);
                report_.moved = report_.moved || known->second.away || known->second.shown != shown;
            }
        }
        writeWalkProblems();
        writer_.settle();
        if (report_.removed != 0 || report_.moved) {
            noteChange();
        }
        transaction.commit();
    }

    // In the transaction of the change, so that whoever scans next knows if this one is killed.
    void noteChange() {
        if (!isNoted_) {
            library_.database().run("UPDATE state SET scan_owed = 3 WHERE scan_owed = 0");
            isNoted_ = true;
        }
    }

    // Replaces the walk's problems, and sorts them into new and known ones.
    void writeWalkProblems() {
        for (const std::string& problem : found_.problems) {
            tell(problem);
        }
        if (told_ == std::set<std::string>(found_.problems.begin(), found_.problems.end())) {
            return;
        }
        library_.database().run("DELETE FROM walk_problem");
        Statement add(library_.database(),
                      "INSERT OR IGNORE INTO walk_problem (problem) VALUES (?)");
        for (const std::string& problem : found_.problems) {
            add.bind(1, problem).run();
        }
    }

    void tell(const std::string& problem) {
        (told_.contains(problem) ? report_.knownProblems : report_.problems).push_back(problem);
    }

    void readFiles(const FontReaderLimits& limits, const FontFileFunction& read) {
        try {
            readFontFiles(
                paths_, limits,
                [this](std::size_t position, FontFileOutcome outcome) {
                    take(position, std::move(outcome));
                },
                read);
            writePortion(Portion::Another);
        } catch (const Cancelled&) {
            writePortion(Portion::Another);
            throw ScanCancelled(next_, paths_.size());
        }
    }

    // Fonts are read side by side and come in any order, but are written in the order of their
    // paths: the same folders get the same container numbers, whatever machine reads them.
    void take(std::size_t position, FontFileOutcome outcome) {
        early_.emplace(position, std::move(outcome));
        while (!early_.empty() && early_.begin()->first == next_) {
            portion_.emplace_back(next_++, std::move(early_.begin()->second));
            early_.erase(early_.begin());
        }
        if (portion_.size() >= portionSize || Clock::now() - lastPortion_ > portionTime) {
            writePortion(Portion::Another);
            lastPortion_ = Clock::now();
        }
    }

    void writePortion(Portion which) {
        const bool sweep = which == Portion::Last && isSweepDue();
        const bool owed =
            which == Portion::Last && (library_.isScanOwed() || library_.isScanUnfinished());
        if (portion_.empty() && !sweep && !owed) {
            return;
        }
        Transaction transaction(library_.database());
        for (const auto& [position, outcome] : portion_) {
            write(tasks_[position], outcome);
        }
        writer_.settle();
        if (sweep) {
            writer_.sweep();
        }
        if (which == Portion::Last) {
            library_.database().run("UPDATE state SET scan_owed = 0");
        }
        transaction.commit();
        if (progress_ && !portion_.empty()) {
            progress_(UpdateStep::Read, next_, paths_.size());
        }
        portion_.clear();
    }

    [[nodiscard]] bool isSweepDue() const {
        const std::size_t replaced = report_.removed + replaced_;
        return replaced != 0 && replaced * 100 >= knownFileCount_ * sweepPercentage;
    }

    void write(const Task& task, const FontFileOutcome& outcome) {
        const auto* problem = std::get_if<FontFileProblem>(&outcome);
        if (problem != nullptr && !problem->lasting && task.before != 0 &&
            task.problem == problem->text) {
            report_.knownProblems.push_back(problem->text);
            ++report_.unchanged;
            return;
        }
        noteChange();
        const FoundFolder& folder = found_.folders[task.folder];
        writer_.write(folder, directories_[task.folder], folder.files[task.file], task.before,
                      outcome);
        ++report_.read;
        replaced_ += task.before != 0 ? 1 : 0;
        if (problem != nullptr) {
            tell(problem->text);
        }
    }

    Library& library_;
    const UpdateProgress& progress_;
    IndexWriter writer_;
    FoundFiles found_;
    KnownFolders known_;
    std::set<std::string> told_; ///< problems of the last walk; of an index before, all that it had
    std::size_t knownFileCount_ = 0;
    bool isNoted_ = false;                  ///< that the index is being changed
    bool readsAll_ = false;                 ///< also what has not changed
    std::unordered_set<std::string> shown_; ///< by the desktop
    std::vector<std::int64_t> directories_; ///< rows of the folders that were found
    UpdateReport report_;
    std::vector<std::string> paths_;               ///< of what is to be read
    std::vector<Task> tasks_;                      ///< the same
    std::map<std::size_t, FontFileOutcome> early_; ///< read before those that stand before them
    std::vector<std::pair<std::size_t, FontFileOutcome>> portion_;
    Clock::time_point lastPortion_;
    std::size_t next_ = 0; ///< the first that is not in a portion yet
    std::size_t replaced_ = 0;
};

} // namespace

UpdateReport updateLibrary(Library& library, std::span<const std::string> folders,
                           const FontReaderLimits& limits, const UpdateProgress& progress,
                           const FontFileFunction& read) {
    return Update(library, progress).run(folders, limits, read);
}

} // namespace manager
