// SPDX-License-Identifier: MIT
// The desktop's replacement first, then what looks like the absent face, the nearest first.
#include "manager/exchange/standins.h"

#include "faces/family.h"
#include "faces/namekey.h"
#include "manager/exchange/lookup.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace manager {

namespace {

// A command may take a part of its second for this: some 15 ms. Looking faces up in the index takes
// as long as comparing a few thousand.
constexpr std::size_t mostWork = 400'000;
constexpr std::size_t workForALookUp = 2'500;

} // namespace

void StandIns::add(Library& library, CandidateFinder& finder, std::span<const Absent> absent) {
    std::set<std::string> families;
    for (const auto& [font, finding] : absent) {
        families.insert(font.familyName.value_or(""));
    }
    families.erase("");
    aliases_.learn(families);
    const bool hasAway = !absent.empty() && library.hasAwayFolders();
    work_ = 0;
    for (const Absent& one : absent) {
        if (work_ > mostWork) {
            break;
        }
        const auto away = hasAway ? findAwayFace(library, wantedOf(one.font)) : std::nullopt;
        auto look = away ? faces::likenessOf(away->face) : std::nullopt;
        const auto lookOfAlias = addAlias(library, finder, one);
        look = look ? look : lookOfAlias;
        if (look) {
            addSimilar(library, finder, one, *look);
        }
    }
}

std::optional<faces::Likeness> StandIns::addAlias(Library& library, CandidateFinder& finder,
                                                  const Absent& absent) {
    const faces::Wanted wanted = wantedOf(absent.font);
    for (const std::string& alias : aliases_.of(wanted.family)) {
        work_ += workForALookUp;
        auto faces = library.findByFamily(faces::nameKey(alias));
        const auto matches = matchFaces({{}, alias, wanted.style}, faces);
        if (matches.empty()) {
            continue;
        }
        FaceMatch& face = faces[matches.front().face];
        faces::Remarks reason = {
            {faces::marked("the desktop's replacement for %1"), wanted.family}};
        if (!faces::isExact(matches.front().ground)) {
            reason.push_back({faces::marked("%1 instead of %2"), face.styleName,
                              faces::AskedStyle(wanted.style).text});
            finder.addNear(absent.finding, absent.font, std::move(face), reason);
            return std::nullopt;
        }
        const ComparableFaces& all = facesOf(library);
        const auto place = std::find(all.ids.begin(), all.ids.end(), face.id) - all.ids.begin();
        finder.addNear(absent.finding, absent.font, std::move(face), reason);
        return place < std::ssize(all.ids)
                   ? std::optional(all.likenesses[static_cast<std::size_t>(place)])
                   : std::nullopt;
    }
    return std::nullopt;
}

void StandIns::addSimilar(Library& library, CandidateFinder& finder, const Absent& absent,
                          const faces::Likeness& look) {
    constexpr std::size_t most = 50; // a family may be there in many versions
    constexpr float farthest = 8;
    const ComparableFaces& all = facesOf(library);
    work_ += all.ids.size() + workForALookUp;
    std::set<std::string> families;
    for (const Candidate& near : absent.finding.near) {
        families.insert(faces::nameKey(near.face.familyName));
    }
    const faces::Wanted wanted = wantedOf(absent.font);
    const std::string& name = wanted.family.empty() ? wanted.postScriptName : wanted.family;
    for (const auto& [place, distance] : faces::similarFaces(look, all.likenesses, most)) {
        auto face = distance < farthest ? library.match(all.ids[place]) : std::nullopt;
        if (!face || !families.insert(faces::nameKey(face->familyName)).second) {
            continue;
        }
        faces::Remarks reason = faces::differences(look, all.likenesses[place]);
        reason.insert(reason.begin(), {faces::marked("similar to %1"), name, {}, true});
        if (!finder.addNear(absent.finding, absent.font, std::move(*face), reason)) {
            return;
        }
    }
}

const ComparableFaces& StandIns::facesOf(Library& library) {
    const Library::Generation now = library.generation();
    if (generation_ != now) {
        faces_ = library.comparableFaces();
        generation_ = now;
    }
    return faces_;
}

} // namespace manager
