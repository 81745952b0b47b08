// SPDX-License-Identifier: MIT
// Formats by technology and by a file's beginning.
#include "manager/library/fontformat.h"

#include "system/descriptor.h"

#include <array>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace manager {

FontFormat formatOf(faces::Technology technology) {
    switch (technology) {
    case faces::Technology::Type1:
        return FontFormat::Type1;
    case faces::Technology::OpenTypePostScript:
        return FontFormat::PostScript;
    case faces::Technology::TrueType:
    case faces::Technology::OpenTypeTrueType:
        break;
    }
    return FontFormat::TrueType;
}

std::optional<FontFormat> formatOfFile(const std::string& path) {
    const sys::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    std::array<char, 4> start{};
    if (!file || read(file.get(), start.data(), start.size()) != ssize_t{start.size()}) {
        return std::nullopt;
    }
    const std::string_view text(start.data(), start.size());
    if (text == "ttcf") {
        return FontFormat::Collection;
    }
    if (text == "OTTO") {
        return FontFormat::PostScript;
    }
    return text.starts_with("%!") || text.starts_with('\x80') ? FontFormat::Type1
                                                              : FontFormat::TrueType;
}

} // namespace manager
