// SPDX-License-Identifier: MIT
// One question after the other, the cheapest first.
#include "manager/exchange/lookup.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>

namespace manager {

namespace {

/// How far the axes of a variable font go from the style of one of its instances.
std::optional<faces::Reach> reachOf(const FaceMatch& face) {
    if (face.axes.empty()) {
        return std::nullopt;
    }
    faces::Reach reach{face.style, face.style};
    for (const faces::Axis& axis : face.axes) {
        if (axis.tag == "wght") {
            reach.from.weight = axis.minimum;
            reach.to.weight = axis.maximum;
        } else if (axis.tag == "wdth") {
            reach.from.width = axis.minimum;
            reach.to.width = axis.maximum;
        }
    }
    return reach;
}

} // namespace

const SharedFaces&
FamilyFaces::remember(ByKey& known, const std::string& key,
                      std::vector<FaceMatch> (Library::*find)(std::string_view)) {
    constexpr std::size_t most = 20'000; // some megabytes
    if (count_ > most) {
        byKey_.clear();
        byNormalisedKey_.clear();
        count_ = 0;
    }
    const auto [entry, isNew] = known.try_emplace(key);
    if (isNew) {
        entry->second = std::make_shared<const std::vector<FaceMatch>>((library_.*find)(key));
        count_ += entry->second->size() + 1;
    }
    return entry->second;
}

SharedFaces FamilyFaces::of(const std::string& key) {
    return remember(byKey_, key, &Library::findByFamily);
}

SharedFaces FamilyFaces::ofNormalised(const std::string& key) {
    return remember(byNormalisedKey_, key, &Library::findByNormalisedFamily);
}

std::vector<faces::Match> matchFaces(const faces::Wanted& wanted,
                                     std::span<const FaceMatch* const> faces) {
    std::vector<faces::Known> known;
    known.reserve(faces.size());
    for (const FaceMatch* face : faces) {
        // The instances of a variable font all have the font's full name.
        known.push_back(
            {face->postScriptName,
             face->axes.empty() ? std::span(face->fullNames) : std::span<const std::string>(),
             face->names, face->style, reachOf(*face)});
    }
    return faces::match(wanted, known);
}

std::vector<faces::Match> matchFaces(const faces::Wanted& wanted,
                                     std::span<const FaceMatch> faces) {
    std::vector<const FaceMatch*> each;
    each.reserve(faces.size());
    std::transform(faces.begin(), faces.end(), std::back_inserter(each),
                   [](const FaceMatch& face) { return &face; });
    return matchFaces(wanted, each);
}

std::optional<FaceDetails> findAwayFace(Library& library, const faces::Wanted& wanted) {
    const faces::Keys keys = faces::keysOf(wanted);
    const auto faces = library.findAway(keys.postScriptName, keys.family);
    const auto matches = matchFaces(wanted, faces);
    return matches.empty() || !faces::isExact(matches.front().ground)
               ? std::nullopt
               : library.face(faces[matches.front().face].id);
}

LookUp::LookUp(FamilyFaces& families, faces::Wanted wanted)
    : families_(families), wanted_(std::move(wanted)) {}

std::vector<faces::Match> LookUp::run() {
    Library& library = families_.library();
    if (isFound(library.findByPostScriptName(wanted_.postScriptName))) {
        return std::move(matches_);
    }
    const faces::Keys keys = faces::keysOf(wanted_);
    if (isFound(families_.of(keys.family)) &&
        matches_.front().ground == faces::Ground::FamilyAndStyle) {
        return std::move(matches_);
    }
    for (const std::string& key : keys.fullNames) { // better than another word for the style
        isFound(library.findByFullName(key));
    }
    if (!isExact()) {
        isFound(library.findByPostScriptKey(keys.postScriptFamily));
    }
    for (const std::string& key : keys.normalisedFamilies) {
        if (!isExact()) {
            isFound(families_.ofNormalised(key));
        }
    }
    return std::move(matches_);
}

bool LookUp::isExact() const {
    return !matches_.empty() && faces::isExact(matches_.front().ground);
}

bool LookUp::isFound(std::vector<FaceMatch> more) {
    return isFound(std::make_shared<const std::vector<FaceMatch>>(std::move(more)));
}

bool LookUp::isFound(SharedFaces more) {
    bool any = false;
    for (const FaceMatch& face : *more) {
        if (ids_.insert(static_cast<std::int64_t>(face.id)).second) {
            faces_.push_back(&face);
            any = true;
        }
    }
    if (any) {
        found_.push_back(std::move(more));
        matches_ = matchFaces(wanted_, faces_);
    }
    return isExact();
}

} // namespace manager
