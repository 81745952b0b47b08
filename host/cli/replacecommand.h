// SPDX-License-Identifier: MIT
// The command that replaces fonts in drawings by a table.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

struct ReplaceOptions {
    std::vector<std::filesystem::path> paths;
    std::vector<std::string> rules; ///< "old = new", before those of the tables
    std::vector<std::filesystem::path> tables;
    std::optional<std::filesystem::path> output; ///< a file, or a folder
    bool inPlace = false;                        ///< with the old drawing kept beside
    bool dryRun = false;                         ///< only show what would change
};

/// Runs the command: see runCheck().
[[nodiscard]] int runReplace(const ReplaceOptions& options, const std::string& locale,
                             const std::function<bool(const std::string&)>& print);

} // namespace host
