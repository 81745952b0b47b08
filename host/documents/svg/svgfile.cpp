// SPDX-License-Identifier: MIT
// Reading and replacing the files of drawings.
#include "host/documents/svg/svgsource.h"

#include "host/documents/documenterror.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace host::svg {
namespace {

class Descriptor {
public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const noexcept { return number_; }
    int close() noexcept {
        const int number = std::exchange(number_, -1);
        return number < 0 ? 0 : ::close(number);
    }

private:
    int number_;
};

[[noreturn]] void raiseErrno(std::string_view file, std::string_view what) {
    throw DocumentError(file, std::string(what) +
                                  std::error_code(errno, std::generic_category()).message());
}

/// A file that vanishes unless it is kept.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string name) : name_(std::move(name)) {}
    ~TemporaryFile() {
        if (!name_.empty()) {
            ::unlink(name_.c_str());
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    const std::string& name() const { return name_; }
    void keep() { name_.clear(); }

private:
    std::string name_;
};

/// A new file beside `target`, with the rights that new files get. -1 and errno when it fails.
int openBeside(const std::string& target, std::string& name) {
    constexpr int attempts = 100;
    int descriptor = -1;
    for (int i = 0; i < attempts && descriptor < 0; ++i) {
        name = target + ".new" + std::to_string(::getpid()) + "-" + std::to_string(i);
        descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor < 0 && errno != EEXIST) {
            break;
        }
    }
    return descriptor;
}

void writeAll(int descriptor, std::string_view bytes, const std::string& target) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            raiseErrno(target, "cannot be written: ");
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

/// What is no file has nothing to lose: a pipe or a terminal stays what it is. Waits for the reader
/// of a named pipe, as everything that writes to one does.
void writeThrough(const std::string& target, std::string_view bytes) {
    Descriptor descriptor(::open(target.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
    if (descriptor.get() < 0) {
        raiseErrno(target, "cannot be written: ");
    }
    writeAll(descriptor.get(), bytes, target);
    if (descriptor.close() != 0) {
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

/// A link stays one: what it leads to is replaced, or created if it is not there yet.
std::string targetOf(const std::filesystem::path& file, bool exists) {
    std::error_code error;
    if (exists) {
        const std::filesystem::path real = std::filesystem::canonical(file, error);
        if (error) {
            throw DocumentError(file.string(), "cannot be written: " + error.message());
        }
        return real.string();
    }
    // The kernel has followed the links to their end already, so there is one.
    std::filesystem::path target = file;
    while (std::filesystem::is_symlink(target, error)) {
        const std::filesystem::path next = std::filesystem::read_symlink(target, error);
        if (error) {
            break;
        }
        target = target.parent_path() / next;
    }
    return target.string();
}

} // namespace

std::string readFile(const std::filesystem::path& file, std::size_t limit) {
    // Without waiting, lest a pipe without a writer hold the host.
    const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    const std::string name = file.string();
    struct stat status {};
    if (descriptor.get() < 0 || ::fstat(descriptor.get(), &status) != 0) {
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
    const std::string target = targetOf(file, exists);
    std::string name;
    Descriptor descriptor(openBeside(target, name));
    if (descriptor.get() < 0) {
        raiseErrno(target, "cannot be written: ");
    }
    TemporaryFile temporary(std::move(name));
    writeAll(descriptor.get(), bytes, target);
    if ((exists && ::fchmod(descriptor.get(), old.st_mode & 0777U) != 0) ||
        ::fsync(descriptor.get()) != 0 || descriptor.close() != 0 ||
        ::rename(temporary.name().c_str(), target.c_str()) != 0) {
        raiseErrno(target, "cannot be written: ");
    }
    temporary.keep();
}

} // namespace host::svg
