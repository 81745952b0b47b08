// SPDX-License-Identifier: MIT
// Which files a check is about.
#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace host {

/// What `paths` name: files as they are, "-", and of folders the drawings in them, at any depth, in
/// the order of their names. A drawing is what is named .svg or .svgz, or begins like an SVG
/// drawing. Links to folders in folders are not followed. `problem` is told of folders that cannot
/// be read, in a line that names them.
[[nodiscard]] std::vector<std::filesystem::path>
findDrawings(const std::vector<std::filesystem::path>& paths,
             const std::function<void(const std::string&)>& problem);

/// The paths that a list names: one a line, or, if the list has null characters, one before each.
/// Empty ones are left out. A list that could not be read to its end is bad() afterwards.
[[nodiscard]] std::vector<std::filesystem::path> readPathList(std::istream& list);

} // namespace host
