// SPDX-License-Identifier: MIT
// What became of a document's faces: their states before plug-ins saw it, and after.
#pragma once

#include "host/fonts/facestate.h"
#include "host/suites/opendocuments.h"

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace host {

struct FaceOutcome {
    std::string family; ///< as the document names it
    std::string style;
    std::string postScriptName;
    std::size_t runs = 0;            ///< with visible characters, at first
    std::size_t runsNow = 0;         ///< and afterwards
    std::optional<FaceState> before; ///< nothing for a face that came by replacement
    FaceState after = FaceState::Missing;
};

/// [main-thread] Taken when a document was opened.
class FaceSurvey {
public:
    FaceSurvey(OpenDocument& document, FontList& fonts);

    /// The faces in order of first appearance, then those that came by replacement. `document` is
    /// the one that was surveyed.
    [[nodiscard]] std::vector<FaceOutcome> compareWith(OpenDocument& document,
                                                       FontList& fonts) const;
    /// The same for a document that is no longer open, with the states that it had.
    [[nodiscard]] std::vector<FaceOutcome> asTaken() const;

private:
    struct Row {
        FaceOutcome outcome;
        FaceId face = 0; ///< the first of the row's font
    };
    std::size_t rowOf(FaceId face, OpenDocument& document, FontList& fonts);

    std::vector<Row> rows_;
    std::unordered_map<FontKey, std::size_t> rowOfFont_;
    std::unordered_map<FaceId, std::size_t> rowOfFace_; ///< of faces that visible runs have
};

} // namespace host
