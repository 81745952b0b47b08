// SPDX-License-Identifier: MIT
// What a file is by its first bytes.
#pragma once

#include <string>
#include <string_view>

namespace host::svg {

/// "not XML", and what else it is by its first bytes where those tell.
[[nodiscard]] std::string notXmlText(std::string_view bytes);

/// Whether the first element of a file that begins so is `svg`, in whatever namespace.
[[nodiscard]] bool looksLikeSvg(std::string_view begin);

} // namespace host::svg
