// SPDX-License-Identifier: MIT
// Which faces look like another: for one that is not there, known by what an index kept of it or by
// a face that it is known to be like.
#pragma once

#include "faces/face.h"
#include "faces/remark.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace faces {

/// A face as it is compared, to lie in one array for all faces of an index.
struct Likeness {
    /// Measures and style, each divided by how much of it makes a difference that a reader sees, so
    /// that the parts can be added up.
    std::array<float, 17> parts{};
    std::uint64_t scripts = 0; ///< a bit for each, which a few rare ones share
    bool operator==(const Likeness&) const = default;
};

/// nullopt: the face lacks the letters that are compared.
[[nodiscard]] std::optional<Likeness> likenessOf(const Face& face);

/// How far two faces are apart: 0 for the same drawing; about 2 for a copy of a design; from 12 on
/// they have little in common.
[[nodiscard]] float distance(const Likeness& one, const Likeness& other);

/// How a reader sees that `other` is not `one`, the most striking first: "lighter, narrower".
/// Empty: hardly.
[[nodiscard]] Remarks differences(const Likeness& one, const Likeness& other);

struct SimilarFace {
    std::size_t place = 0; ///< in what was searched
    float distance = 0;
};

/// The `count` nearest of `faces`, the nearest first.
[[nodiscard]] std::vector<SimilarFace>
similarFaces(const Likeness& wanted, std::span<const Likeness> faces, std::size_t count);

/// What is to be added to the distance of a face that cannot set all of `text`: nothing when it
/// can, more than any likeness makes up for when it lacks most of it. Blanks do not count.
[[nodiscard]] float distanceOfCoverage(const Coverage& coverage, std::u32string_view text);

} // namespace faces
