// SPDX-License-Identifier: MIT
// A file in memory, for what reads by name.
#pragma once

#include "fuzz/require.h"
#include "system/descriptor.h"

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace fuzz {

class MemoryFile {
public:
    MemoryFile(const std::uint8_t* data, std::size_t size)
        : file_(memfd_create("fuzz", MFD_CLOEXEC)) {
        REQUIRE(sys::writeAll(file_.get(), {reinterpret_cast<const char*>(data), size}));
    }
    std::string path() const { return "/proc/self/fd/" + std::to_string(file_.get()); }

private:
    sys::Descriptor file_;
};

} // namespace fuzz
