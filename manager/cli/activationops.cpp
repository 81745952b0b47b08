// SPDX-License-Identifier: MIT
// Activation by hand, through the same folders on disk that the server uses.
#include "manager/cli/activationops.h"
#include "faces/namekey.h"

#include "manager/activation/activation.h"
#include "manager/cli/announce.h"
#include "manager/cli/arguments.h"
#include "manager/cli/history.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/report.h"
#include "manager/exchange/candidates.h"
#include "manager/library/error.h"
#include "manager/library/folders.h"

#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <thread>

namespace manager {

namespace {

using Json = nlohmann::ordered_json;

ContainerId resolve(Library& library, const Activation& activation, const std::string& name) {
    CandidateFinder finder(library, activation);
    if (const auto id = toContainerId(name)) {
        if (!finder.container(*id)) {
            throw Error("container " + name + ": not in the library");
        }
        return *id;
    }
    CommandFont font;
    font.postScriptName = name;
    if (const auto candidates = finder.find(font); !candidates.empty()) {
        return candidates.front().container.id;
    }
    const auto families = library.findContainers(name);
    if (families.empty()) {
        throw Error(name + ": no container, PostScript name or family of the library");
    }
    if (families.size() > 1) {
        std::string text = name + ": in several containers, give the number of one:";
        for (const ContainerId id : families) {
            text += " " + toText(id);
        }
        throw Error(text);
    }
    return families.front();
}

std::vector<ContainerId> resolveActive(const Places& places, const Activation& activation,
                                       const std::string& name) {
    if (const auto id = toContainerId(name)) {
        return {*id};
    }
    std::vector<ContainerId> ids;
    for (const ActiveContainer& container : activation.active(warn)) {
        if (faces::nameKey(container.name) == faces::nameKey(name)) {
            ids.push_back(container.id);
        }
    }
    if (ids.empty()) {
        // A collection goes by the name of its file; its families only the library knows.
        const auto library = openScanned(places);
        for (const ContainerId id : library->findContainers(name)) {
            if (const auto container = library->container(id);
                container && activation.isActive(*container)) {
                ids.push_back(id);
            }
        }
    }
    if (ids.empty()) {
        throw Error(name + ": no active container of this name");
    }
    return ids;
}

int finish(const Places& places, Activation& activation,
           const std::vector<ActivationOutcome>& outcomes, const std::vector<std::string>& texts) {
    int status = exitSuccess;
    bool changed = false;
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        const ActivationOutcome& outcome = outcomes[i];
        const bool success = outcome.success;
        changed = changed || outcome.changed;
        for (const std::string& problem : outcome.problems) {
            warn(problem);
            if (!success || outcome.postponed) {
                recordDeed(places, success ? Deed::Undecided : Deed::Failed, problem);
            }
        }
        if ((success && !outcome.postponed) || outcome.changed) { // also what was done in part
            recordDeed(places, Deed::Done, texts[i]);
            printLine(texts[i]);
        }
        if (!success) {
            status = exitFailure;
        }
    }
    std::fflush(stdout);
    if (changed) {
        postLibraryChanged();
    }
    if (activation.isUnsettled()) { // also by what was put in place and taken away again
        std::this_thread::sleep_for(std::chrono::milliseconds(1100));
        activation.settle();
    }
    return status;
}

} // namespace

int activateCommand(const Places& places, const std::vector<std::string>& names) {
    const auto library = openScanned(places);
    Activation activation(places);
    std::vector<ContainerFonts> fonts;
    std::vector<std::string> texts;
    std::set<ContainerId> named;
    for (const std::string& name : names) {
        const ContainerId id = resolve(*library, activation, name);
        const auto container = library->container(id);
        if (!container || !named.insert(id).second) {
            continue;
        }
        fonts.push_back({id, container->name, library->files(id)});
        texts.push_back("activated " + container->name + " (container " + toText(id) + ", " +
                        container->path() + ")");
    }
    return finish(places, activation, activation.activate(fonts), texts);
}

int deactivateCommand(const Places& places, const std::vector<std::string>& names) {
    Activation activation(places);
    std::vector<ContainerId> ids;
    if (names.empty()) {
        for (const ActiveContainer& container : activation.active(warn)) {
            ids.push_back(container.id);
        }
    }
    std::set<ContainerId> known(ids.begin(), ids.end());
    for (const std::string& name : names) {
        for (const ContainerId id : resolveActive(places, activation, name)) {
            if (known.insert(id).second) {
                ids.push_back(id);
            }
        }
    }
    std::vector<std::string> texts;
    texts.reserve(ids.size());
    for (const ContainerId id : ids) {
        texts.push_back("deactivated container " + toText(id));
    }
    return finish(places, activation, activation.deactivate(ids), texts);
}

int statusCommand(const Places& places, bool json) {
    const auto library = openScanned(places);
    const Activation activation(places);
    const auto server = findServer();
    const auto folders = readFolders(places);
    const LibraryCounts counts = library->counts("/");
    const auto active = activation.active(warn);
    if (json) {
        Json document = {{"server", server ? Json(*server) : Json(nullptr)},
                         {"folders", folders.size()},
                         {"files", counts.files},
                         {"faces", counts.faces},
                         {"containers", counts.containers},
                         {"badFiles", counts.problems},
                         {"active", Json::array()}};
        for (const ActiveContainer& container : active) {
            document["active"].push_back({{"id", static_cast<std::int32_t>(container.id)},
                                          {"name", container.name},
                                          {"files", container.files}});
        }
        printJson(document);
        return exitSuccess;
    }
    std::printf("server: %s\n",
                server ? ("running, process " + std::to_string(*server)).c_str() : "not running");
    std::printf("library: %s, %s, %s, %s\n", counted(folders.size(), "folder").c_str(),
                counted(counts.files, "font file").c_str(), counted(counts.faces, "face").c_str(),
                counted(counts.containers, "container").c_str());
    std::printf("active: %s\n", counted(active.size(), "container").c_str());
    for (const ActiveContainer& container : active) {
        std::printf("%6s  %s, %s\n", toText(container.id).c_str(),
                    printable(container.name).c_str(), counted(container.files, "file").c_str());
    }
    return exitSuccess;
}

int historyCommand(const Places& places, bool all, bool json) {
    const auto entries = readHistory(places, all);
    if (!json) {
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
