// SPDX-License-Identifier: MIT
// The command line of glyphora-host.
#pragma once

#include "host/cli/checkcommand.h"
#include "host/cli/replacecommand.h"

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace host {

enum class ReportFormat : std::uint8_t { Text, Json };

struct Options {
    std::vector<std::filesystem::path> files;
    std::optional<std::filesystem::path> plugin; ///< else it is looked for
    bool noPlugin = false;
    // Of these two and `locale` nothing else counts.
    std::optional<CheckOptions> check;
    std::optional<ReplaceOptions> replace;
    bool about = false;    ///< show the plug-in's about box and quit; no files
    bool selfTest = false; ///< load everything and quit; no files
    std::string locale;    ///< such as "de_DE"
    ReportFormat report = ReportFormat::Text;
    std::optional<std::filesystem::path> save; ///< where to write the one document
    std::filesystem::path saveThrough;         ///< another name of that place, if not empty
    bool reload = false;                       ///< unload and reload between documents
    bool keepGroups = false;
    bool failOnMissing = false;
    bool headless = false;                         ///< no windows, even where there is a display
    std::optional<std::filesystem::path> answers;  ///< a script for the dialogs
    std::optional<std::filesystem::path> pictures; ///< a folder for pictures of windows
    bool quiet = false;                            ///< only what went wrong
    bool verbose = false;               ///< with counts of suite calls and what plug-ins print
    std::vector<std::string> misbehave; ///< see applySabotage
};

/// Reads the command line. Answers a wrong one or a request for help on `output` or `errors`,
/// returns nothing then, and sets `exitStatus`.
[[nodiscard]] std::optional<Options> readOptions(int argumentCount, const char* const* arguments,
                                                 std::ostream& output, std::ostream& errors,
                                                 int& exitStatus);

} // namespace host
