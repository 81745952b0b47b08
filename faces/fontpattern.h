// SPDX-License-Identifier: MIT
// What fontconfig's pattern of a face tells.
#pragma once

#include "faces/face.h"

#include <fontconfig/fontconfig.h>
#include <optional>
#include <string>

namespace faces {

/// The text at `position` of the list that `object` has; empty when there is none.
[[nodiscard]] std::string textOf(const FcPattern* pattern, const char* object, int position);
/// The face's technology; nullopt: one that is not supported.
[[nodiscard]] std::optional<Technology> technologyOf(const FcPattern* pattern);

} // namespace faces
