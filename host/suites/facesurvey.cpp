// SPDX-License-Identifier: MIT
// Counting a document's runs by font, twice, and comparing.
#include "host/suites/facesurvey.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace host {

namespace {

FaceState stateOf(const FontEntry& entry) {
    if (entry.origin == FaceOrigin::Generic) {
        return FaceState::Generic;
    }
    if (entry.origin == FaceOrigin::Embedded) {
        return FaceState::Embedded;
    }
    return entry.present ? FaceState::Installed : FaceState::Missing;
}

FaceState stateAfter(FaceState before, FaceState now) {
    const bool came = before == FaceState::Missing && now == FaceState::Installed;
    return came ? FaceState::ActivatedNow : now;
}

} // namespace

const char* textOf(FaceState state) noexcept {
    static constexpr std::array<const char*, 6> texts{"installed", "generic",       "embedded",
                                                      "missing",   "activated now", "replaced"};
    return texts[static_cast<std::size_t>(state)];
}

FaceSurvey::FaceSurvey(OpenDocument& document, FontList& fonts) : rows_(take(document, fonts)) {}

std::vector<FaceSurvey::Row> FaceSurvey::take(OpenDocument& document, FontList& fonts) {
    std::vector<Row> rows;
    std::unordered_map<FontKey, std::size_t> places;
    for (const TextRun& run : document.document().runs()) {
        if (!run.visible) {
            continue;
        }
        const FontKey font = document.fontOf(run.face, fonts);
        const auto [place, isNew] = places.try_emplace(font, rows.size());
        if (isNew) {
            const Face& face = document.document().face(run.face);
            const FontEntry& entry = *fonts.catalogue().entry(font);
            Row row;
            row.outcome.family = face.family;
            row.outcome.style = face.style;
            row.outcome.postScriptName = entry.face.postScriptName;
            row.outcome.before = stateOf(entry);
            row.outcome.after = *row.outcome.before;
            row.font = font;
            row.face = run.face;
            rows.push_back(std::move(row));
        }
        ++rows[place->second].outcome.runs;
    }
    return rows;
}

std::vector<FaceOutcome> FaceSurvey::compareWith(OpenDocument& document, FontList& fonts) const {
    std::vector<Row> rows = rows_;
    std::unordered_map<FontKey, std::size_t> places; // by the font that a face has now
    for (std::size_t i = 0; i < rows.size(); ++i) {
        FaceOutcome& outcome = rows[i].outcome;
        const FontKey font = document.fontOf(rows[i].face, fonts);
        places.try_emplace(font, i);
        const FontEntry& entry = *fonts.catalogue().entry(font);
        outcome.after = stateAfter(*outcome.before, stateOf(entry));
        outcome.postScriptName = entry.face.postScriptName;
    }
    for (const Row& now : take(document, fonts)) {
        const auto [place, isNew] = places.try_emplace(now.font, rows.size());
        if (isNew) {
            rows.push_back(now);
            rows.back().outcome.before.reset();
            rows.back().outcome.runs = 0;
        }
        rows[place->second].outcome.runsNow += now.outcome.runs;
    }
    std::vector<FaceOutcome> outcomes;
    for (Row& row : rows) {
        if (row.outcome.runsNow == 0) {
            row.outcome.after = FaceState::Replaced;
        }
        outcomes.push_back(std::move(row.outcome));
    }
    return outcomes;
}

std::vector<FaceOutcome> FaceSurvey::asTaken() const {
    std::vector<FaceOutcome> outcomes;
    for (const Row& row : rows_) {
        outcomes.push_back(row.outcome);
        outcomes.back().runsNow = row.outcome.runs;
    }
    return outcomes;
}

} // namespace host
