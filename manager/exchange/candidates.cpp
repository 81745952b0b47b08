// SPDX-License-Identifier: MIT
// Grouping and ranking of what a look-up found.
#include "manager/exchange/candidates.h"

#include <algorithm>
#include <tuple>

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

bool isBetter(const Candidate& a, const Candidate& b) {
    const auto key = [](const Candidate& candidate) {
        return std::make_tuple(!candidate.active, !candidate.typeMatches,
                               typeRank(candidate.face.type), -candidate.container.faces,
                               candidate.container.id);
    };
    return key(a) < key(b);
}

} // namespace

std::vector<Candidate> CandidateFinder::find(const CommandFont& font) {
    std::vector<FaceMatch> faces;
    if (font.postScriptName) {
        faces = library_.findByPostScriptName(*font.postScriptName);
    }
    if (faces.empty() && font.familyName && !font.familyName->empty()) {
        faces = library_.findByFamilyAndStyle(*font.familyName, font.styleName.value_or(""));
    }
    std::vector<Candidate> found;
    for (FaceMatch& face : faces) { // those of one container stand together
        const auto& [container, activeFiles] = holder(face.container);
        if (!container) {
            continue;
        }
        Candidate candidate{std::move(face), *container, false, true};
        candidate.active = activeFiles.contains(candidate.face.fileName);
        candidate.typeMatches = !font.type || *font.type == candidate.face.type;
        if (found.empty() || found.back().container.id != container->id) {
            found.push_back(std::move(candidate));
        } else if (isBetter(candidate, found.back())) {
            found.back() = std::move(candidate);
        }
    }
    std::sort(found.begin(), found.end(), isBetter);
    return found;
}

std::vector<DesktopFace> CandidateFinder::shown(const CommandFont& font,
                                                const std::vector<Candidate>& candidates) {
    std::vector<DesktopFace> faces = desktop_.find(font.postScriptName.value_or(""));
    std::erase_if(faces, [&](const DesktopFace& face) {
        return std::any_of(candidates.begin(), candidates.end(), [&](const Candidate& candidate) {
            return folderOf(face.file) == activation_.folder(candidate.container.id);
        });
    });
    return faces;
}

const CandidateFinder::Holder& CandidateFinder::holder(ContainerId id) {
    const auto [entry, isNew] = holders_.try_emplace(static_cast<std::int32_t>(id));
    auto& [container, activeFiles] = entry->second;
    if (isNew) {
        container = library_.container(id);
        if (container && activation_.isActive(*container)) {
            activeFiles = activation_.activeFiles({id, container->name, library_.files(id)});
        }
    }
    return entry->second;
}

std::string CandidateFinder::describe(const Candidate& candidate) {
    const std::int64_t styles = candidate.container.faces;
    std::string text = candidate.face.familyName;
    if (!candidate.face.styleName.empty()) {
        text.append(" ").append(candidate.face.styleName);
    }
    text.append(" — ").append(technology(candidate.face.type)).append(", ");
    text.append(std::to_string(styles)).append(styles == 1 ? " style, " : " styles, ");
    return text.append(candidate.container.path());
}

} // namespace manager
