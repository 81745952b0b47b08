// SPDX-License-Identifier: MIT
// A face as the right side of the window shows it.
#pragma once

#include "manager/view/facetable.h"
#include "preview/request.h"

#include <cstdint>
#include <string>
#include <vector>

namespace manager {

struct ShownFace {
    FaceId id{};
    std::string name; ///< for people
    std::string file;
    std::uint32_t index = 0;
    std::vector<preview::AxisValue> axes = {};
    std::vector<std::string> features = {};
};

} // namespace manager
