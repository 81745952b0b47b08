// SPDX-License-Identifier: MIT
// Links, copies, removals.
#include "manager/activation/filesteps.h"

#include "manager/library/error.h"
#include "manager/library/places.h"

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace manager {

namespace {

void copyFile(const std::string& source, const std::string& target) {
    const sys::Descriptor from(open(source.c_str(), O_RDONLY | O_CLOEXEC));
    if (!from) {
        throw systemError(source, "cannot be read", errno);
    }
    const sys::Descriptor to(open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    if (!to) {
        throw systemError(target, "cannot be written", errno);
    }
    char block[65536];
    for (;;) {
        const ssize_t count = read(from.get(), block, sizeof block);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw systemError(source, "cannot be read", errno);
        }
        if (count == 0) {
            break;
        }
        if (!sys::writeAll(to.get(), {block, static_cast<std::size_t>(count)})) {
            throw systemError(target, "cannot be written", errno);
        }
    }
    if (fsync(to.get()) != 0) {
        throw systemError(target, "cannot be written", errno);
    }
}

} // namespace

bool exists(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

bool isFolder(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void removeFile(const std::string& path) {
    if (unlink(path.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR) {
        throw systemError(path, "cannot be removed", errno);
    }
}

void removeTree(const std::string& path) {
    std::error_code code;
    std::filesystem::remove_all(path, code);
    if (code) {
        throw systemError(path, "cannot be removed", code.value());
    }
}

void linkOrCopy(const std::string& source, const std::string& target) {
    removeFile(target);
    if (linkat(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), AT_SYMLINK_FOLLOW) == 0) {
        return;
    }
    try {
        copyFile(source, target);
    } catch (const Error&) {
        unlink(target.c_str());
        throw;
    }
}

void touchFolder(const std::string& path) {
    timespec times[2]{{0, UTIME_OMIT}, {}};
    clock_gettime(CLOCK_REALTIME, &times[1]);
    utimensat(AT_FDCWD, path.c_str(), times, 0);
}

bool renameToFree(const std::string& source, const std::string& target) {
    if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    // Not every file system knows how not to replace.
    return (errno == EINVAL || errno == ENOSYS) && !exists(target) &&
           rename(source.c_str(), target.c_str()) == 0;
}

} // namespace manager
