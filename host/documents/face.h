// SPDX-License-Identifier: MIT
// A typeface as a document names it: shared by the document model and the font catalogue.
#pragma once

#include "faces/face.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace host {

using faces::Slant;

/// Where the outlines of a face come from.
enum class FaceOrigin : std::uint8_t {
    Named,    ///< the desktop must have it
    Generic,  ///< "serif" and the like: something always stands in for it
    Embedded, ///< the document brings it along
};

/// All texts are UTF-8.
struct Face {
    std::string family;         ///< as the document writes it; the generic name of a generic face
    std::string style;          ///< "Regular", "Bold Italic", "Condensed Light", ...
    std::string postScriptName; ///< only when the document gives one, else empty
    int weight = 400;           ///< 1 to 1000, 400 is regular
    Slant slant = Slant::Upright;
    double stretch = 100.0; ///< width in percent of the normal width
    FaceOrigin origin = FaceOrigin::Named;

    bool operator==(const Face&) const = default;

    [[nodiscard]] faces::Style look() const {
        return {static_cast<double>(weight), stretch, slant};
    }
};

struct FaceHash {
    std::size_t operator()(const Face& face) const noexcept;
};

/// True for the generic families of style sheets and for the short forms that drawing programs
/// write in their place ("Sans", "Mono"). Case is ignored.
[[nodiscard]] bool isGenericFamily(std::string_view family);

/// The conventional PostScript name: family without blanks, "-", style without blanks. "Regular" is
/// written too and stands for an empty style.
[[nodiscard]] std::string conventionalPostScriptName(std::string_view family,
                                                     std::string_view style);

/// A width that has a name in style sheets.
struct NamedStretch {
    double percent;
    std::string_view keyword;
};
/// From narrow to wide.
inline constexpr std::array<NamedStretch, 9> namedStretches{{
    {50, "ultra-condensed"},
    {62.5, "extra-condensed"},
    {75, "condensed"},
    {87.5, "semi-condensed"},
    {100, "normal"},
    {112.5, "semi-expanded"},
    {125, "expanded"},
    {150, "extra-expanded"},
    {200, "ultra-expanded"},
}};

} // namespace host
