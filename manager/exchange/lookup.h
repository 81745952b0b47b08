// SPDX-License-Identifier: MIT
// Asking the index for what the rule of faces/matching.h judges.
#pragma once

#include "faces/matching.h"
#include "manager/library/library.h"

#include <optional>
#include <span>
#include <unordered_set>
#include <vector>

namespace manager {

/// The rule over faces of the index.
[[nodiscard]] std::vector<faces::Match> matchFaces(const faces::Wanted& wanted,
                                                   std::span<const FaceMatch> faces);

/// A face that is in a folder that is away.
[[nodiscard]] std::optional<FaceDetails> findAwayFace(Library& library,
                                                      const faces::Wanted& wanted);

/// Asks the index for more and more, until the rule finds the face in what has come.
class LookUp {
public:
    LookUp(Library& library, faces::Wanted wanted);

    [[nodiscard]] std::vector<faces::Match> run();
    /// The face of one of those.
    [[nodiscard]] FaceMatch& face(const faces::Match& match) { return faces_[match.face]; }

private:
    [[nodiscard]] bool isExact() const;
    bool isFound(std::vector<FaceMatch> more);

    Library& library_;
    faces::Wanted wanted_;
    std::vector<FaceMatch> faces_;
    std::unordered_set<std::int64_t> ids_; ///< theirs
    std::vector<faces::Match> matches_;
};

} // namespace manager
