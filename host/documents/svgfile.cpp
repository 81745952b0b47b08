// SPDX-License-Identifier: MIT
// Reading and replacing the files of drawings.
#include "host/documents/svgsource.h"

#include "host/documents/documenterror.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
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
    // A link stays one: what it leads to is replaced.
    std::error_code ignored;
    const std::filesystem::path real = std::filesystem::canonical(file, ignored);
    const std::string target = (real.empty() ? file : real).string();
    std::string name;
    Descriptor descriptor(openBeside(target, name));
    if (descriptor.get() < 0) {
        raiseErrno(target, "cannot be written: ");
    }
    TemporaryFile temporary(std::move(name));
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor.get(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            raiseErrno(target, "cannot be written: ");
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    struct stat old {};
    const bool replaces = ::stat(target.c_str(), &old) == 0;
    if ((replaces && ::fchmod(descriptor.get(), old.st_mode & 0777U) != 0) ||
        ::fsync(descriptor.get()) != 0 || descriptor.close() != 0 ||
        ::rename(temporary.name().c_str(), target.c_str()) != 0) {
        raiseErrno(target, "cannot be written: ");
    }
    temporary.keep();
}

} // namespace host::svg
