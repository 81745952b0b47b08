// SPDX-License-Identifier: MIT
// What a font file says of a face, in the user's words.
#pragma once

#include "faces/face.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace manager {

/// [main-thread] "Garamond Bold", or the PostScript name where it has no other.
[[nodiscard]] std::string nameForPeople(const faces::Face& face);

/// [main-thread] What embedding flags (OS/2 fsType) allow; nullopt: the font has none.
[[nodiscard]] std::string embeddingWords(std::optional<std::uint16_t> flags);

struct FaceFact {
    std::string title; ///< "Version:"
    std::string words; ///< as the file has them: of any length, also of several lines
};

/// [main-thread] What is told of PostScript name, version, foundry and copyright; always the
/// licence, or that there is none, and how the font may be embedded.
[[nodiscard]] std::vector<FaceFact> factsOf(const faces::Face& face);
/// [main-thread] The same as a line each. Long texts are cut.
[[nodiscard]] std::vector<std::string> shortFactsOf(const faces::Face& face);

} // namespace manager
