// SPDX-License-Identifier: MIT
// A face as the right side of the window shows it.
#pragma once

#include "manager/view/facetable.h"

#include <cstdint>
#include <string>

namespace manager {

struct ShownFace {
    FaceId id{};
    std::string name; ///< for people
    std::string file;
    std::uint32_t index = 0;
};

} // namespace manager
