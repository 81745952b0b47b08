// SPDX-License-Identifier: MIT
// Reading and replacing the files of drawings.
#include "host/documents/svg/svgsource.h"

#include "host/documents/documenterror.h"
#include "system/descriptor.h"
#include "system/replacefile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace host::svg {
namespace {

[[noreturn]] void raiseErrno(std::string_view file, std::string_view what) {
    throw DocumentError(file, std::string(what) +
                                  std::error_code(errno, std::generic_category()).message());
}

/// What is no file has nothing to lose: a pipe or a terminal stays what it is. Waits for the reader
/// of a named pipe, as everything that writes to one does.
void writeThrough(const std::string& target, std::string_view bytes) {
    sys::Descriptor descriptor(::open(target.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
    if (!descriptor || !sys::writeAll(descriptor.get(), bytes) || !descriptor.close()) {
        raiseErrno(target, "cannot be written: ");
    }
}

/// Whether this process has the file open for writing, as it has when its standard output or error
/// was sent there: replaced, the file would take what the program has yet to say with it.
bool isOwnOutput(const struct stat& file) {
    std::error_code ignored;
    const std::filesystem::directory_iterator descriptors("/proc/self/fd", ignored);
    return std::any_of(begin(descriptors), end(descriptors), [&](const auto& entry) {
        const std::string name = entry.path().filename().string();
        int descriptor = -1;
        std::from_chars(name.data(), name.data() + name.size(), descriptor);
        struct stat own {};
        return ::fstat(descriptor, &own) == 0 && own.st_dev == file.st_dev &&
               own.st_ino == file.st_ino && (::fcntl(descriptor, F_GETFL) & O_ACCMODE) != O_RDONLY;
    });
}

} // namespace

std::string readFile(const std::filesystem::path& file, std::size_t limit) {
    // Without waiting, lest a pipe without a writer hold the host.
    const sys::Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    const std::string name = file.string();
    struct stat status {};
    if (!descriptor || ::fstat(descriptor.get(), &status) != 0) {
        raiseErrno(name, "");
    }
    if (!S_ISREG(status.st_mode)) {
        throw DocumentError(name,
                            S_ISDIR(status.st_mode) ? "is a directory" : "is not a regular file");
    }
    if (static_cast<std::size_t>(status.st_size) > limit) {
        throw DocumentError(name, "larger than " + std::to_string(limit >> 20) + " MiB");
    }
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t used = 0;
    while (used < bytes.size()) {
        const ssize_t count = ::read(descriptor.get(), bytes.data() + used, bytes.size() - used);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            raiseErrno(name, "");
        }
        if (count == 0) {
            break;
        }
        used += static_cast<std::size_t>(count);
    }
    bytes.resize(used);
    return bytes;
}

void writeFile(const std::filesystem::path& file, std::string_view bytes) {
    if (const auto descriptor = sys::descriptorNamed(file)) {
        if (!sys::writeAll(*descriptor, bytes)) {
            raiseErrno(file.string(), "cannot be written: ");
        }
        return;
    }
    struct stat old {};
    const bool exists = ::stat(file.c_str(), &old) == 0;
    if (!exists && errno != ENOENT) {
        raiseErrno(file.string(), "cannot be written: ");
    }
    if (exists && (S_ISFIFO(old.st_mode) || S_ISCHR(old.st_mode))) {
        writeThrough(file.string(), bytes);
        return;
    }
    if (exists && !S_ISREG(old.st_mode)) {
        throw DocumentError(file.string(), "cannot be written: is not a regular file");
    }
    if (exists && isOwnOutput(old)) {
        throw DocumentError(file.string(),
                            "cannot be written: the program's own output goes there");
    }
    try {
        sys::replaceFile(file.string(), bytes);
    } catch (const std::system_error& error) {
        const std::string_view what = error.what(); // begins with the file, or with its folder
        const std::string own = file.string() + ": ";
        throw DocumentError(file.string(),
                            std::string(what.substr(what.starts_with(own) ? own.size() : 0)));
    }
}

} // namespace host::svg
