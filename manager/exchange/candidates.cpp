// SPDX-License-Identifier: MIT
// Grouping and ranking of what a look-up found.
#include "manager/exchange/candidates.h"

#include "manager/library/samefile.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <tuple>
#include <utility>

namespace manager {

namespace {

int typeRank(faces::Technology type) {
    switch (type) {
    case faces::Technology::OpenTypePostScript:
    case faces::Technology::OpenTypeTrueType:
        return 0;
    case faces::Technology::TrueType:
        return 1;
    case faces::Technology::Type1:
        break;
    }
    return 2;
}

const char* technology(faces::Technology type) {
    switch (type) {
    case faces::Technology::Type1:
        return "PostScript";
    case faces::Technology::TrueType:
        return "TrueType";
    case faces::Technology::OpenTypePostScript:
        return "OpenType PostScript";
    case faces::Technology::OpenTypeTrueType:
        break;
    }
    return "OpenType TrueType";
}

std::string lineOf(const Candidate& candidate, bool withVersion, bool withFoundry) {
    const FaceMatch& face = candidate.face;
    const std::int64_t styles = candidate.container.faces;
    std::string text = face.familyName;
    if (!face.styleName.empty()) {
        text.append(" ").append(face.styleName);
    }
    text.append(" — ");
    if (!candidate.reason.empty()) {
        text.append(faces::lineOf(candidate.reason)).append("; ");
    }
    text.append(technology(face.type)).append(", ");
    if (withVersion && !face.version.empty()) {
        text.append("version ").append(face.version).append(", ");
    }
    if (withFoundry && !face.foundry.empty()) {
        text.append(face.foundry).append(", ");
    }
    text.append(std::to_string(styles)).append(styles == 1 ? " style, " : " styles, ");
    return text.append(candidate.container.path());
}

bool isBetter(const Candidate& a, const Candidate& b) {
    const auto key = [](const Candidate& candidate) {
        return std::make_tuple(
            !candidate.active, !candidate.typeMatches, -std::int64_t{candidate.face.revision},
            typeRank(candidate.face.type), -candidate.container.faces, candidate.container.id);
    };
    return key(a) < key(b);
}

} // namespace

faces::Wanted wantedOf(const CommandFont& font) {
    return {font.postScriptName.value_or(""), font.familyName.value_or(""),
            font.styleName.value_or("")};
}

const Candidate* Finding::decided(const CommandFont& font) const {
    if (exact.size() == 1) {
        return &exact.front();
    }
    const Candidate* only = nullptr;
    for (const Candidate& candidate : exact) {
        if (font.type && candidate.typeMatches) {
            if (only != nullptr) {
                return nullptr;
            }
            only = &candidate;
        }
    }
    return only;
}

Finding CandidateFinder::find(const CommandFont& font) {
    LookUp lookUp(families_, wantedOf(font));
    Finding finding;
    std::vector<FaceMatch> exact;
    for (const faces::Match& match : lookUp.run()) {
        if (faces::isExact(match.ground)) {
            exact.push_back(lookUp.face(match));
        } else if (!addNear(finding, font, lookUp.face(match), match.reason)) {
            break;
        }
    }
    finding.exact = holders(font, std::move(exact));
    return finding;
}

bool CandidateFinder::addNear(Finding& finding, const CommandFont& font, FaceMatch face,
                              const faces::Remarks& reason) {
    constexpr std::size_t most = 5;
    if (finding.near.size() == most) {
        return false;
    }
    auto near = candidate(font, std::move(face));
    if (std::none_of(finding.near.begin(), finding.near.end(), [&](const Candidate& of) {
            return of.container.id == near.container.id || haveSameBytes(of.face, near.face);
        })) {
        near.reason = reason;
        finding.near.push_back(std::move(near));
    }
    return true;
}

std::vector<Candidate> CandidateFinder::holders(const CommandFont& font,
                                                std::vector<FaceMatch> faces) {
    std::vector<Candidate> found;
    found.reserve(faces.size());
    for (FaceMatch& face : faces) {
        found.push_back(candidate(font, std::move(face)));
    }
    std::sort(found.begin(), found.end(), isBetter);
    std::vector<Candidate> different;
    MetFiles met;
    std::set<ContainerId> containers;
    for (Candidate& one : found) {
        if (!containers.contains(one.container.id) && met.isNew(one.face)) {
            containers.insert(one.container.id);
            different.push_back(std::move(one));
        }
    }
    return different;
}

Candidate CandidateFinder::candidate(const CommandFont& font, FaceMatch face) {
    Candidate candidate{std::move(face), {}};
    candidate.container = std::move(candidate.face.holder);
    candidate.active = candidate.face.shownByDesktop;
    if (const auto& set = setOf(candidate.container); set && !candidate.active) {
        candidate.active = activation_.holds(
            *set, {joinPath(candidate.face.folder, candidate.face.fileName), candidate.face.stamp});
    }
    candidate.typeMatches = !font.type || *font.type == candidate.face.type;
    return candidate;
}

std::vector<DesktopFace> CandidateFinder::shown(const CommandFont& font,
                                                const std::vector<Candidate>& candidates) {
    std::vector<DesktopFace> faces = activation_.desktop().find(font.postScriptName.value_or(""));
    std::set<std::string> names{font.postScriptName.value_or("")};
    for (const Candidate& candidate : candidates) {
        if (names.insert(candidate.face.postScriptName).second) {
            const auto& more = activation_.desktop().find(candidate.face.postScriptName);
            faces.insert(faces.end(), more.begin(), more.end());
        }
    }
    std::set<std::string> own;
    for (const Candidate& candidate : candidates) {
        own.insert(activation_.folder(candidate.container.id));
    }
    std::erase_if(faces,
                  [&](const DesktopFace& face) { return own.contains(folderOf(face.file)); });
    return faces;
}

const std::optional<SetRecord>& CandidateFinder::setOf(const Container& container) {
    const auto [entry, isNew] = sets_.try_emplace(static_cast<std::int32_t>(container.id));
    if (isNew) {
        entry->second = activation_.setOf(container);
    }
    return entry->second;
}

std::vector<std::string> CandidateFinder::describe(const std::vector<Candidate>& candidates) {
    const auto differ = [&](auto&& of) {
        return std::any_of(candidates.begin(), candidates.end(), [&](const Candidate& one) {
            return of(one.face) != of(candidates.front().face);
        });
    };
    const bool byVersion =
        differ([](const FaceMatch& face) { return std::string_view(face.version); });
    const bool byFoundry =
        differ([](const FaceMatch& face) { return std::string_view(face.foundry); });
    std::vector<std::string> lines;
    lines.reserve(candidates.size());
    for (const Candidate& candidate : candidates) {
        lines.push_back(lineOf(candidate, byVersion, byFoundry));
    }
    return lines;
}

} // namespace manager
