// SPDX-License-Identifier: MIT
// Walks folder trees without recursion.
#include "manager/library/walk.h"

#include "faces/fontfile.h"
#include "manager/library/error.h"
#include "manager/library/places.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <memory>
#include <set>
#include <sys/stat.h>
#include <utility>

namespace manager {

namespace {

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};

FileStamp stampOf(const struct stat& status) {
    return {status.st_size,
            std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec,
            static_cast<std::int64_t>(status.st_ino)};
}

// Deeper trees are forged or a mistake.
constexpr unsigned maximumDepth = 100;

class Walk {
public:
    Walk(std::span<const std::string> roots, const std::string& passedOver)
        : passedOver_(realPath(passedOver)) {
        struct stat status {};
        if (!passedOver_.empty() && stat(passedOver_.c_str(), &status) == 0) {
            visited_.insert({status.st_dev, status.st_ino});
        }
        // Last in, first out: the roots are visited in their order.
        for (auto root = roots.rbegin(); root != roots.rend(); ++root) {
            waiting_.push_back({*root, 0});
        }
    }

    FoundFiles run() {
        // What is reached by a link waits until all real folders were visited, so that a folder is
        // known by its own path where it has one under the roots.
        while (!waiting_.empty() || !linked_.empty()) {
            auto& source = waiting_.empty() ? linked_ : waiting_;
            const Place place = std::move(source.back());
            source.pop_back();
            visit(place);
        }
        std::sort(found_.files.begin(), found_.files.end(),
                  [](const FoundFile& a, const FoundFile& b) { return a.path < b.path; });
        return std::move(found_);
    }

private:
    struct Place {
        std::string path;
        unsigned depth;
    };

    // Empty when there is nothing there.
    static std::string realPath(const std::string& path) {
        const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr),
                                                          std::free);
        return real ? real.get() : std::string();
    }

    // The folder itself is met by its inode; this is for ways that lead past it into its depth.
    [[nodiscard]] bool isPassedOver(const std::string& path) const {
        return !passedOver_.empty() && liesUnder(realPath(path), passedOver_);
    }

    void problem(const std::string& path, const char* what, int code) {
        found_.problems.emplace_back(systemError(path, what, code).what());
    }

    void visit(const Place& place) {
        const std::unique_ptr<DIR, DirectoryCloser> directory(opendir(place.path.c_str()));
        struct stat status {};
        if (!directory || fstat(dirfd(directory.get()), &status) != 0) {
            problem(place.path, "the folder cannot be read", errno);
            found_.unreadRoots += place.depth == 0 ? 1 : 0;
            return;
        }
        if (place.depth == 0 && isPassedOver(place.path)) {
            return;
        }
        if (!visited_.insert({status.st_dev, status.st_ino}).second) {
            return;
        }
        if (place.depth > maximumDepth) {
            found_.problems.push_back(place.path + ": more than " + std::to_string(maximumDepth) +
                                      " folders deep");
            return;
        }
        found_.directories.push_back(place.path);
        for (;;) {
            errno = 0;
            const dirent* entry = readdir(directory.get());
            if (entry == nullptr) {
                if (errno != 0) {
                    problem(place.path, "the folder cannot be read to its end", errno);
                }
                return;
            }
            if (entry->d_name[0] != '.') {
                look(place, dirfd(directory.get()), *entry);
            }
        }
    }

    void look(const Place& place, int directory, const dirent& entry) {
        const bool fontName = faces::hasFontFileName(entry.d_name);
        if (entry.d_type == DT_REG && !fontName) {
            return;
        }
        std::string path = place.path + (place.path.ends_with('/') ? "" : "/") + entry.d_name;
        struct stat status {};
        if (fstatat(directory, entry.d_name, &status, 0) != 0) {
            if (fontName || entry.d_type == DT_LNK) { // to a folder on a disk that is away, maybe
                problem(path, "cannot be read", errno);
            }
            return;
        }
        if (entry.d_type == DT_LNK && isPassedOver(path)) {
            return;
        }
        if (S_ISDIR(status.st_mode)) {
            auto& target = entry.d_type == DT_LNK ? linked_ : waiting_;
            target.push_back({std::move(path), place.depth + 1});
        } else if (fontName && S_ISREG(status.st_mode)) {
            found_.files.push_back({std::move(path), stampOf(status)});
        } else if (fontName) {
            found_.problems.push_back(path + ": not a regular file");
        }
    }

    std::string passedOver_;
    FoundFiles found_;
    std::vector<Place> waiting_;
    std::vector<Place> linked_;
    std::set<std::pair<dev_t, ino_t>> visited_;
};

} // namespace

FileStamp stampOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        throw systemError(path, "cannot be read", errno);
    }
    if (!S_ISREG(status.st_mode)) {
        throw Error(path + ": not a regular file");
    }
    return stampOf(status);
}

FoundFiles findFontFiles(std::span<const std::string> roots, const std::string& passedOver) {
    return Walk(roots, passedOver).run();
}

} // namespace manager
