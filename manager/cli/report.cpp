// SPDX-License-Identifier: MIT
// Printing the library as text and as JSON.
#include "manager/cli/report.h"

#include "manager/cli/progress.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

namespace manager {

namespace {

using Json = nlohmann::ordered_json;

/// Of many containers, most of which have no set.
class ActiveStates {
public:
    explicit ActiveStates(const Activation& activation)
        : activation_(activation), sets_(activation.sets()) {}
    [[nodiscard]] bool isActive(const Container& container) const {
        return std::binary_search(sets_.begin(), sets_.end(), container.id) &&
               activation_.isActive(container);
    }

private:
    const Activation& activation_;
    std::vector<ContainerId> sets_;
};

void printFolders(Library& library, const std::vector<std::string>& folders) {
    if (folders.empty()) {
        warn("no folder is recorded; \"glyphora add FOLDER\" records one");
    }
    for (const std::string& folder : folders) {
        const LibraryCounts counts = library.counts(folder);
        std::string line = folder + ": " + textOf(counts);
        if (counts.problems != 0) {
            line += ", " + counted(counts.problems, "bad file");
        }
        printLine(line);
    }
}

void printContainers(Library& library, const Activation& activation) {
    const auto containers = library.containers();
    if (containers.empty()) {
        warn("the library is empty");
    }
    const ActiveStates states(activation);
    for (const Container& container : containers) {
        printLine(lineOf(container, states.isActive(container)));
    }
}

void printProblems(Library& library) {
    const auto problems = library.problems();
    if (problems.empty()) {
        warn("there are no problems");
    }
    std::for_each(problems.begin(), problems.end(), printLine);
}

void printAll(Library& library, const Activation& activation,
              const std::vector<std::string>& folders) {
    Json document = {{"folders", Json::array()},
                     {"containers", Json::array()},
                     {"problems", library.problems()}};
    for (const std::string& folder : folders) {
        Json item = {{"path", folder}};
        item.update(toJson(library.counts(folder)));
        document["folders"].push_back(std::move(item));
    }
    const ActiveStates states(activation);
    for (const Container& container : library.containers()) {
        const bool active = states.isActive(container);
        Json item = toJson(container);
        item.update({{"format", formatText(container)},
                     {"faces", container.faces},
                     {"active", active},
                     {"state", stateOf(container, active)},
                     {"away", container.away}});
        document["containers"].push_back(std::move(item));
    }
    printJson(document);
}

} // namespace

std::string printable(std::string_view text) {
    static constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        // U+0080 to U+009F, of which some terminals take orders too.
        const bool upper = byte == 0xC2 && i + 1 < text.size() &&
                           (static_cast<unsigned char>(text[i + 1]) & 0xE0U) == 0x80U;
        if (byte == '\n') {
            result += "\\n";
        } else if (byte == '\t') {
            result += "\\t";
        } else if (upper || byte < 0x20 || byte == 0x7F) {
            const auto code = upper ? static_cast<unsigned char>(text[++i]) : byte;
            result.append("\\x").append(1, digits[code >> 4U]).append(1, digits[code & 0xFU]);
        } else {
            result += text[i];
        }
    }
    return result;
}

std::string textOf(const LibraryCounts& counts) {
    return counted(counts.files, "font file") +
           (counts.away == 0 ? "" : " (" + std::to_string(counts.away) + " away)") + ", " +
           counted(counts.faces, "face") + ", " + counted(counts.containers, "container");
}

Json toJson(const LibraryCounts& counts) {
    return {{"files", counts.files},
            {"away", counts.away},
            {"faces", counts.faces},
            {"containers", counts.containers},
            {"badFiles", counts.problems}};
}

std::string formatText(const Container& container) {
    constexpr std::array texts = {"Type 1", "TrueType", "OpenType PostScript", "collection"};
    return container.format ? texts.at(static_cast<std::size_t>(*container.format)) : "";
}

std::string lineBegin(ContainerId id, const char* state) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%6s  %-8s  ", toText(id).c_str(), state);
    return text.data();
}

std::string called(const Container& container) {
    return container.name + " (container " + toText(container.id) + ", " + container.path() + ")";
}

std::string lineOf(const Container& container, bool active) {
    const std::string format = formatText(container);
    return lineBegin(container.id, stateOf(container, active)) + container.name +
           (format.empty() ? "" : ", " + format) +
           (container.faces == 0 ? "" : ", " + counted(container.faces, "face")) + ", " +
           container.path() + (active && container.away ? " (away)" : "");
}

Json toJson(const Container& container) {
    return {{"id", static_cast<std::int32_t>(container.id)},
            {"name", container.name},
            {"path", container.path()}};
}

void printLine(std::string_view text) {
    wipeProgress();
    std::puts(printable(text).c_str());
}

void warn(std::string_view text) {
    wipeProgress();
    std::fprintf(stderr, "glyphora: %s\n", printable(text).c_str());
}

void printJson(const nlohmann::ordered_json& document) {
    // Names of files need not be UTF-8.
    std::puts(
        document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
}

void printLibrary(Library& library, const Activation& activation,
                  const std::vector<std::string>& folders, Listing listing) {
    switch (listing) {
    case Listing::Folders:
        printFolders(library, folders);
        break;
    case Listing::Containers:
        printContainers(library, activation);
        break;
    case Listing::Problems:
        printProblems(library);
        break;
    case Listing::Json:
        printAll(library, activation, folders);
        break;
    }
}

} // namespace manager
