// SPDX-License-Identifier: MIT
// Judging and counting.
#include "host/check/check.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace host {

bool CheckedDrawing::missesFonts() const {
    return std::any_of(faces.begin(), faces.end(),
                       [](const CheckedFace& face) { return face.state == FaceState::Missing; });
}

bool CheckedDrawing::lacksCharacters() const {
    return std::any_of(faces.begin(), faces.end(),
                       [](const CheckedFace& face) { return !face.lackingCharacters.empty(); });
}

Checker::Checker(Catalogue::Lister lister) : catalogue_(std::move(lister)) {}

CheckedDrawing Checker::check(DrawingFaces drawing) {
    CheckedDrawing checked{std::move(drawing.file), std::move(drawing.error), {}};
    std::vector<FontKey> fonts;
    std::vector<FaceUse> uses;
    std::unordered_map<FontKey, std::size_t> rows;
    for (FaceUse& use : drawing.faces) {
        const FontKey font = catalogue_.resolve(use.face);
        const auto [row, added] = rows.try_emplace(font, uses.size());
        if (added) {
            fonts.push_back(font);
            uses.push_back(std::move(use));
            continue;
        }
        FaceUse& same = uses[row->second];
        same.runs += use.runs;
        for (TextPlace& place : use.places) {
            if (same.places.size() < FaceUse::mostPlaces) {
                same.places.push_back(std::move(place));
            }
        }
        std::u32string both;
        std::set_union(same.characters.begin(), same.characters.end(), use.characters.begin(),
                       use.characters.end(), std::back_inserter(both));
        same.characters = std::move(both);
    }
    for (std::size_t i = 0; i < uses.size(); ++i) {
        checked.faces.push_back(judge(std::move(uses[i]), fonts[i]));
    }
    count(checked, fonts);
    return checked;
}

CheckedFace Checker::judge(FaceUse use, FontKey font) {
    const FontEntry& entry = *catalogue_.entry(font);
    CheckedFace face;
    face.state = stateOf(entry);
    face.postScriptName = entry.face.postScriptName;
    if (face.state == FaceState::Installed) {
        face.font = fileOf(entry.face);
    }
    if (face.state == FaceState::Missing) {
        face.drawnIn = substituteFor(use, font);
    }
    if (face.state != FaceState::Embedded) {
        face.lackingCharacters = undrawable(use.characters);
    }
    face.use = std::move(use);
    return face;
}

std::optional<Substitute> Checker::substituteFor(const FaceUse& use, FontKey font) {
    const auto [known, added] = known_.try_emplace({font, use.laterFamilies});
    if (added) {
        if (!substitutes_) {
            substitutes_.emplace();
        }
        known->second = substitutes_->of(use.face, use.laterFamilies);
    }
    return known->second;
}

std::u32string Checker::undrawable(const std::u32string& characters) {
    std::u32string result;
    for (const char32_t character : characters) {
        if (!substitutes_) {
            substitutes_.emplace();
        }
        if (!substitutes_->canDraw(character)) {
            result += character;
        }
    }
    return result;
}

void Checker::count(const CheckedDrawing& drawing, const std::vector<FontKey>& fonts) {
    ++counts_.drawings;
    counts_.unreadable += drawing.error.empty() ? 0 : 1;
    counts_.complete += drawing.error.empty() && !drawing.missesFonts() ? 1 : 0;
    std::set<char32_t> lacking;
    for (std::size_t i = 0; i < fonts.size(); ++i) {
        const CheckedFace& face = drawing.faces[i];
        lacking.insert(face.lackingCharacters.begin(), face.lackingCharacters.end());
        if (face.state == FaceState::Missing) {
            CheckSummary::MissingFace& missing =
                missing_
                    .try_emplace(fonts[i],
                                 CheckSummary::MissingFace{face.use.face, 0, 0, face.drawnIn})
                    .first->second;
            ++missing.drawings;
            missing.runs += face.use.runs;
        }
    }
    for (const char32_t character : lacking) {
        ++counts_.lackingCharacters[character];
    }
}

CheckSummary Checker::summary() const {
    CheckSummary summary = counts_;
    for (const auto& [font, missing] : missing_) {
        summary.missing.push_back(missing);
    }
    std::sort(summary.missing.begin(), summary.missing.end(),
              [](const CheckSummary::MissingFace& a, const CheckSummary::MissingFace& b) {
                  return std::tie(b.drawings, b.runs, a.face.family, a.face.style) <
                         std::tie(a.drawings, a.runs, b.face.family, b.face.style);
              });
    return summary;
}

} // namespace host
