// SPDX-License-Identifier: MIT
// Following links to the names that a process' own descriptors have.
#include "system/descriptor.h"

#include <charconv>
#include <system_error>

namespace sys {

namespace fs = std::filesystem;

std::optional<int> descriptorNamed(fs::path path) {
    constexpr int maximumLinks = 40;
    std::error_code error;
    const fs::path descriptors = fs::canonical("/proc/self/fd", error);
    for (int links = 0; !error && links < maximumLinks; ++links) {
        const fs::path folder = fs::canonical(fs::absolute(path).parent_path(), error);
        if (!error && folder == descriptors) {
            const std::string name = path.filename();
            const char* const end = name.data() + name.size();
            int number = -1;
            return std::from_chars(name.data(), end, number).ptr == end ? std::optional(number)
                                                                        : std::nullopt;
        }
        path = folder / fs::read_symlink(path, error);
    }
    return std::nullopt;
}

} // namespace sys
