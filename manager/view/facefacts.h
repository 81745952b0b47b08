// SPDX-License-Identifier: MIT
// What a font file says of a face, in the user's words.
#pragma once

#include "faces/face.h"

#include <string>
#include <vector>

namespace manager {

/// [main-thread] "Garamond Bold", or the PostScript name where it has no other.
[[nodiscard]] std::string nameForPeople(const faces::Face& face);

/// [main-thread] A line each, of what is told: PostScript name, version and foundry, licence, how
/// it may be embedded. Long texts are cut.
[[nodiscard]] std::vector<std::string> factsOf(const faces::Face& face);

} // namespace manager
