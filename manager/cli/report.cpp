// SPDX-License-Identifier: MIT
// Printing the library as text and as JSON.
#include "manager/cli/report.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace manager {

namespace {

void printFolders(Library& library, const std::vector<std::string>& folders) {
    for (const std::string& folder : folders) {
        const LibraryCounts counts = library.counts(folder);
        std::string line = folder + ": " + counted(counts.files, "font file") + ", " +
                           counted(counts.faces, "face") + ", " +
                           counted(counts.containers, "container");
        if (counts.problems != 0) {
            line += ", " + counted(counts.problems, "bad file");
        }
        printLine(line);
    }
}

void printContainers(Library& library, const Activation& activation) {
    for (const Container& container : library.containers()) {
        std::printf("%6s  %-8s  %s, %s, %s\n", toText(container.id).c_str(),
                    activation.isActive(container) ? "active" : "inactive",
                    printable(container.name).c_str(), counted(container.faces, "face").c_str(),
                    printable(container.path()).c_str());
    }
}

void printAll(Library& library, const Activation& activation,
              const std::vector<std::string>& folders) {
    using Json = nlohmann::ordered_json;
    Json document = {{"folders", Json::array()},
                     {"containers", Json::array()},
                     {"problems", library.problems()}};
    for (const std::string& folder : folders) {
        const LibraryCounts counts = library.counts(folder);
        document["folders"].push_back({{"path", folder},
                                       {"files", counts.files},
                                       {"faces", counts.faces},
                                       {"containers", counts.containers},
                                       {"badFiles", counts.problems}});
    }
    for (const Container& container : library.containers()) {
        document["containers"].push_back({{"id", static_cast<std::int32_t>(container.id)},
                                          {"name", container.name},
                                          {"path", container.path()},
                                          {"faces", container.faces},
                                          {"active", activation.isActive(container)}});
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

void printLine(std::string_view text) {
    std::puts(printable(text).c_str());
}

void warn(std::string_view text) {
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
        for (const std::string& problem : library.problems()) {
            printLine(problem);
        }
        break;
    case Listing::Json:
        printAll(library, activation, folders);
        break;
    }
}

} // namespace manager
