// SPDX-License-Identifier: MIT
// Sorts a face into what people look for.
#pragma once

#include "faces/face.h"

namespace faces {

/// The class of a face whose other members are known. `familyClass` is the upper half of OS/2
/// sFamilyClass, 0 where it is not told. What the outlines show goes before what the font says of
/// itself: many say what another font said from which they were made.
[[nodiscard]] Classification classify(const Face& face, unsigned familyClass);

} // namespace faces
