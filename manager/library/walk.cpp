// SPDX-License-Identifier: MIT
// Walks folder trees without recursion.
#include "manager/library/walk.h"

#include "faces/fontfile.h"
#include "manager/library/cancel.h"
#include "manager/library/error.h"
#include "manager/library/places.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <filesystem>
#include <linux/magic.h>
#include <map>
#include <memory>
#include <set>
#include <sys/stat.h>
#include <sys/statfs.h>
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

constexpr std::array<std::uint32_t, 12> kernelFileSystems = {
    PROC_SUPER_MAGIC, SYSFS_MAGIC,        DEBUGFS_MAGIC,       TRACEFS_MAGIC,
    SECURITYFS_MAGIC, CGROUP_SUPER_MAGIC, CGROUP2_SUPER_MAGIC, DEVPTS_SUPER_MAGIC,
    BPF_FS_MAGIC,     BINFMTFS_MAGIC,     PSTOREFS_MAGIC,      EFIVARFS_MAGIC,
};

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
            checkCancelled();
            auto& source = waiting_.empty() ? linked_ : waiting_;
            const Place place = std::move(source.back());
            source.pop_back();
            visit(place);
        }
        std::sort(found_.folders.begin(), found_.folders.end(),
                  [](const FoundFolder& a, const FoundFolder& b) { return a.path < b.path; });
        for (FoundFolder& folder : found_.folders) {
            std::sort(folder.files.begin(), folder.files.end(),
                      [](const FoundFile& a, const FoundFile& b) { return a.name < b.name; });
        }
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
            leaveUnread(place, errno);
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
        if (isOfTheKernel(directory.get(), status.st_dev)) {
            return;
        }
        FoundFolder folder{place.path, static_cast<std::int64_t>(status.st_dev), {}, true};
        if (const int code = readEntries(place, folder, directory.get()); code == 0) {
            found_.folders.push_back(std::move(folder));
        } else if (folder.isEmpty) { // the disk went while it was opened
            leaveUnread(place, code);
        } else {
            problem(place.path, "the folder cannot be read to its end", code);
            found_.unread.push_back(place.path);
            found_.folders.push_back(std::move(folder));
        }
    }

    void leaveUnread(const Place& place, int code) {
        problem(place.path, "the folder cannot be read", code);
        found_.unread.push_back(place.path);
        if (place.depth == 0) {
            found_.unreadRoots.push_back(place.path);
        }
    }

    // The system's code for what kept it from the end, or 0.
    int readEntries(const Place& place, FoundFolder& folder, DIR* directory) {
        for (;;) {
            errno = 0;
            const dirent* entry = readdir(directory);
            if (entry == nullptr) {
                return errno;
            }
            if (entry->d_name[0] != '.') {
                folder.isEmpty = false;
                look(place, folder, dirfd(directory), *entry);
            }
        }
    }

    // Whether it is of a file system that holds no files of anybody's. Asked once for each.
    bool isOfTheKernel(DIR* directory, dev_t device) {
        const auto [known, isNew] = ofTheKernel_.try_emplace(device, false);
        struct statfs status {};
        if (isNew && fstatfs(dirfd(directory), &status) == 0) {
            known->second =
                std::find(kernelFileSystems.begin(), kernelFileSystems.end(),
                          static_cast<std::uint32_t>(status.f_type)) != kernelFileSystems.end();
        }
        return known->second;
    }

    void look(const Place& place, FoundFolder& folder, int directory, const dirent& entry) {
        const bool fontName = faces::hasFontFileName(entry.d_name);
        if (entry.d_type == DT_REG && !fontName) {
            return;
        }
        if (entry.d_type == DT_DIR) { // is looked at when it is visited
            waiting_.push_back({joinPath(place.path, entry.d_name), place.depth + 1});
            return;
        }
        struct stat status {};
        if (fstatat(directory, entry.d_name, &status, 0) != 0) {
            const int code = errno;
            const std::string path = joinPath(place.path, entry.d_name);
            if (fontName || entry.d_type == DT_LNK) { // to a folder on a disk that is away, maybe
                if (fontName || !std::filesystem::path(path).has_extension()) {
                    problem(path, "cannot be read", code);
                }
                found_.unread.push_back(path);
            }
            return;
        }
        if (fontName && S_ISREG(status.st_mode) && entry.d_type == DT_REG) {
            folder.files.push_back({entry.d_name, stampOf(status)});
            return;
        }
        std::string path = joinPath(place.path, entry.d_name);
        if (entry.d_type == DT_LNK && isPassedOver(path)) {
            return;
        }
        if (S_ISDIR(status.st_mode)) {
            auto& target = entry.d_type == DT_LNK ? linked_ : waiting_;
            target.push_back({std::move(path), place.depth + 1});
        } else if (fontName && S_ISREG(status.st_mode)) {
            folder.files.push_back({entry.d_name, stampOf(status)});
        } else if (fontName) {
            found_.problems.push_back(path + ": not a regular file");
        }
    }

    std::string passedOver_;
    FoundFiles found_;
    std::vector<Place> waiting_;
    std::vector<Place> linked_;
    std::set<std::pair<dev_t, ino_t>> visited_;
    std::map<dev_t, bool> ofTheKernel_;
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
