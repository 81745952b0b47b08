// SPDX-License-Identifier: MIT
// Where a font's maker is at home in the web.
#pragma once

#include <cstdint>
#include <string>

namespace faces {

/// What a face's name table tells of its maker's page, as it stands there; empty: nothing, or the
/// file cannot be read. To be called in a process that may end by it: the file is mapped. `index`
/// as in Face.
[[nodiscard]] std::string vendorPage(const std::string& file, std::uint32_t index);

} // namespace faces
