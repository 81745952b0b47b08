// SPDX-License-Identifier: MIT
// What runs, what is active, and what was done.
#include "manager/cli/statusops.h"

#include "manager/activation/activation.h"
#include "manager/cli/announce.h"
#include "manager/cli/arguments.h"
#include "manager/cli/history.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/report.h"
#include "manager/library/folders.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <nlohmann/json.hpp>

namespace manager {

namespace {

using Json = nlohmann::ordered_json;

std::vector<std::string> reasonTexts(const ActiveContainer& container) {
    if (container.reasons.empty()) {
        return {"leaving"}; // the server has not come to it yet, or none is running
    }
    std::vector<std::string> texts;
    std::transform(container.reasons.begin(), container.reasons.end(), std::back_inserter(texts),
                   describe);
    return texts;
}

/// Where the fonts of an active container are.
struct Origin {
    bool away = false;
    bool gone = false; ///< the library has none of them any more
};

Origin originOf(Library& library, ContainerId id) {
    const auto container = library.container(id);
    return {container && container->away, !container};
}

} // namespace

int statusCommand(const Places& places, bool json) {
    const auto library = openScanned(places);
    const Activation activation(places);
    const auto server = findServer();
    const auto folders = readFolders(places);
    const LibraryCounts counts = library->counts("/");
    const auto active = activation.active(warn);
    if (json) {
        Json document = {{"server", server ? Json(*server) : Json(nullptr)},
                         {"folders", folders.size()}};
        document.update(toJson(counts));
        document["active"] = Json::array();
        for (const ActiveContainer& container : active) {
            const auto [away, gone] = originOf(*library, container.id);
            document["active"].push_back({{"id", static_cast<std::int32_t>(container.id)},
                                          {"name", container.name},
                                          {"files", container.files.size()},
                                          {"reasons", reasonTexts(container)},
                                          {"away", away},
                                          {"gone", gone}});
        }
        printJson(document);
        return exitSuccess;
    }
    std::printf("server: %s\n",
                server ? ("running, process " + std::to_string(*server)).c_str() : "not running");
    std::printf("library: %s, %s\n", counted(folders.size(), "folder").c_str(),
                textOf(counts).c_str());
    std::printf("active: %s\n", counted(active.size(), "container").c_str());
    for (const ActiveContainer& container : active) {
        std::string line = container.name + ", " + counted(container.files.size(), "file");
        for (const std::string& reason : reasonTexts(container)) {
            line += ", " + reason;
        }
        const auto [away, gone] = originOf(*library, container.id);
        line += away ? " (away)" : gone ? " (gone from the library)" : "";
        std::printf("%6s  %s\n", toText(container.id).c_str(), printable(line).c_str());
    }
    return exitSuccess;
}

int historyCommand(const Places& places, bool all, bool json) {
    const auto entries = readHistory(places, all);
    if (!json) {
        if (entries.empty()) {
            warn("nothing was done yet");
        }
        for (const PastDeed& entry : entries) {
            printLine(lineText(entry));
        }
        return exitSuccess;
    }
    Json document = Json::array();
    for (const auto& [seconds, deed, text] : entries) {
        document.push_back({{"time", isoTime(seconds)}, {"deed", deed}, {"text", text}});
    }
    printJson(document);
    return exitSuccess;
}

} // namespace manager
