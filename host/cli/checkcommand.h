// SPDX-License-Identifier: MIT
// The command that tells of many drawings which fonts they miss.
#pragma once

#include "host/check/check.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

enum class CheckForm : std::uint8_t { Text, Json, JsonLines };

struct CheckOptions {
    std::vector<std::filesystem::path> paths;
    std::optional<std::filesystem::path>
        list; ///< a file that names more paths; "-": standard input
    CheckForm form = CheckForm::Text;
    bool missingOnly = false; ///< leave out drawings that have everything
    bool failOnMissing = false;
    unsigned jobs = 0; ///< drawings read at a time; 0: as many as there are processors
};

/// Runs the command. `print` takes parts of the report for the standard output and returns whether
/// they could be written; problems and progress go to the standard error. Returns the exit status.
[[nodiscard]] int runCheck(const CheckOptions& options, const std::string& locale,
                           const std::function<bool(const std::string&)>& print);

// The parts of the reports. Texts for people first.

/// One line, or more.
[[nodiscard]] std::string textOfChecked(const CheckedDrawing& drawing);
[[nodiscard]] std::string textOfSummary(const CheckSummary& summary);
/// One line each, without the line's end.
[[nodiscard]] std::string jsonOfChecked(const CheckedDrawing& drawing);
[[nodiscard]] std::string jsonOfSummary(const CheckSummary& summary);

} // namespace host
