// SPDX-License-Identifier: MIT
// Asking the index for what the rule of faces/matching.h judges.
#pragma once

#include "faces/matching.h"
#include "manager/library/library.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace manager {

/// Faces that a look-up found, shared by those that ask for them.
using SharedFaces = std::shared_ptr<const std::vector<FaceMatch>>;

/// The faces of families, remembered for as long as one command is answered: documents use many of
/// the same few.
class FamilyFaces {
public:
    explicit FamilyFaces(Library& library) : library_(library) {}

    [[nodiscard]] Library& library() const { return library_; }
    /// By the key of the family's name. Throws Error.
    [[nodiscard]] SharedFaces of(const std::string& key);
    /// By the normalised key. Throws Error.
    [[nodiscard]] SharedFaces ofNormalised(const std::string& key);

private:
    using ByKey = std::unordered_map<std::string, SharedFaces>;
    const SharedFaces& remember(ByKey& known, const std::string& key,
                                std::vector<FaceMatch> (Library::*find)(std::string_view));

    Library& library_;
    ByKey byKey_;
    ByKey byNormalisedKey_;
    std::size_t count_ = 0; ///< of faces in both
};

/// The rule over faces of the index.
[[nodiscard]] std::vector<faces::Match> matchFaces(const faces::Wanted& wanted,
                                                   std::span<const FaceMatch* const> faces);
[[nodiscard]] std::vector<faces::Match> matchFaces(const faces::Wanted& wanted,
                                                   std::span<const FaceMatch> faces);

/// A face that is in a folder that is away.
[[nodiscard]] std::optional<FaceDetails> findAwayFace(Library& library,
                                                      const faces::Wanted& wanted);

/// Asks the index for more and more, until the rule finds the face in what has come.
class LookUp {
public:
    LookUp(FamilyFaces& families, faces::Wanted wanted);

    [[nodiscard]] std::vector<faces::Match> run();
    /// The face of one of those.
    [[nodiscard]] const FaceMatch& face(const faces::Match& match) { return *faces_[match.face]; }

private:
    [[nodiscard]] bool isExact() const;
    bool isFound(std::vector<FaceMatch> more);
    bool isFound(SharedFaces more);

    FamilyFaces& families_;
    faces::Wanted wanted_;
    std::vector<SharedFaces> found_;
    std::vector<const FaceMatch*> faces_;  ///< of those, each once
    std::unordered_set<std::int64_t> ids_; ///< theirs
    std::vector<faces::Match> matches_;
};

} // namespace manager
