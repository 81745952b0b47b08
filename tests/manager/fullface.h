// SPDX-License-Identifier: MIT
// A face of which everything is known.
#pragma once

#include "faces/face.h"

#include <string>

namespace managertest {

/// Each field has a value of its own, awkward ones among them.
inline faces::Face fullFace(const std::string& postScriptName) {
    faces::Face face;
    face.index = 65537;
    face.technology = faces::Technology::OpenTypePostScript;
    face.postScriptName = postScriptName;
    face.fullNames = {"A\tB Bold", "Ä\nÖ"};
    face.names = {{"A\tB", "Bold", "en", faces::NameKind::Typographic},
                  {"A\tB Bold", "", "ko", faces::NameKind::WeightWidthSlant},
                  {"C\\D", "E\nF", "", faces::NameKind::Legacy}};
    face.style = {512.5, 87.5, faces::Slant::Oblique};
    face.version = "2.001;beta";
    face.revision = 0x00020041;
    face.foundry = "Müller & Söhne";
    face.copyright = std::string("(c)\0", 4);
    face.licence = std::string(5000, 'x');
    face.licenceLink = "https://example.org/";
    face.embedding = 0x0104;
    face.classification = faces::Classification::SlabSerif;
    face.panose = {{2, 11, 6, 9, 1, 2, 3, 4, 255, 0}};
    face.monospaced = true;
    face.colour = true;
    face.measures = faces::Measures{0.5,   0.75,  0.875, 0.25, 0.5,  0.625, 0.5625,
                                    0.125, 0.375, 0.25,  -12,  0.75, 0.0625};
    face.glyphs = 70'000;
    face.scripts = {"Cyrl", "Latn"};
    face.languages = {"de", "pt-br", "ru"};
    face.features = {"c2sc", "smcp"};
    face.axes = {{"wght", "Weight", 100, 400, 900, false}, {"GRAD", "", -200, 0, 150, true}};
    face.position = {{"wght", 512.5}, {"GRAD", -1.5}};
    face.coverage = {{0x20, 0x7E}, {0xA0, 0xA0}, {0x1F600, 0x10FFFF}};
    return face;
}

} // namespace managertest
