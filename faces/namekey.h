// SPDX-License-Identifier: MIT
// Names reduced for comparison, in two degrees.
#pragma once

#include <string>
#include <string_view>

namespace faces {

/// The same name: family, style or full name, case folded, blanks dropped. Indexes on disk keep
/// what this gives.
[[nodiscard]] std::string nameKey(std::string_view name);

/// A name that was likely meant: `family` without hyphens and other marks, and without what makers
/// add at the end ("Pro", "Std", "MT", ...), as a word of its own or with a capital ("MinionPro").
/// Indexes on disk keep what this gives.
[[nodiscard]] std::string normalisedFamilyKey(std::string_view family);

/// A PostScript name without blanks, which it may not have; some fonts have them all the same, and
/// programs differ in what they do about it. Case counts.
[[nodiscard]] std::string postScriptKey(std::string_view name);

} // namespace faces
