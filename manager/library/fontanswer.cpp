// SPDX-License-Identifier: MIT
// Outcomes to field lines and back.
#include "manager/library/fontanswer.h"

#include "manager/library/fields.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <variant>
#include <vector>

namespace manager {

namespace {

constexpr std::string_view lastingWord = "lasting";
constexpr std::string_view passingWord = "passing";

// Fields of a face, read or refused.
bool readFace(std::vector<std::string>& fields, faces::FontFileContents& contents) {
    const auto index = toNumber<std::uint32_t>(fields[1]);
    const auto type = toNumber<std::uint8_t>(fields[2]);
    if (!index || !type || *type > static_cast<std::uint8_t>(faces::Technology::OpenTypeTrueType)) {
        return false;
    }
    faces::Face& face = contents.faces.emplace_back();
    face.index = *index;
    face.technology = static_cast<faces::Technology>(*type);
    face.postScriptName = std::move(fields[3]);
    return true;
}

bool readLine(std::vector<std::string>& fields, faces::FontFileContents& contents) {
    const std::string& kind = fields.front();
    if (kind == "file" && fields.size() == 2) {
        contents.collection = fields[1] == "1";
        return true;
    }
    if (kind == "face" && fields.size() == 4) {
        return readFace(fields, contents);
    }
    if (kind == "name" && fields.size() == 3 && !contents.faces.empty()) {
        contents.faces.back().names.push_back({std::move(fields[1]), std::move(fields[2]), {}});
        return true;
    }
    return false;
}

} // namespace

std::string encodeAnswer(const FontFileOutcome& outcome) {
    if (const auto* problem = std::get_if<FontFileProblem>(&outcome)) {
        const std::string_view word = problem->lasting ? lastingWord : passingWord;
        return joinFields({"problem", word, problem->text}) + "\n";
    }
    const auto& contents = std::get<faces::FontFileContents>(outcome);
    std::string text = joinFields({"file", contents.collection ? "1" : "0"});
    for (const faces::Face& face : contents.faces) {
        text +=
            joinFields({"face", std::to_string(face.index),
                        std::to_string(static_cast<int>(face.technology)), face.postScriptName});
        for (const faces::Name& name : face.names) {
            text += joinFields({"name", name.family, name.style});
        }
    }
    return text + "\n";
}

std::optional<FontFileOutcome> decodeAnswer(std::string_view answer) {
    if (!answer.ends_with("\n\n")) {
        return std::nullopt;
    }
    answer.remove_suffix(1);
    faces::FontFileContents contents;
    for (const std::string_view line : splitLines(answer)) {
        auto fields = splitFields(line);
        if (!fields) {
            return std::nullopt;
        }
        if (fields->front() == "problem" && fields->size() == 3) {
            return FontFileProblem{std::move((*fields)[2]), (*fields)[1] == lastingWord};
        }
        if (!readLine(*fields, contents)) {
            return std::nullopt;
        }
    }
    const bool named = std::all_of(contents.faces.begin(), contents.faces.end(),
                                   [](const faces::Face& face) { return !face.names.empty(); });
    if (contents.faces.empty() || !named) {
        return std::nullopt;
    }
    return contents;
}

} // namespace manager
