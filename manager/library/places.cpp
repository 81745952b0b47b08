// SPDX-License-Identifier: MIT
// Data folders, files as a whole, locks.
#include "manager/library/places.h"

#include "manager/library/cancel.h"
#include "manager/library/error.h"
#include "system/replacefile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace manager {

namespace {

/// " by PROGRAM (PROCESS)" of whoever holds a lock on the file; empty when it cannot be told.
std::string holderOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return {};
    }
    // "1: FLOCK ADVISORY WRITE PROCESS MAJOR:MINOR:INODE 0 EOF"; an index has POSIX locks, and
    // those for reading hold nobody up. Some file systems show another device there than to
    // programs.
    const std::string inode = ":" + std::to_string(status.st_ino);
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        std::istringstream fields(line);
        std::string number;
        std::string kind;
        std::string use;
        std::string process;
        std::string place;
        fields >> number >> kind >> use >> use >> process >> place;
        if (kind != "->" && use == "WRITE" && place.ends_with(inode)) {
            std::string program;
            std::ifstream comm("/proc/" + process + "/comm");
            std::getline(comm, program);
            return " by " + (program.empty() ? "process" : program) + " (" + process + ")";
        }
    }
    return {};
}

} // namespace

Places Places::fromEnvironment() {
    const char* data = std::getenv("XDG_DATA_HOME");
    std::string path;
    if (data != nullptr && data[0] == '/') {
        path = data;
    } else if (const char* home = std::getenv("HOME"); home != nullptr && home[0] == '/') {
        path = std::string(home) + "/.local/share";
    } else {
        throw Error("XDG_DATA_HOME and HOME: neither names an absolute folder for the library");
    }
    // As fontconfig writes it, so that its paths can be compared with ours.
    path = std::filesystem::path(path).lexically_normal().string();
    if (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return {path};
}

void makeFolders(const std::string& path) {
    std::error_code code;
    std::filesystem::create_directories(path, code);
    if (code) {
        throw systemError(path, "cannot make the folder", code.value());
    }
}

void writeFile(const std::string& path, std::string_view text) {
    const sys::Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
    if (!file || !sys::writeAll(file.get(), text)) {
        throw systemError(path, "cannot be written", errno);
    }
}

void replaceFile(const std::string& path, std::string_view text, std::string_view aside) {
    try {
        sys::replaceFile(path, text, aside);
    } catch (const std::system_error& error) {
        throw Error(error.what());
    }
}

std::string readFile(const std::string& path, std::size_t limit) {
    sys::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file) {
        throw systemError(path, "cannot be read", errno);
    }
    std::string text;
    std::array<char, 16384> block{};
    for (;;) {
        const ssize_t count = read(file.get(), block.data(), block.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw systemError(path, "cannot be read", errno);
        }
        if (count == 0) {
            return text;
        }
        text.append(block.data(), static_cast<std::size_t>(count));
        if (text.size() > limit) {
            throw Error(path + ": longer than " + std::to_string(limit) + " bytes");
        }
    }
}

void syncFolder(const std::string& path) {
    try {
        sys::syncFolder(path);
    } catch (const std::system_error& error) {
        throw Error(error.what());
    }
}

void syncFile(const std::string& path) {
    const sys::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file || fsync(file.get()) != 0) {
        throw systemError(path, "cannot be synced", errno);
    }
}

std::string lockHolder(const std::string& path) {
    std::string holder = holderOf(path);
    return holder.ends_with("(" + std::to_string(getpid()) + ")") ? std::string() : holder;
}

Locked lockedError(const std::string& path, const std::string& holder,
                   std::chrono::milliseconds patience) {
    return Locked(path + ": is locked" + holder +
                  (patience.count() == 0
                       ? std::string()
                       : ", for longer than " + std::to_string(patience.count()) + " ms"));
}

FileLock::FileLock(const std::string& path, std::chrono::milliseconds patience)
    : file_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)) {
    if (!file_) {
        throw systemError(path, "cannot be opened", errno);
    }
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + patience;
    // The kernel waits for ever or not at all.
    constexpr std::chrono::milliseconds longestPause{50};
    std::chrono::milliseconds pause{1};
    while (flock(file_.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            throw systemError(path, "cannot be locked", errno);
        }
        checkCancelled();
        if (Clock::now() >= deadline) {
            throw lockedError(path, holderOf(path), patience);
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, longestPause);
    }
}

bool liesUnder(std::string_view path, std::string_view folder) {
    return path == folder || folder == "/" ||
           (path.starts_with(folder) && path.size() > folder.size() && path[folder.size()] == '/');
}

std::string joinPath(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.ends_with('/')) {
        path += '/';
    }
    return path.append(name);
}

std::string folderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos || slash == 0 ? "/" : std::string(path.substr(0, slash));
}

std::string nameOf(std::string_view path) {
    return std::string(path.substr(path.rfind('/') + 1));
}

} // namespace manager
