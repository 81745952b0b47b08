// SPDX-License-Identifier: MIT
// Printing faces that were searched for, and all that is known of one.
#include "manager/cli/searchops.h"

#include "manager/cli/arguments.h"
#include "manager/cli/containernames.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/report.h"
#include "manager/cli/tally.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>

namespace manager {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::array technologies = {"Type 1", "TrueType", "OpenType PostScript",
                                     "OpenType TrueType"};
constexpr std::array slants = {"upright", "italic", "oblique"};
constexpr std::array classes = {"",           "serif",  "slab serif", "sans serif",
                                "monospaced", "script", "decorative", "symbol"};

template <class Texts, class Value>
std::string textOf(const Texts& texts, Value value) {
    const auto place = static_cast<std::size_t>(value);
    return place < texts.size() ? texts[place] : "";
}

std::string pathOf(const FaceMatch& face) {
    return joinPath(face.folder, face.fileName);
}

std::string calledName(const FaceMatch& face) {
    return face.styleName.empty() ? face.familyName : face.familyName + " " + face.styleName;
}

std::string number(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%g", value);
    return text.data();
}

const char* stateOf(const FaceMatch& face, bool active) {
    return face.away ? "away" : active ? "active" : face.shownByDesktop ? "shown" : "inactive";
}

Json toJson(const FaceMatch& face, const char* state) {
    return {{"container", static_cast<std::int32_t>(face.container)},
            {"state", state},
            {"postScriptName", face.postScriptName},
            {"family", face.familyName},
            {"style", face.styleName},
            {"technology", textOf(technologies, face.type)},
            {"weight", face.style.weight},
            {"width", face.style.width},
            {"slant", textOf(slants, face.style.slant)},
            {"version", face.version},
            {"foundry", face.foundry},
            {"path", pathOf(face)}};
}

/// Whether containers are active, each looked at once.
class States {
public:
    States(Library& library, const Activation& activation)
        : library_(library), activation_(activation) {}
    const char* of(const FaceMatch& face) {
        const auto [entry, isNew] = active_.try_emplace(face.container);
        if (isNew) {
            const auto container = library_.container(face.container);
            entry->second = container && activation_.isActive(*container);
        }
        return stateOf(face, entry->second);
    }

private:
    Library& library_;
    const Activation& activation_;
    std::map<ContainerId, bool> active_;
};

std::string joined(const std::vector<std::string>& texts, const char* between = " ") {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : between) + text;
    }
    return all;
}

void printDetails(const FaceDetails& details, const char* state) {
    const auto& [match, face] = details;
    printLine(calledName(match) + " (container " + toText(match.container) + ", " + state + ")");
    const auto line = [](const char* title, const std::string& text) {
        if (!text.empty()) {
            printLine(std::string("  ") + title + ": " + text);
        }
    };
    line("PostScript name", face.postScriptName);
    line("full names", joined(face.fullNames, ", "));
    for (const faces::Name& name : face.names) {
        const std::string language = name.language.empty() ? "" : " (" + name.language + ")";
        line("name", name.family + ", " + name.style + language);
    }
    line("file", pathOf(match));
    line("technology", textOf(technologies, face.technology));
    line("weight, width, slant", number(face.style.weight) + ", " + number(face.style.width) +
                                     " %, " + textOf(slants, face.style.slant));
    line("classification", textOf(classes, face.classification));
    line("version", face.version);
    line("foundry", face.foundry);
    line("copyright", face.copyright);
    line("licence", face.licence);
    line("licence at", face.licenceLink);
    line("embedding", embeddingText(face.embedding));
    line("glyphs", std::to_string(face.glyphs));
    line("scripts", joined(face.scripts));
    line("languages", joined(face.languages));
    line("features", joined(face.features));
    for (const faces::Axis& axis : face.axes) {
        line("axis", axis.tag + " " + number(axis.minimum) + " to " + number(axis.maximum) +
                         ", from " + number(axis.initial));
    }
}

} // namespace

std::string embeddingText(std::optional<std::uint16_t> flags) {
    if (!flags) {
        return "not told";
    }
    // The least restrictive of several bits holds.
    std::string text = (*flags & 8U) != 0   ? "editable"
                       : (*flags & 4U) != 0 ? "preview and print"
                       : (*flags & 2U) != 0 ? "restricted: none without the owner's permission"
                                            : "installable: anything";
    if ((*flags & 0x100U) != 0) {
        text += ", no subsetting";
    }
    if ((*flags & 0x200U) != 0) {
        text += ", bitmaps only";
    }
    return text;
}

Json toJson(const FaceDetails& details, const char* state) {
    const auto& [match, face] = details;
    Json document = toJson(match, state);
    document["fullNames"] = face.fullNames;
    document["names"] = Json::array();
    for (const faces::Name& name : face.names) {
        document["names"].push_back(
            {{"family", name.family}, {"style", name.style}, {"language", name.language}});
    }
    document["index"] = face.index;
    document["classification"] = textOf(classes, face.classification);
    document["monospaced"] = face.monospaced;
    document["symbolic"] = face.symbolic;
    document["colour"] = face.colour;
    document["copyright"] = face.copyright;
    document["licence"] = face.licence;
    document["licenceLink"] = face.licenceLink;
    document["embedding"] = face.embedding ? Json(*face.embedding) : Json(nullptr);
    document["embeddingText"] = embeddingText(face.embedding);
    document["glyphs"] = face.glyphs;
    document["scripts"] = face.scripts;
    document["languages"] = face.languages;
    document["features"] = face.features;
    document["axes"] = Json::array();
    for (const faces::Axis& axis : face.axes) {
        document["axes"].push_back({{"tag", axis.tag},
                                    {"name", axis.name},
                                    {"minimum", axis.minimum},
                                    {"initial", axis.initial},
                                    {"maximum", axis.maximum}});
    }
    return document;
}

int searchCommand(const Places& places, const FaceQuery& query, bool json) {
    Tally tally(json, "faces");
    const auto library = openScanned(places);
    const Activation activation(places);
    const auto reading = library->reading();
    States states(*library, activation);
    const FoundFaces found = library->search(query);
    for (const FaceMatch& face : found.faces) {
        const char* state = states.of(face);
        tally.add(toText(face.container) + "  " + state + "  " + calledName(face) + ", " +
                      textOf(technologies, face.type) + ", " + pathOf(face),
                  toJson(face, state));
    }
    tally.set("total", found.total);
    if (!json && found.total > query.offset + found.faces.size()) {
        printLine(std::to_string(found.total) + " in all; --limit shows more");
    }
    return tally.finish();
}

int infoCommand(const Places& places, const std::vector<std::string>& names, bool json) {
    Tally tally(json, "faces");
    const Activation activation(places);
    ContainerNames finder(
        places, activation, [&] { return openScanned(places); }, tally);
    for (const Container& container : finder.find(names)) {
        auto faces = finder.library().faces(container.id);
        // Who names a face wants to know of that one.
        const auto isNamed = [&](const FaceDetails& details) {
            return std::find(names.begin(), names.end(), details.face.postScriptName) !=
                   names.end();
        };
        if (std::any_of(faces.begin(), faces.end(), isNamed)) {
            std::erase_if(faces, [&](const FaceDetails& details) { return !isNamed(details); });
        }
        const bool active = activation.isActive(container);
        for (const FaceDetails& details : faces) {
            const char* state = stateOf(details.match, active);
            if (!json) {
                printDetails(details, state);
            }
            tally.addQuietly(toJson(details, state));
        }
    }
    return tally.finish();
}

int duplicatesCommand(const Places& places, bool json) {
    Tally tally(json, "duplicates");
    const auto library = openScanned(places);
    for (const auto& copies : library->duplicates()) {
        Json files = Json::array();
        std::string text = counted(copies.size(), "file") + " of " +
                           counted(copies.front().size, "byte") + " are the same:";
        for (const FileCopy& copy : copies) {
            text += " " + copy.path;
            files.push_back(
                {{"path", copy.path}, {"container", static_cast<std::int32_t>(copy.container)}});
        }
        tally.add(text, {{"size", copies.front().size}, {"files", std::move(files)}});
    }
    return tally.finish();
}

} // namespace manager
