// SPDX-License-Identifier: MIT
// The list that lies beside fonts that were collected: what each says of itself.
#pragma once

#include "faces/face.h"

#include <string>
#include <vector>

namespace manager {

struct CollectedFace {
    std::string name;  ///< "Garamond Bold"
    faces::Face facts; ///< what factsOf() looks at
};

struct CollectedFile {
    std::string path;                      ///< in the new folder, as are the next
    std::vector<std::string> licenceFiles; ///< that go with it
    std::vector<CollectedFace> faces;
};

/// [main-thread] In the language that was chosen, texts in their whole length.
[[nodiscard]] std::string textOf(const std::vector<CollectedFile>& files);

} // namespace manager
