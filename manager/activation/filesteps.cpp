// SPDX-License-Identifier: MIT
// Copies, removals.
#include "manager/activation/filesteps.h"

#include "manager/library/error.h"
#include "manager/library/places.h"

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace manager {

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

void cloneOrCopy(const std::string& source, const std::string& target) {
    const auto fail = [&](int code) {
        unlink(target.c_str());
        throw systemError(source, "cannot be copied to " + folderOf(target), code);
    };
    removeFile(target);
    const sys::Descriptor from(open(source.c_str(), O_RDONLY | O_CLOEXEC));
    if (!from) {
        fail(errno);
    }
    const sys::Descriptor to(open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    if (!to) {
        fail(errno);
    }
    if (ioctl(to.get(), FICLONE, from.get()) == 0) {
        return;
    }
    constexpr std::size_t most = 1U << 30U;
    for (ssize_t count = 1; count != 0;) {
        count = sendfile(to.get(), from.get(), nullptr, most);
        if (count < 0 && errno != EINTR) {
            fail(errno);
        }
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
