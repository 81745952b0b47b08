// SPDX-License-Identifier: MIT
// Counting a document's runs by font, twice, and comparing.
#include "host/suites/facesurvey.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

FaceState stateAfter(FaceState before, FaceState now) {
    const bool came = before == FaceState::Missing && now == FaceState::Installed;
    return came ? FaceState::ActivatedNow : now;
}

} // namespace

FaceSurvey::FaceSurvey(OpenDocument& document, FontList& fonts) {
    for (const TextRun& run : document.document().runs()) {
        if (run.visible) {
            ++rows_[rowOf(run.face, document, fonts)].outcome.runs;
        }
    }
}

/// Faces that are the same font share a row.
std::size_t FaceSurvey::rowOf(FaceId id, OpenDocument& document, FontList& fonts) {
    const auto [ofFace, newFace] = rowOfFace_.try_emplace(id, rows_.size());
    if (!newFace) {
        return ofFace->second;
    }
    const FontKey font = document.fontOf(id, fonts);
    const auto [ofFont, newFont] = rowOfFont_.try_emplace(font, rows_.size());
    ofFace->second = ofFont->second;
    if (newFont) {
        const Face& face = document.document().face(id);
        const FontEntry& entry = *fonts.catalogue().entry(font);
        Row row;
        row.outcome.family = face.family;
        row.outcome.style = face.style;
        row.outcome.postScriptName = entry.face.postScriptName;
        row.outcome.before = stateOf(entry);
        row.outcome.after = *row.outcome.before;
        row.face = id;
        rows_.push_back(std::move(row));
    }
    return ofFace->second;
}

std::vector<FaceOutcome> FaceSurvey::compareWith(OpenDocument& document, FontList& fonts) const {
    FaceSurvey now = *this;
    // Fonts are other ones by now: several rows may have become one font. A face that came by
    // replacement goes to the first of them.
    now.rowOfFont_.clear();
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        FaceOutcome& outcome = now.rows_[i].outcome;
        const FontKey font = document.fontOf(rows_[i].face, fonts);
        now.rowOfFont_.try_emplace(font, i);
        const FontEntry& entry = *fonts.catalogue().entry(font);
        outcome.after = stateAfter(*outcome.before, stateOf(entry));
        outcome.postScriptName = entry.face.postScriptName;
    }
    for (const TextRun& run : document.document().runs()) {
        if (run.visible) {
            ++now.rows_[now.rowOf(run.face, document, fonts)].outcome.runsNow;
        }
    }
    std::vector<FaceOutcome> outcomes;
    for (std::size_t i = 0; i < now.rows_.size(); ++i) {
        FaceOutcome& outcome = now.rows_[i].outcome;
        if (i >= rows_.size()) {
            outcome.before.reset();
        } else if (outcome.runsNow == 0) {
            // A run keeps its face until it is given another.
            outcome.after = FaceState::Replaced;
        }
        outcomes.push_back(std::move(outcome));
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
