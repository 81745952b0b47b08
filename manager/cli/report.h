// SPDX-License-Identifier: MIT
// What the commands print: messages to standard error, lists and state to standard output.
#pragma once

#include "manager/activation/activation.h"
#include "manager/library/library.h"

#include <concepts>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// `text` for a line that people read: control characters, which file names may hold, are written
/// \n, \t and \xNN, so that they neither end the line nor steer a terminal.
[[nodiscard]] std::string printable(std::string_view text);

/// A line on standard output, and "glyphora: TEXT" on standard error; both made printable.
void printLine(std::string_view text);
void warn(std::string_view text);

/// Whether the fonts of a face or container can be seen: "active", "away" (their folder is),
/// "shown" (by the desktop, without the manager) or "inactive".
template <class Held>
[[nodiscard]] const char* stateOf(const Held& held, bool active) {
    return active ? "active" : held.away ? "away" : held.shownByDesktop ? "shown" : "inactive";
}

/// "TrueType", "Type 1", "OpenType PostScript", "collection"; empty: it is not known.
[[nodiscard]] std::string formatText(const Container& container);

/// How a line of a list begins: number and state, in columns.
[[nodiscard]] std::string lineBegin(ContainerId id, const char* state);

/// "NAME (container NUMBER, PATH)".
[[nodiscard]] std::string called(const Container& container);

/// A line of a list: number, state, name, format, faces, path.
[[nodiscard]] std::string lineOf(const Container& container, bool active);

/// What every document says of a container, and of what a folder holds.
[[nodiscard]] nlohmann::ordered_json toJson(const Container& container);
[[nodiscard]] nlohmann::ordered_json toJson(const LibraryCounts& counts);

/// "2 font files (1 away), 3 faces, 1 container".
[[nodiscard]] std::string textOf(const LibraryCounts& counts);

enum class Listing { Folders, Containers, Problems, Json };

/// Prints the recorded folders with what they hold.
void printLibrary(Library& library, const Activation& activation,
                  const std::vector<std::string>& folders, Listing listing);

/// "a, b".
[[nodiscard]] std::string commaList(const auto& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : ", ") + text;
    }
    return all;
}

/// "1 face", "2 faces".
[[nodiscard]] std::string counted(std::integral auto number, std::string_view noun) {
    return std::to_string(number) + " " + std::string(noun) + (number == 1 ? "" : "s");
}

/// Prints a document to standard output; bytes that are not UTF-8 become U+FFFD.
void printJson(const nlohmann::ordered_json& document);

} // namespace manager
