// SPDX-License-Identifier: MIT
// Tells whether a file is still the one that was read.
#pragma once

#include <sys/stat.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace preview {

/// Device, inode, size, when it was modified, when it or its rights were changed: another one as
/// soon as the file was replaced or changed in any way.
using FileIdentity = std::array<std::int64_t, 5>;

inline FileIdentity identityOf(const struct stat& status) {
    const auto nanoseconds = [](const timespec& time) {
        return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
    };
    return {static_cast<std::int64_t>(status.st_dev), static_cast<std::int64_t>(status.st_ino),
            status.st_size, nanoseconds(status.st_mtim), nanoseconds(status.st_ctim)};
}

/// Nothing, with errno set: it cannot be looked at.
inline std::optional<FileIdentity> identityOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return identityOf(status);
}

} // namespace preview
