// SPDX-License-Identifier: MIT
// What a file is that is no drawing.
#pragma once

#include <string>
#include <string_view>

namespace host::svg {

/// "not XML", and what else it is by its first bytes where those tell.
[[nodiscard]] std::string notXmlText(std::string_view bytes);

} // namespace host::svg
