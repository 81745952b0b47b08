// SPDX-License-Identifier: MIT
// Fitting UTF-8 texts into a width, whatever measures them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// [one-thread] How wide a text would be.
using TextMeasure = std::function<std::int32_t(std::string_view text)>;

/// The lines of `text`, at least one, each as long as fits into `width`. Lines end at line feeds
/// and at blanks, which go; a word that is too wide alone is broken between characters. A line has
/// one character at least, however wide. The time grows with the text's length.
[[nodiscard]] std::vector<std::string> wrapText(std::string_view text, float width,
                                                const TextMeasure& measure);

/// `text`, or as much of it as fits into `width` with an ellipsis behind it.
[[nodiscard]] std::string shortenText(std::string_view text, float width,
                                      const TextMeasure& measure);

/// Without a last character of which bytes are missing.
[[nodiscard]] std::string withoutCutCharacter(std::string text);
