// SPDX-License-Identifier: MIT
// What the commands print: messages to standard error, lists and state to standard output.
#pragma once

#include "manager/activation/activation.h"
#include "manager/library/library.h"

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// "glyphora: TEXT" on standard error.
void warn(const std::string& text);

enum class Listing { folders, containers, json };

/// Prints the recorded folders with what they hold.
void printLibrary(Library& library, const Activation& activation,
                  const std::vector<std::string>& folders, Listing listing);

/// "1 face", "2 faces".
std::string counted(std::int64_t number, std::string_view noun);

/// Prints a document to standard output; bytes that are not UTF-8 become U+FFFD.
void printJson(const nlohmann::ordered_json& document);

} // namespace manager
