// SPDX-License-Identifier: MIT
// The words that names of styles are made of, and what they mean.
#pragma once

#include "faces/face.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace faces {

/// What the words of a name say of a face.
struct StyleWords {
    std::optional<double> weight;
    std::optional<double> width;
    std::optional<Slant> slant;
    std::uint64_t words = 0; ///< a bit for each; an abbreviation is the word that it stands for
    bool complete = true;    ///< every word was understood

    /// Normal in what is not said.
    [[nodiscard]] Style style() const {
        return {weight.value_or(400), width.value_or(100), slant.value_or(Slant::Upright)};
    }
};

/// Reads the name of a style, its words joined or apart: "BoldItalic", "Condensed Bold Oblique",
/// "SemiBold It". What is not understood is passed over: "12 Regular" says regular.
[[nodiscard]] StyleWords readStyleWords(std::string_view style);

/// The words that a family's name ends in: "Narrow" of "Liberation Sans Narrow". Never all of it,
/// and no abbreviations.
[[nodiscard]] StyleWords readFamilyWords(std::string_view family);

/// Corrects numbers that a font left at the default, as many do that tell their style by words
/// alone. But "Medium" is what a wide-spread editor calls the regular weight.
void correctStyle(Style& style, std::string_view words);

/// The customary name of a style: width, weight (in hundreds from 100 to 900) and slant in words,
/// "Regular" when all are normal.
[[nodiscard]] std::string styleText(const Style& style);

} // namespace faces
