// SPDX-License-Identifier: MIT
// FreeType reads the table.
#include "faces/variations.h"

#include <algorithm>
#include FT_MULTIPLE_MASTERS_H
#include <memory>

namespace faces {

namespace {

constexpr unsigned maximumAxes = 64;
constexpr unsigned maximumInstances = 1000;

struct MasterDeleter {
    FT_Library library;
    void operator()(FT_MM_Var* master) const { FT_Done_MM_Var(library, master); }
};

// FreeType forgets the sign of an instance's negative coordinates where `long` has 64 bits.
double fixed(FT_Fixed value) {
    return static_cast<double>(static_cast<FT_Int32>(value)) / 65536;
}

std::string tagText(FT_ULong tag) {
    std::string text;
    for (unsigned shift = 32; shift > 0; shift -= 8) {
        const auto c = static_cast<char>(tag >> (shift - 8) & 0xFFU);
        text += c >= ' ' && c < 0x7F ? c : '?';
    }
    return text;
}

} // namespace

Variations::Variations(FT_Face face) {
    FT_MM_Var* read = nullptr;
    if (!FT_HAS_MULTIPLE_MASTERS(face) || !FT_IS_SFNT(face) || FT_Get_MM_Var(face, &read) != 0) {
        return;
    }
    const std::unique_ptr<FT_MM_Var, MasterDeleter> master(read, {face->glyph->library});
    const unsigned axes = std::min(master->num_axis, maximumAxes);
    for (unsigned i = 0; i < axes; ++i) {
        const FT_Var_Axis& axis = master->axis[i];
        FT_UInt flags = 0;
        const bool told = FT_Get_Var_Axis_Flags(read, i, &flags) == 0;
        axes_.push_back({tagText(axis.tag),
                         {},
                         fixed(axis.minimum),
                         fixed(axis.def),
                         fixed(axis.maximum),
                         told && (flags & FT_VAR_AXIS_FLAG_HIDDEN) != 0});
        axisNames_.push_back(static_cast<std::uint16_t>(axis.strid));
    }
    for (unsigned i = 0; i < std::min(master->num_namedstyles, maximumInstances); ++i) {
        const FT_Var_Named_Style& style = master->namedstyle[i];
        Instance& instance = instances_.emplace_back();
        instance.number = i + 1;
        instance.style = static_cast<std::uint16_t>(style.strid);
        instance.postScriptName = static_cast<std::uint16_t>(style.psid);
        for (unsigned axis = 0; axis < axes; ++axis) {
            instance.position.emplace_back(axes_[axis].tag, fixed(style.coords[axis]));
        }
    }
}

std::vector<Axis> Variations::axes(const NameTable& names) const {
    std::vector<Axis> axes = axes_;
    for (std::size_t i = 0; i < axes.size(); ++i) {
        axes[i].name = names.text(static_cast<NameId>(axisNames_[i]));
    }
    return axes;
}

Style styleAt(const std::vector<std::pair<std::string, double>>& position, const Style& other) {
    Style style = other;
    for (const auto& [tag, value] : position) {
        if (tag == "wght") {
            style.weight = std::clamp(value, 1.0, 1000.0);
        } else if (tag == "wdth") {
            style.width = std::clamp(value, 1.0, 1000.0);
        } else if (tag == "ital" && value >= 0.5) {
            style.slant = Slant::Italic;
        } else if (tag == "slnt" && value != 0 && style.slant == Slant::Upright) {
            style.slant = Slant::Oblique;
        }
    }
    return style;
}

} // namespace faces
