// SPDX-License-Identifier: MIT
// A large library of font files as a studio has it, made up: foundries, families in few or many
// styles, collections, variable fonts, and now and then a bad file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace benchmarks {

/// What was made.
struct ManyFonts {
    std::size_t files = 0;
    std::size_t bad = 0;                      ///< among them
    std::vector<std::string> postScriptNames; ///< of the good files' first faces, each once
};

/// Makes `files` font files in folders under `folder`, the same ones for the same `seed`. The fonts
/// are whole, with names, styles and weights of their own and one alphabet's outlines. Throws
/// std::runtime_error when a file cannot be written.
[[nodiscard]] ManyFonts makeManyFonts(const std::string& folder, std::size_t files,
                                      std::uint32_t seed);

} // namespace benchmarks
