// SPDX-License-Identifier: MIT
// A check's report for people.
#include "host/cli/checkcommand.h"
#include "host/cli/table.h"
#include "host/documents/utf8.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <map>
#include <utility>

namespace host {

namespace {

std::string counted(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string nameOf(const Face& face) {
    return printable(face.style.empty() ? face.family : face.family + " " + face.style);
}

/// "U+1F600 \U0001F600"
std::string nameOf(char32_t character) {
    std::array<char, 16> code{};
    std::snprintf(code.data(), code.size(), "U+%04X", static_cast<unsigned>(character));
    std::string text;
    appendUtf8(text, character);
    return code.data() + (" " + printable(text));
}

std::string textOf(const std::optional<Substitute>& substitute) {
    if (!substitute) {
        return "nothing";
    }
    const char* const why = substitute->listed        ? " (named behind it)"
                            : substitute->sameMetrics ? " (same metrics)"
                                                      : "";
    return printable(substitute->face.name) + why;
}

std::string missingOf(const CheckedDrawing& drawing) {
    std::string names;
    std::size_t count = 0;
    for (const CheckedFace& face : drawing.faces) {
        if (face.state == FaceState::Missing) {
            names += (count++ == 0 ? "" : ", ") + nameOf(face.use.face);
        }
    }
    return count == 0 ? "none missing" : std::to_string(count) + " missing: " + names;
}

std::string lackingOf(const CheckedDrawing& drawing) {
    constexpr std::size_t most = 8;
    std::u32string characters;
    for (const CheckedFace& face : drawing.faces) {
        characters += face.lackingCharacters;
    }
    std::sort(characters.begin(), characters.end());
    characters.erase(std::unique(characters.begin(), characters.end()), characters.end());
    std::string text;
    for (std::size_t i = 0; i < std::min(characters.size(), most); ++i) {
        text += (i == 0 ? "; no font has " : ", ") + nameOf(characters[i]);
    }
    return characters.size() > most
               ? text + " and " + std::to_string(characters.size() - most) + " more"
               : text;
}

/// Those in most drawings; a script that no font covers has thousands.
std::string textOfLacking(const std::map<char32_t, std::size_t>& characters) {
    constexpr std::size_t most = 20;
    std::vector<std::pair<char32_t, std::size_t>> first(characters.begin(), characters.end());
    std::stable_sort(first.begin(), first.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    first.resize(std::min(first.size(), most));
    std::vector<TableLine> lines{{"in no font", "drawings"}};
    for (const auto& [character, drawings] : first) {
        lines.push_back({nameOf(character), std::to_string(drawings)});
    }
    const std::size_t rest = characters.size() - first.size();
    return tableOf(lines) +
           (rest == 0 ? "" : "  and " + counted(rest, "more character", "more characters") + "\n");
}

} // namespace

std::string textOfChecked(const CheckedDrawing& drawing) {
    std::string text = printable(drawing.file) + ": ";
    if (!drawing.error.empty()) {
        return text + "could not be read\n";
    }
    if (drawing.faces.empty()) {
        return text + "no text\n";
    }
    return text + counted(drawing.faces.size(), "face", "faces") + ", " + missingOf(drawing) +
           lackingOf(drawing) + "\n";
}

std::string textOfSummary(const CheckSummary& summary) {
    std::string text = counted(summary.drawings, "drawing", "drawings") + ": " +
                       std::to_string(summary.complete) + " with all fonts, " +
                       std::to_string(summary.drawings - summary.complete - summary.unreadable) +
                       " without some";
    text += summary.unreadable == 0
                ? "\n"
                : ", " + std::to_string(summary.unreadable) + " that could not be read\n";
    if (!summary.missing.empty()) {
        std::vector<TableLine> lines{{"missing face", "drawings", "texts", "drawn in"}};
        std::transform(summary.missing.begin(), summary.missing.end(), std::back_inserter(lines),
                       [](const CheckSummary::MissingFace& missing) {
                           return TableLine{nameOf(missing.face), std::to_string(missing.drawings),
                                            std::to_string(missing.runs), textOf(missing.drawnIn)};
                       });
        text += "\n" + tableOf(lines);
    }
    if (!summary.lackingCharacters.empty()) {
        text += "\n" + textOfLacking(summary.lackingCharacters);
    }
    return text;
}

} // namespace host
