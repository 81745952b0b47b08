// SPDX-License-Identifier: MIT
// The steps of a replacement, each with its error.
#include "system/replacefile.h"

#include "system/cuttext.h"
#include "system/descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace sys {
namespace {

[[noreturn]] void fail(const std::string& path, const char* what, int code = errno) {
    throw std::system_error(code, std::generic_category(), path + ": " + what);
}

/// Removes the file of this name unless it is let go of.
class TemporaryName {
public:
    explicit TemporaryName(std::string name) : name_(std::move(name)) {}
    ~TemporaryName() {
        if (!name_.empty()) {
            ::unlink(name_.c_str());
        }
    }
    TemporaryName(const TemporaryName&) = delete;
    TemporaryName& operator=(const TemporaryName&) = delete;
    const std::string& get() const { return name_; }
    void letGo() { name_.clear(); }

private:
    std::string name_;
};

/// Where links end. The file need not be there.
std::filesystem::path endOfLinks(const std::string& file, bool exists) {
    std::error_code code;
    std::filesystem::path target = file;
    if (exists) {
        target = std::filesystem::canonical(target, code);
        if (code) {
            fail(file, "cannot be written", code.value());
        }
        return target;
    }
    // The kernel has followed the links to their end already, so there is one.
    while (std::filesystem::is_symlink(target, code)) {
        const std::filesystem::path next = std::filesystem::read_symlink(target, code);
        if (code) {
            break;
        }
        target = target.parent_path() / next;
    }
    return target;
}

/// The beginning of names beside the file, short enough for whatever is added.
std::string nameBeside(const std::filesystem::path& target) {
    constexpr std::size_t longest = 200;
    return target.parent_path() / cutText(target.filename().string(), longest);
}

/// A new file under a free name that begins with `beginning`; none, with errno set, when it fails.
Descriptor openNew(const std::string& beginning, mode_t rights, std::string& name) {
    constexpr int attempts = 100;
    Descriptor descriptor;
    for (int i = 0; i < attempts && !descriptor; ++i) {
        name = beginning + ".new" + std::to_string(::getpid()) + "-" + std::to_string(i);
        descriptor =
            Descriptor(::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, rights));
        if (!descriptor && errno != EEXIST) {
            break;
        }
    }
    return descriptor;
}

} // namespace

void replaceFile(const std::string& file, std::string_view bytes, std::string_view aside) {
    struct stat old {};
    const bool exists = ::stat(file.c_str(), &old) == 0;
    if (!exists && errno != ENOENT) {
        fail(file, "cannot be written");
    }
    constexpr mode_t rightsOfNewFiles = 0666;
    const mode_t rights = exists ? old.st_mode & 0777U : rightsOfNewFiles;
    const std::filesystem::path target = endOfLinks(file, exists);
    std::string name;
    Descriptor descriptor =
        openNew(aside.empty() ? nameBeside(target) : std::string(aside), rights, name);
    if (!descriptor) {
        fail(file, "cannot be written");
    }
    TemporaryName temporary(std::move(name));
    if (!writeAll(descriptor.get(), bytes) || (exists && ::fchmod(descriptor.get(), rights) != 0) ||
        ::fsync(descriptor.get()) != 0 || !descriptor.close() ||
        ::rename(temporary.get().c_str(), target.c_str()) != 0) {
        fail(file, "cannot be written");
    }
    temporary.letGo();
    const std::filesystem::path folder = target.parent_path();
    syncFolder(folder.empty() ? "." : folder.string());
}

void syncFolder(const std::string& folder) {
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // There is nothing to make good where a folder takes files but does not show them (EACCES), and
    // where the file system cannot sync one (EINVAL).
    if (opened ? ::fsync(opened.get()) != 0 && errno != EINVAL : errno != EACCES) {
        fail(folder, "cannot be synced");
    }
}

} // namespace sys
