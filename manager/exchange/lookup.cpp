// SPDX-License-Identifier: MIT
// One question after the other, the cheapest first.
#include "manager/exchange/lookup.h"

#include <cstdint>
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

std::vector<faces::Match> matchFaces(const faces::Wanted& wanted,
                                     std::span<const FaceMatch> faces) {
    std::vector<faces::Known> known;
    known.reserve(faces.size());
    for (const FaceMatch& face : faces) {
        // The instances of a variable font all have the font's full name.
        known.push_back(
            {face.postScriptName,
             face.axes.empty() ? std::span(face.fullNames) : std::span<const std::string>(),
             face.names, face.style, reachOf(face)});
    }
    return faces::match(wanted, known);
}

std::optional<FaceDetails> findAwayFace(Library& library, const faces::Wanted& wanted) {
    const faces::Keys keys = faces::keysOf(wanted);
    const auto faces = library.findAway(keys.postScriptName, keys.family);
    const auto matches = matchFaces(wanted, faces);
    return matches.empty() || !faces::isExact(matches.front().ground)
               ? std::nullopt
               : library.face(faces[matches.front().face].id);
}

LookUp::LookUp(Library& library, faces::Wanted wanted)
    : library_(library), wanted_(std::move(wanted)) {}

std::vector<faces::Match> LookUp::run() {
    if (isFound(library_.findByPostScriptName(wanted_.postScriptName))) {
        return std::move(matches_);
    }
    const faces::Keys keys = faces::keysOf(wanted_);
    if (isFound(library_.findByFamily(keys.family)) &&
        matches_.front().ground == faces::Ground::FamilyAndStyle) {
        return std::move(matches_);
    }
    for (const std::string& key : keys.fullNames) { // better than another word for the style
        isFound(library_.findByFullName(key));
    }
    if (!isExact()) {
        isFound(library_.findByPostScriptKey(keys.postScriptFamily));
    }
    for (const std::string& key : keys.normalisedFamilies) {
        if (!isExact()) {
            isFound(library_.findByNormalisedFamily(key));
        }
    }
    return std::move(matches_);
}

bool LookUp::isExact() const {
    return !matches_.empty() && faces::isExact(matches_.front().ground);
}

bool LookUp::isFound(std::vector<FaceMatch> more) {
    bool any = false;
    for (FaceMatch& face : more) {
        if (ids_.insert(static_cast<std::int64_t>(face.id)).second) {
            faces_.push_back(std::move(face));
            any = true;
        }
    }
    if (any) {
        matches_ = matchFaces(wanted_, faces_);
    }
    return isExact();
}

} // namespace manager
