// SPDX-License-Identifier: MIT
// Draws requests in this process, which the font may take down: for the process that is made for
// it.
#pragma once

#include "preview/drawing/face.h"

#include <optional>

namespace preview {

/// Keeps the last face open, for a slider's next step or the next line. [one-thread]
class Drawer {
public:
    /// Throws FontError when there is no FreeType.
    Drawer();
    /// Throws `std::bad_alloc` when it takes too much memory.
    [[nodiscard]] Answer draw(const Request& request);

private:
    Library library_;
    std::optional<Face> face_;
};

} // namespace preview
