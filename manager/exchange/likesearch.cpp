// SPDX-License-Identifier: MIT
// The library is compared as a whole, and the query is asked about what is near enough.
#include "manager/exchange/likesearch.h"

#include "faces/namekey.h"
#include "faces/similar.h"
#include "manager/activation/desktopfonts.h"
#include "manager/exchange/candidates.h"
#include "manager/exchange/lookup.h"
#include "manager/library/error.h"
#include "manager/library/fontreader.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <variant>

namespace manager {

namespace {

std::optional<FaceDetails> findOnDesktop(const faces::Wanted& wanted) {
    const auto files = findDesktopFiles(desktopProgram(), wanted.family);
    std::vector<FaceDetails> found;
    readFontFiles(files, {}, [&](std::size_t position, FontFileOutcome outcome) {
        auto* const read = std::get_if<ReadFont>(&outcome);
        for (faces::Face& face :
             read != nullptr ? read->contents.faces : std::vector<faces::Face>()) {
            FaceMatch match;
            match.type = face.technology;
            match.postScriptName = face.postScriptName;
            match.familyName = face.names.front().family;
            match.styleName = face.names.front().style;
            match.folder = folderOf(files[position]);
            match.fileName = nameOf(files[position]);
            match.style = face.style;
            match.names = face.names;
            match.fullNames = face.fullNames;
            match.axes = face.axes;
            found.push_back({std::move(match), std::move(face)});
        }
    });
    std::vector<FaceMatch> faces;
    faces.reserve(found.size());
    std::transform(found.begin(), found.end(), std::back_inserter(faces),
                   [](const FaceDetails& details) { return details.match; });
    const auto matches = matchFaces(wanted, faces);
    return matches.empty() || !faces::isExact(matches.front().ground)
               ? std::nullopt
               : std::optional(std::move(found[matches.front().face]));
}

} // namespace

FaceDetails findNamedFace(Library& library, const Activation& activation, const std::string& name) {
    CommandFont font;
    font.postScriptName = font.familyName = name;
    const Finding finding = CandidateFinder(library, activation).find(font);
    std::optional<FaceDetails> face;
    if (!finding.exact.empty()) {
        face = library.face(finding.exact.front().face.id);
    }
    if (!face) {
        face = findAwayFace(library, wantedOf(font));
    }
    if (!face) {
        face = findOnDesktop(wantedOf(font));
    }
    if (face) {
        return std::move(*face);
    }
    throw Error(
        name + ": neither the library nor the desktop has a face of this name" +
        (finding.near.empty() ? "" : "; near: " + CandidateFinder::describe(finding.near).front()));
}

AllAlike searchAlike(Library& library, const FaceDetails& model, const FaceQuery& query) {
    constexpr float farthest = 12;
    const auto look = faces::likenessOf(model.face);
    if (!look) {
        throw Error(model.match.familyName +
                    ": lacks the Latin letters by which faces are compared");
    }
    const Reading together = library.reading();
    const ComparableFaces all = library.comparableFaces();
    const auto described = library.familyKeys(query);
    AllAlike alike;
    std::set<std::string_view> families;
    for (const auto& [place, distance] :
         faces::similarFaces(*look, all.likenesses, all.likenesses.size())) {
        if (distance >= farthest) {
            break;
        }
        const FaceId id = all.ids[place];
        const auto entry = described.find(static_cast<std::int64_t>(id));
        if (id == model.match.id || entry == described.end() ||
            !families.insert(entry->second).second) {
            continue;
        }
        if (alike.total++ >= query.offset && alike.faces.size() < query.limit) {
            alike.faces.push_back(
                {*library.match(id), distance,
                 faces::lineOf(faces::differences(*look, all.likenesses[place]))});
        }
    }
    return alike;
}

} // namespace manager
