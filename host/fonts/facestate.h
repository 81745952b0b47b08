// SPDX-License-Identifier: MIT
// How a document's face stands to the desktop's fonts.
#pragma once

#include "host/fonts/catalogue.h"

#include <cstdint>

namespace host {

enum class FaceState : std::uint8_t {
    Installed,
    Generic,  ///< something always stands in for it
    Embedded, ///< the document brings it along
    Missing,
    ActivatedNow, ///< was missing
    Replaced      ///< all its runs were given another
};

/// In the words of reports: "installed", "activated now", ...
[[nodiscard]] const char* textOf(FaceState state) noexcept;

/// Installed, Generic, Embedded or Missing.
[[nodiscard]] FaceState stateOf(const FontEntry& entry) noexcept;

} // namespace host
