// SPDX-License-Identifier: MIT
// The axes of a variable font and its named instances.
#pragma once

#include "faces/face.h"
#include "faces/nametable.h"

#include <cstdint>
#include <ft2build.h>
#include FT_FREETYPE_H
#include <string>
#include <utility>
#include <vector>

namespace faces {

struct Instance {
    unsigned number = 0;              ///< from 1
    std::uint16_t style = 0;          ///< number of a name record
    std::uint16_t postScriptName = 0; ///< the same; 0xFFFF: none
    std::vector<std::pair<std::string, double>> position;
};

/// Empty for a font that does not vary. No more than 1,000 instances are told, nor of more than 64
/// axes.
class Variations {
public:
    explicit Variations(FT_Face face);

    [[nodiscard]] const std::vector<Axis>& axes() const { return axes_; }
    /// With their names.
    [[nodiscard]] std::vector<Axis> axes(const NameTable& names) const;
    [[nodiscard]] const std::vector<Instance>& instances() const { return instances_; }

private:
    std::vector<Axis> axes_;
    std::vector<std::uint16_t> axisNames_;
    std::vector<Instance> instances_;
};

/// Where a position lies in its family; axes that it lacks leave `other` as it is.
[[nodiscard]] Style styleAt(const std::vector<std::pair<std::string, double>>& position,
                            const Style& other);

} // namespace faces
