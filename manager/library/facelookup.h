// SPDX-License-Identifier: MIT
// Parts of the statements that find faces.
#pragma once

#include <string>
#include <string_view>

namespace manager {

/// The columns that Library reads a face from; `from` is "face", maybe joined to what leads there.
[[nodiscard]] std::string faceColumns(std::string_view from = "face");
/// Finds the faces of a condition which can be activated, in no order, some of them twice maybe.
[[nodiscard]] std::string faceLookUp(std::string_view from, std::string_view condition);

/// A condition on directory.path: parameters 1 to 3 are the folder and its PathRange.
constexpr std::string_view atOrUnder =
    "(directory.path = ?1 OR (directory.path >= ?2 AND directory.path < ?3))";

/// The texts between `folder/` and `folder0` are those that begin with `folder/`: '0' follows '/'.
struct PathRange {
    explicit PathRange(const std::string& folder)
        : first(folder == "/" ? "/" : folder + "/"), last(folder == "/" ? "0" : folder + "0") {}
    std::string first;
    std::string last;
};

} // namespace manager
