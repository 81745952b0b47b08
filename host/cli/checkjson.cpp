// SPDX-License-Identifier: MIT
// A check's report for programs.
#include "host/cli/checkcommand.h"
#include "host/documents/utf8.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <iterator>

namespace host {

namespace {

using Json = nlohmann::ordered_json;

std::string lineOfJson(const Json& json) {
    // Paths and names may hold any bytes.
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json jsonOfFont(const FaceFile& font) {
    constexpr unsigned instanceBits = 16;
    return {{"name", font.name},
            {"file", font.file},
            {"index", font.index & 0xFFFFU},
            {"instance", font.index >> instanceBits}};
}

Json jsonOf(const std::optional<Substitute>& substitute) {
    if (!substitute) {
        return {};
    }
    Json json = jsonOfFont(substitute->face);
    json["family"] = substitute->family;
    json["listed"] = substitute->listed;
    json["sameMetrics"] = substitute->sameMetrics;
    return json;
}

Json jsonOfAsked(const Face& face) {
    constexpr std::array<const char*, 3> slants{"normal", "italic", "oblique"};
    return {{"family", face.family},
            {"style", face.style},
            {"weight", face.weight},
            {"stretch", face.stretch},
            {"slant", slants[static_cast<std::size_t>(face.slant)]}};
}

std::string textOf(char32_t character) {
    std::string text;
    appendUtf8(text, character);
    return text;
}

Json jsonOfFace(const CheckedFace& face) {
    Json json = jsonOfAsked(face.use.face);
    json["laterFamilies"] = face.use.laterFamilies;
    json["postScriptName"] = face.postScriptName;
    json["state"] = textOf(face.state);
    json["font"] = face.font ? jsonOfFont(*face.font) : Json();
    json["drawnIn"] = jsonOf(face.drawnIn);
    std::string lacking;
    for (const char32_t character : face.lackingCharacters) {
        lacking += textOf(character);
    }
    json["lackingCharacters"] = lacking;
    json["runs"] = face.use.runs;
    Json& places = json["places"] = Json::array();
    for (const TextPlace& place : face.use.places) {
        places.push_back(
            {{"layer", place.layer}, {"element", place.element}, {"words", place.words}});
    }
    return json;
}

} // namespace

std::string jsonOfChecked(const CheckedDrawing& drawing) {
    Json json{{"file", drawing.file}, {"opened", drawing.error.empty()}};
    if (!drawing.error.empty()) {
        json["error"] = drawing.error;
        return lineOfJson(json);
    }
    json["missesFonts"] = drawing.missesFonts();
    json["lacksCharacters"] = drawing.lacksCharacters();
    Json& faces = json["faces"] = Json::array();
    std::transform(drawing.faces.begin(), drawing.faces.end(), std::back_inserter(faces),
                   jsonOfFace);
    return lineOfJson(json);
}

std::string jsonOfSummary(const CheckSummary& summary) {
    Json missing = Json::array();
    for (const CheckSummary::MissingFace& face : summary.missing) {
        Json json = jsonOfAsked(face.face);
        json["drawings"] = face.drawings;
        json["runs"] = face.runs;
        json["drawnIn"] = jsonOf(face.drawnIn);
        missing.push_back(std::move(json));
    }
    Json lacking = Json::array();
    for (const auto& [character, drawings] : summary.lackingCharacters) {
        lacking.push_back({{"character", textOf(character)}, {"drawings", drawings}});
    }
    return lineOfJson({{"summary",
                        {{"drawings", summary.drawings},
                         {"unreadable", summary.unreadable},
                         {"complete", summary.complete},
                         {"missing", std::move(missing)},
                         {"lackingCharacters", std::move(lacking)}}}});
}

} // namespace host
