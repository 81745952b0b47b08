// SPDX-License-Identifier: MIT
// What is wrong with a file from which no font can be read. It is told and kept in English, and
// found again in that text by whoever shows it in another language.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace faces {

enum class FontFault {
    CannotBeRead, ///< the system's text
    NotRegular,
    Empty,
    TooLarge,   ///< MiB
    EndsInside, ///< bytes, part
    NotAFont,
    TableBeyondEnd,   ///< its tag, where it ends, bytes
    CountOfFonts,     ///< how many
    NoSegment,        ///< bytes before it
    SegmentBeyondEnd, ///< where it ends, bytes
    NoUsableFace,
    UnknownToReader,
};

/// The fault in English, with its values in place.
[[nodiscard]] std::string textOf(FontFault fault,
                                 std::initializer_list<std::string_view> values = {});

struct ToldFault {
    std::string about;  ///< what stands before it, such as the file
    const char* text{}; ///< as is marked for translation: "%1" and so on stand for the values
    std::vector<std::string> values;
};
/// The fault at the end of "ABOUT: FAULT"; nullopt: it ends with none.
[[nodiscard]] std::optional<ToldFault> faultIn(std::string_view text);

} // namespace faces
