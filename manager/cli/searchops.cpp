// SPDX-License-Identifier: MIT
// Printing faces that were searched for, and all that is known of one.
#include "manager/cli/searchops.h"

#include "manager/cli/arguments.h"
#include "manager/cli/containernames.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/report.h"
#include "manager/cli/tally.h"
#include "manager/exchange/likesearch.h"
#include "manager/view/facefacts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>
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

Json toJson(const FaceMatch& face, const char* state) {
    return {{"container", static_cast<std::int32_t>(face.container)},
            {"state", state},
            {"away", face.away},
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

/// Whether faces are active; the set of each container is looked at once.
class States {
public:
    explicit States(const Activation& activation) : activation_(activation) {}
    const char* of(const FaceMatch& face, const Container& holder) {
        const auto [entry, isNew] = names_.try_emplace(face.container);
        if (const auto set = isNew ? activation_.setOf(holder) : std::nullopt) {
            for (const SetFile& file : set->files) {
                entry->second.insert(file.name);
            }
        }
        return stateOf(face, entry->second.contains(face.fileName));
    }

private:
    const Activation& activation_;
    std::map<ContainerId, std::set<std::string>> names_; ///< of active files
};

std::string joined(const std::vector<std::string>& texts, const char* between = " ") {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : between) + text;
    }
    return all;
}

// That the font can be seen and its folder not.
std::string awayText(const FaceMatch& face, std::string_view state) {
    return face.away && state == "active" ? " (away)" : "";
}

// Which of the things that were asked for nothing has.
void tellUnknown(Library& library, const FaceQuery& query, Tally& tally) {
    const struct {
        const char* option;
        SharedKind kind;
        const std::vector<std::string>& wanted;
    } all[] = {{"--script", SharedKind::Scripts, query.scripts},
               {"--language", SharedKind::Languages, query.languages},
               {"--feature", SharedKind::Features, query.features},
               {"--axis", SharedKind::Axes, query.axes}};
    for (const auto& [option, kind, wanted] : all) {
        const auto known = wanted.empty() ? std::set<std::string>() : library.tags(kind);
        for (const std::string& tag : wanted) {
            if (!known.contains(tag)) {
                tally.fail(std::string(option) + ": no face has '" + tag + "'; there " +
                           (known.empty() ? "are none at all"
                                          : "are " + joined({known.begin(), known.end()})));
            }
        }
    }
    if (!query.folder.empty() && library.counts(query.folder).files == 0) {
        tally.fail(query.folder + ": no font of the library lies there");
    }
}

// Some fonts carry a whole licence.
std::string shortened(const std::string& text) {
    constexpr std::size_t longest = 300;
    if (text.size() <= longest) {
        return text;
    }
    return text.substr(0, text.rfind(' ', longest)) + " ... (--json shows all of it)";
}

void printDetails(const FaceDetails& details, const char* state) {
    const auto& [match, face] = details;
    printLine(calledName(match) + " (container " + toText(match.container) + ", " + state +
              awayText(match, state) + ")");
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
    line("licence", shortened(face.licence));
    line("licence at", face.licenceLink);
    line("embedding", embeddingWords(face.embedding));
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
    document["embeddingText"] = embeddingWords(face.embedding);
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

int searchCommand(const Places& places, FaceQuery query, const std::optional<std::string>& similar,
                  bool json) {
    Tally tally(json, "faces");
    const auto library = openScanned(places);
    if (!query.folder.empty()) {
        query.folder = placeInLibrary(*library, query.folder);
    }
    const Activation activation(places);
    const auto reading = library->reading();
    States states(activation);
    const auto tell = [&](const FaceMatch& face, const std::string& differences, const Json& more) {
        const char* state = states.of(face, face.holder);
        Json item = toJson(face, state);
        item.update(more);
        tally.add(lineBegin(face.container, state) + calledName(face) + differences +
                      textOf(technologies, face.type) + ", " + pathOf(face) + awayText(face, state),
                  std::move(item));
    };
    std::size_t total = 0;
    if (!similar) {
        const FoundFaces found = library->search(query);
        total = found.total;
        for (const FaceMatch& face : found.faces) {
            tell(face, ", ", Json::object());
        }
    } else {
        const FaceDetails model = findNamedFace(*library, activation, *similar);
        const AllAlike found = searchAlike(*library, model, query);
        total = found.total;
        if (!json) {
            printLine("like " + calledName(model.match) + ", " + pathOf(model.match) + ":");
        }
        tally.set("similarTo", {{"postScriptName", model.match.postScriptName},
                                {"family", model.match.familyName},
                                {"style", model.match.styleName},
                                {"path", pathOf(model.match)}});
        for (const auto& [face, distance, differences] : found.faces) {
            tell(face, " — " + (differences.empty() ? "hardly differs" : differences) + "; ",
                 {{"distance", std::round(double{distance} * 100) / 100},
                  {"differences", differences}});
        }
    }
    tally.set("total", total);
    if (total == 0) {
        tellUnknown(*library, query, tally);
    } else if (!json && total > query.offset + tally.size()) {
        printLine(std::to_string(total) + " in all; --limit shows more");
    }
    const int status = tally.finish(total == 0 ? "nothing found" : nullptr);
    return total == 0 ? exitFailure : status;
}

int infoCommand(const Places& places, const std::vector<std::string>& names, bool json) {
    Tally tally(json, "faces");
    const Activation activation(places);
    States states(activation);
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
        const auto files = finder.library().files(container.id);
        for (const FaceDetails& details : faces) {
            const bool spare =
                std::none_of(files.begin(), files.end(), [&](const LibraryFile& file) {
                    return file.path == pathOf(details.match);
                });
            const char* state = states.of(details.match, container);
            if (spare && state == std::string_view("inactive")) {
                state = "spare";
            }
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
    return tally.finish("no two files have the same bytes");
}

} // namespace manager
