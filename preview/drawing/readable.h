// SPDX-License-Identifier: MIT
// Of the texts that may be drawn, the one that a face can show.
#pragma once

#include "preview/drawing/shape.h"

#include <string>

namespace preview {

struct ReadableLine {
    std::string text;
    ShapedLine line; ///< of it; its `missing` is of what `request` wants first
};

/// See Request::others and Request::orOwn. Throws like shape().
[[nodiscard]] ReadableLine readable(const Face& face, const Request& request);

} // namespace preview
