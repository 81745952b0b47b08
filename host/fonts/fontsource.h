// SPDX-License-Identifier: MIT
// What windows ask about fonts, to show names and words in their faces.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// Where the outlines of a face are. All texts are UTF-8.
struct FaceFile {
    std::string name; ///< what users read
    std::string file;
    std::uint32_t index = 0; ///< face in the file, named instance in the upper 16 bits
    bool symbol = false;     ///< it has signs in the places of letters
    bool operator==(const FaceFile&) const = default;
};

/// Words of the current document in a face that the desktop lacks.
struct Sample {
    std::string text;    ///< one line
    std::string lacking; ///< the face's name
    FaceFile standIn;    ///< what the desktop shows them in meanwhile
};

/// The texts that a row of a list shows.
using RowTexts = std::vector<std::string>;

/// [main-thread] None of them throws; all may be empty.
struct FontSource {
    /// The face that replaces another when a plug-in gives its name; nothing when there is none.
    std::function<std::optional<FaceFile>(const std::string& name)> face;
    /// Some characters that the face has, first those that no other face is likely to have; empty
    /// when nothing is known of it.
    std::function<std::string(const FaceFile&)> someCharacters;
    /// Words in the lacking faces that `rows` name by family, and by style if that tells them
    /// apart; in all lacking faces when no row names one.
    std::function<std::vector<Sample>(const std::vector<RowTexts>& rows)> samples;
};

} // namespace host
