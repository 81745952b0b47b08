// SPDX-License-Identifier: MIT
// Measures first, then PANOSE, then the class that OS/2 has.
#include "faces/classify.h"

#include "faces/coverage.h"

namespace faces {

namespace {

// PANOSE: the kinds of letters, the first of the ten numbers.
constexpr int panoseText = 2;
constexpr int panoseHandwritten = 3;
constexpr int panoseDecorative = 4;
constexpr int panosePictures = 5;

Classification ofPanose(const Face& face) {
    if (!face.panose) {
        return Classification::Unknown;
    }
    switch (face.panose->front()) {
    case panoseText: {
        const int serif = (*face.panose)[1];
        if (serif >= 2 && serif <= 10) {
            return Classification::Serif;
        }
        return serif >= 11 && serif <= 15 ? Classification::SansSerif : Classification::Unknown;
    }
    case panoseHandwritten:
        return Classification::Script;
    case panoseDecorative:
        return Classification::Decorative;
    case panosePictures:
        return Classification::Symbol;
    default:
        return Classification::Unknown;
    }
}

Classification ofFamilyClass(unsigned familyClass) {
    switch (familyClass) {
    case 1:
    case 2:
    case 3:
    case 7:
        return Classification::Serif;
    case 4:
    case 5:
        return Classification::SlabSerif;
    case 8:
        return Classification::SansSerif;
    case 9:
        return Classification::Decorative;
    case 10:
        return Classification::Script;
    case 12:
        return Classification::Symbol;
    default:
        return Classification::Unknown;
    }
}

Classification ofMeasures(const Measures& measures) {
    // Of an em; strokes of a sans-serif that widen a little at their ends stay below.
    constexpr double leastSerif = 0.02;
    constexpr double evenStrokes = 0.7;
    if (measures.serif < leastSerif) {
        return Classification::SansSerif;
    }
    return measures.contrast >= evenStrokes ? Classification::SlabSerif : Classification::Serif;
}

} // namespace

Classification classify(const Face& face, unsigned familyClass) {
    const Classification panose = ofPanose(face);
    const Classification told =
        panose != Classification::Unknown ? panose : ofFamilyClass(familyClass);
    const bool letters = covers(face.coverage, U'a') || !face.scripts.empty();
    if (face.symbolic || (face.colour && !letters) ||
        (told == Classification::Symbol && !letters)) {
        return Classification::Symbol;
    }
    if (face.monospaced) {
        return Classification::Monospaced;
    }
    if (told == Classification::Script || told == Classification::Decorative) {
        return told;
    }
    return face.measures ? ofMeasures(*face.measures) : told;
}

} // namespace faces
