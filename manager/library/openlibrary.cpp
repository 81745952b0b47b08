// SPDX-License-Identifier: MIT
// Opening the index, and its repair.
#include "manager/library/error.h"
#include "manager/library/indexfile.h"
#include "manager/library/library.h"
#include "manager/library/salvage.h"

#include "faces/namekey.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <set>
#include <tuple>
#include <unistd.h>

namespace manager {

namespace {

constexpr std::array parts = {"", "-wal", "-shm"};
constexpr std::size_t keptDamaged = 3; // with the one that is moved aside next

void keepKnown(ContainerKeeper& keeper, const KnownContainers& known) {
    for (const auto& [id, name, folder, file, format] :
         known ? known() : std::vector<KnownContainer>()) {
        const auto number = static_cast<std::int64_t>(id);
        keeper.reserve(number);
        if (!folder.empty()) {
            keeper.keep({number, folder, file, file.empty() ? faces::nameKey(name) : std::string(),
                         name, format});
        }
    }
}

/// Opens and mends the index of one place.
class Opening {
public:
    Opening(const Places& places, const KnownContainers& known,
            const std::function<void(const std::string&)>& report,
            std::chrono::milliseconds patience)
        : places_(places), path_(places.database()), known_(known), report_(report),
          patience_(patience) {}

    std::unique_ptr<Library> open(IndexCheck check) {
        // One that is damaged again and again is not to be made again for ever.
        for (int attempts = 1;; ++attempts) {
            const IndexFile file = indexFile(path_);
            try {
                return openOnce(check);
            } catch (const DamagedDatabase& error) {
                if (check == IndexCheck::Never || attempts == 3) {
                    throw;
                }
                replace(file, error.what());
            }
        }
    }

private:
    // Nobody looks at an index that another process has only begun, or is moving aside. nullopt:
    // nothing can be written here.
    std::optional<FileLock> lock() {
        try {
            makeFolders(places_.own());
            return std::optional<FileLock>(std::in_place, path_ + ".lock", patience_);
        } catch (const Locked&) {
            throw;
        } catch (const Error&) {
            if (access(path_.c_str(), R_OK) != 0) {
                throw;
            }
        }
        return std::nullopt;
    }

    std::unique_ptr<Library> openOnce(IndexCheck check) {
        auto locked = lock();
        const auto missing = locked ? MissingFile::IsMade : MissingFile::IsAnError;
        const bool isNew = indexFile(path_).inode < 0;
        if (lengthBeforeCut(path_)) { // SQLite takes what is left of a header for an empty database
            throw damageOf(path_, "cut short");
        }
        const bool suspect = !isNew && !hasMark(path_);
        const auto keep = [&](Database& fresh) {
            ContainerKeeper keeper(fresh);
            keepKnown(keeper, known_);
            keeper.reserve(lastNumberOf(path_));
        };
        auto library = std::make_unique<Library>(places_, keep, missing, patience_);
        locked.reset(); // it takes time to read all of it
        const bool isRead =
            !isNew && check != IndexCheck::Never &&
            (suspect || (check == IndexCheck::WhenUnclean && !library->isVouchedFor()));
        if (isRead) {
            library->check();
        }
        if (isNew || (isRead && suspect)) {
            library->vouch();
        }
        return library;
    }

    /// Makes a new index out of a damaged one, unless another process has done so.
    void replace(const IndexFile& damaged, const std::string& damage) {
        const FileLock lock(path_ + ".lock", patience_);
        if (indexFile(path_).inode != damaged.inode) {
            return;
        }
        if (const auto length = lengthBeforeCut(path_)) {
            // SQLite reads no file that is too short, and throws the log of an empty one away.
            unlink((path_ + soundMark).c_str());
            static_cast<void>(truncate(path_.c_str(), *length));
        }
        const std::string fresh = path_ + ".new";
        std::int64_t kept = 0;
        std::int64_t last = 0;
        try {
            std::tie(kept, last) = makeFrom(salvage(path_), fresh);
        } catch (const Error& error) {
            throw Error(damage + "; it cannot be made anew: " + error.what());
        }
        removeOldest();
        const std::string aside = asideName();
        for (const char* part : parts) {
            if (rename((path_ + part).c_str(), (aside + part).c_str()) != 0 && *part == '\0') {
                throw systemError(path_, "is damaged and cannot be moved aside", errno);
            }
        }
        if (rename(fresh.c_str(), path_.c_str()) != 0) {
            throw systemError(path_, "cannot be replaced", errno);
        }
        keepLastNumber(path_, last);
        writeMark(path_);
        report_(damage + "; moved to " + nameOf(aside) + ". Kept were the numbers of " +
                std::to_string(kept) + " containers" +
                (last > kept ? " of " + std::to_string(last) : std::string()) +
                "; all else is read anew from the recorded folders");
    }

    [[nodiscard]] std::string asideName() const {
        const std::string name = path_ + ".damaged-" + std::to_string(std::time(nullptr));
        std::string free = name;
        for (int i = 2; indexFile(free).inode >= 0; ++i) { // of the same second
            free = name + "." + std::to_string(i);
        }
        return free;
    }

    /// Of those that were moved aside a few are enough to look into. Their names tell the time.
    void removeOldest() const {
        const std::string begin = path_ + ".damaged-";
        std::set<std::string> damaged;
        std::error_code code;
        for (std::filesystem::directory_iterator entry(folderOf(path_), code), end;
             !code && entry != end; entry.increment(code)) {
            const std::string path = entry->path().string();
            if (path.starts_with(begin)) {
                damaged.insert(path.substr(0, path.find('-', begin.size())));
            }
        }
        for (; damaged.size() >= keptDamaged; damaged.erase(damaged.begin())) {
            for (const char* part : parts) {
                unlink((*damaged.begin() + part).c_str());
            }
        }
    }

    /// How many containers have their number in it, and the last number that was given.
    std::pair<std::int64_t, std::int64_t> makeFrom(const Salvage& found, const std::string& fresh) {
        for (const char* part : parts) {
            unlink((fresh + part).c_str());
        }
        const auto last = std::max(found.lastNumber, lastNumberOf(path_));
        Database database(fresh);
        prepareSchema(database, [&](Database&) {
            // What is active comes first: it has its number on disk.
            ContainerKeeper keeper(database);
            keepKnown(keeper, known_);
            for (const auto& [id, row] : found.containers) {
                keeper.keep(row);
            }
            keeper.reserve(last);
            Statement tell(database, "INSERT INTO walk_problem (problem) VALUES (?)");
            for (const std::string& problem : found.problems) {
                tell.bind(1, problem).run();
            }
        });
        database.run("PRAGMA wal_checkpoint(TRUNCATE)"); // the file is to be moved without its log
        Statement count(database, "SELECT count(*) FROM container");
        count.step();
        return {count.number(0), last};
    }

    const Places& places_;
    std::string path_;
    const KnownContainers& known_;
    const std::function<void(const std::string&)>& report_;
    std::chrono::milliseconds patience_;
};

} // namespace

bool Library::isReplaced() const {
    const IndexFile now = indexFile(database_.path());
    return database_.isWithoutSpace() || now.inode != file_.inode || now.size < file_.size;
}

bool Library::isVouchedFor() const {
    return isAsMarked(database_.path());
}

void Library::vouch() {
    if (isReplaced() || isVouchedFor()) {
        return;
    }
    // What is in the log goes into the file, as far as nobody reads older states.
    database_.run("PRAGMA wal_checkpoint(PASSIVE)");
    writeMark(database_.path());
    Statement last(database_, "SELECT seq FROM sqlite_sequence WHERE name = 'container'");
    if (last.step()) {
        keepLastNumber(database_.path(), last.number(0));
    }
}

void Library::check() {
    Statement statement(database_, "PRAGMA quick_check(1)");
    const std::string result = statement.step() ? statement.text(0) : "no answer";
    if (result != "ok") {
        throw damageOf(database_.path(), result.substr(result.rfind('\n') + 1));
    }
}

std::unique_ptr<Library> openLibrary(const Places& places, const KnownContainers& known,
                                     const std::function<void(const std::string&)>& report,
                                     IndexCheck check, std::chrono::milliseconds patience) {
    return Opening(places, known, report, patience).open(check);
}

} // namespace manager
