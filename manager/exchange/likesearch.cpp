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
#include <limits>
#include <optional>
#include <set>
#include <unordered_map>
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
            match.fileName = files[position].substr(files[position].rfind('/') + 1);
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

AllAlike searchAlike(Library& library, const FaceDetails& model, FaceQuery query) {
    constexpr float farthest = 12;
    const auto look = faces::likenessOf(model.face);
    if (!look) {
        throw Error(model.match.familyName +
                    ": lacks the Latin letters by which faces are compared");
    }
    const ComparableFaces all = library.comparableFaces();
    struct Rank {
        std::size_t rank = 0;
        std::size_t place = 0;
        float distance = 0;
    };
    std::unordered_map<std::int64_t, Rank> ranks;
    query.among.emplace();
    for (const auto& [place, distance] :
         faces::similarFaces(*look, all.likenesses, all.likenesses.size())) {
        if (distance >= farthest) {
            break;
        }
        if (all.ids[place] != model.match.id) {
            query.among->push_back(all.ids[place]);
            ranks[static_cast<std::int64_t>(all.ids[place])] = {ranks.size(), place, distance};
        }
    }
    const std::size_t offset = std::exchange(query.offset, 0);
    const std::size_t limit = std::exchange(query.limit, std::numeric_limits<std::size_t>::max());
    auto found = library.search(query).faces;
    const auto rankOf = [&](const FaceMatch& face) -> const Rank& {
        return ranks.at(static_cast<std::int64_t>(face.id));
    };
    std::sort(found.begin(), found.end(), [&](const FaceMatch& a, const FaceMatch& b) {
        return rankOf(a).rank < rankOf(b).rank;
    });
    AllAlike alike;
    std::set<std::string> families;
    for (FaceMatch& face : found) {
        if (!families.insert(faces::nameKey(face.familyName)).second) {
            continue;
        }
        if (alike.total++ >= offset && alike.faces.size() < limit) {
            const auto& [rank, place, distance] = rankOf(face);
            alike.faces.push_back(
                {std::move(face), distance, faces::differenceText(*look, all.likenesses[place])});
        }
    }
    return alike;
}

} // namespace manager
