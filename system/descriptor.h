// SPDX-License-Identifier: MIT
// Owns a file descriptor.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>
#include <utility>

namespace sys {

/// Closes its descriptor when it goes. Moved, not copied.
class Descriptor {
public:
    Descriptor() noexcept = default;
    /// Takes what a call of the system returned; a negative number is none.
    explicit Descriptor(int number) noexcept : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        Descriptor old(std::exchange(number_, other.release()));
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { static_cast<void>(close()); }

    [[nodiscard]] int get() const noexcept { return number_; }
    explicit operator bool() const noexcept { return number_ >= 0; }
    /// Hands the descriptor over to the caller.
    [[nodiscard]] int release() noexcept { return std::exchange(number_, -1); }
    /// Closes it now. False, with errno set: what was written may not have arrived.
    bool close() noexcept {
        const int number = release();
        return number < 0 || ::close(number) == 0;
    }

private:
    int number_ = -1;
};

/// Writes all of it, however often the system takes only a part. False, with errno set: it failed.
[[nodiscard]] inline bool writeAll(int descriptor, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (count == 0) {
            errno = EIO; // lest it be tried for ever
            return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

/// The descriptor of this process that a path names, itself or by links: 1 for "/dev/stdout", 5 for
/// "/dev/fd/5". Nothing for any other path. It need not be open.
[[nodiscard]] std::optional<int> descriptorNamed(std::filesystem::path path);

} // namespace sys
