// SPDX-License-Identifier: MIT
// Options with values, the look of the help, and what is told of a wrong command line.
#pragma once

#include <CLI/CLI.hpp>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// How often an option may be given.
enum class Times { Once, Several };

/// Takes one value. Throws Error when it is wrong.
using ValueTaker = std::function<void(const std::string&)>;

/// Adds an option whose value the help calls `value`. A wrong value is an error of the command
/// line.
CLI::Option* addOption(CLI::App& command, const std::string& name, const std::string& value,
                       const std::string& help, Times times, ValueTaker take);
/// The same for one that takes any text.
CLI::Option* addText(CLI::App& command, const std::string& name, const std::string& value,
                     const std::string& help, std::string& into);

/// Adds the arguments that stand by themselves, as they were typed.
CLI::Option* addTexts(CLI::App& command, const std::string& name, const std::string& help,
                      std::vector<std::string>& into);
/// The same for a single one.
CLI::Option* addWord(CLI::App& command, const std::string& name, const std::string& help,
                     std::string& into);

/// Reads a command line whose options and arguments are those added here. Throws CLI::ParseError.
void parse(CLI::App& program, int argc, const char* const* argv);

/// "90s", "30min", "2h", "7d". Throws Error.
[[nodiscard]] std::chrono::seconds toTime(std::string_view text);

/// Makes the program's help, and that of all commands added from then on, look alike.
void setHelp(CLI::App& program);

/// A line that tells people what is wrong with a command line, and where help is.
[[nodiscard]] std::string problemOf(const CLI::App& program, const CLI::ParseError& error);

} // namespace manager
