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
        std::puts(line.c_str());
    }
}

void printContainers(Library& library, const Activation& activation) {
    for (const Container& container : library.containers()) {
        std::printf("%6s  %-8s  %s, %s, %s\n", toText(container.id).c_str(),
                    activation.isActive(container) ? "active" : "inactive", container.name.c_str(),
                    counted(container.faces, "face").c_str(), container.path().c_str());
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

void warn(const std::string& text) {
    std::fprintf(stderr, "glyphora: %s\n", text.c_str());
}

std::string counted(std::int64_t number, std::string_view noun) {
    return std::to_string(number) + " " + std::string(noun) + (number == 1 ? "" : "s");
}

void printJson(const nlohmann::ordered_json& document) {
    // Names of files need not be UTF-8.
    std::puts(
        document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
}

void printLibrary(Library& library, const Activation& activation,
                  const std::vector<std::string>& folders, Listing listing) {
    switch (listing) {
    case Listing::folders:
        printFolders(library, folders);
        break;
    case Listing::containers:
        printContainers(library, activation);
        break;
    case Listing::json:
        printAll(library, activation, folders);
        break;
    }
}

} // namespace manager
