// SPDX-License-Identifier: MIT
// A search for faces that look like one that a person names.
#pragma once

#include "manager/activation/activation.h"
#include "manager/library/library.h"

#include <cstddef>
#include <string>
#include <vector>

namespace manager {

/// The face that a person calls `name`: a PostScript name, a full name, or a family, whose regular
/// face is meant. Of the library, else of the desktop, which then has no number. Forks, as
/// readFontFiles does. Throws Error when neither has it.
[[nodiscard]] FaceDetails findNamedFace(Library& library, const Activation& activation,
                                        const std::string& name);

/// A face that looks like another.
struct Alike {
    FaceMatch face;
    float distance = 0;      ///< as faces/similar.h counts it
    std::string differences; ///< for people; empty: they hardly differ
};
/// A page of them.
struct AllAlike {
    std::vector<Alike> faces;
    std::size_t total = 0; ///< on all pages
};

/// Those of the faces that `query` describes that look like `model`, the nearest first, of each
/// family the nearest. Throws Error when `model` cannot be compared.
[[nodiscard]] AllAlike searchAlike(Library& library, const FaceDetails& model,
                                   const FaceQuery& query);

} // namespace manager
