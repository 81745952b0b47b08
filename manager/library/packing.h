// SPDX-License-Identifier: MIT
// How the index holds a face's lists and measures: one text or blob each.
#pragma once

#include "faces/face.h"

#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// Tags of scripts, languages and features, which hold no blanks: each between two blanks, so that
/// " smcp " is found in it. No tags: the empty text.
[[nodiscard]] std::string packTags(const std::vector<std::string>& tags);
[[nodiscard]] std::vector<std::string> unpackTags(std::string_view text);

/// A line per axis that begins with its tag and a tab.
[[nodiscard]] std::string packAxes(const std::vector<faces::Axis>& axes);
[[nodiscard]] std::vector<faces::Axis> unpackAxes(std::string_view text);

using Position = std::vector<std::pair<std::string, double>>;
[[nodiscard]] std::string packPosition(const Position& position);
[[nodiscard]] Position unpackPosition(std::string_view text);

[[nodiscard]] std::string packCoverage(const faces::Coverage& coverage);
[[nodiscard]] faces::Coverage unpackCoverage(std::string_view blob);

/// Kept as `float`: that is as exact as outlines are.
[[nodiscard]] std::string packMeasures(const faces::Measures& measures);
[[nodiscard]] faces::Measures unpackMeasures(std::string_view blob);

} // namespace manager
