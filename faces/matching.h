// SPDX-License-Identifier: MIT
// When a face is the one that is asked for, and which others come near. The one rule for host and
// manager; docs/matching.md tells it in words.
#pragma once

#include "faces/face.h"
#include "faces/family.h"
#include "faces/remark.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace faces {

/// A face that is asked for. What is not told is empty.
struct Wanted {
    std::string postScriptName;
    std::string family;
    std::string style;
};

/// What an index is asked for, one after the other, until `match` finds something exact in all that
/// has come so far. Empty texts need no look-up.
struct Keys {
    std::string postScriptName;                  ///< postScriptKey of the face's PostScript name
    std::string postScriptFamily;                ///< the same of what may stand for a family
    std::string family;                          ///< nameKey of the family in one of its names
    std::vector<std::string> fullNames;          ///< nameKey of one of its full names
    std::vector<std::string> normalisedFamilies; ///< normalisedFamilyKey of the family
};
[[nodiscard]] Keys keysOf(const Wanted& wanted);
/// Whether a style is the one of a family's regular text face, by its words.
[[nodiscard]] bool isPlain(std::string_view style);

/// What the rule looks at of a face that is there.
struct Known {
    std::string_view postScriptName;
    std::span<const std::string> fullNames;
    std::span<const Name> names;
    Style style;
    std::optional<Reach> reach; ///< of a variable font
};

/// Why a face is, or may be, the one that is asked for; better ones first.
enum class Ground : std::uint8_t {
    PostScriptName,
    FamilyAndStyle,
    FullName,
    OnlyOfThisStyle, ///< the family's only face that is what the style word means
    SameFamily,
    OtherSpelling, ///< of the family's name
    Similar,       ///< by its outlines
};
[[nodiscard]] constexpr bool isExact(Ground ground) {
    return ground <= Ground::OnlyOfThisStyle;
}

struct Match {
    std::size_t face = 0; ///< its place in what was given
    Ground ground = Ground::Similar;
    double distance = 0; ///< of weight, width and slant; 0 when exact
    Remarks reason;      ///< "same family, Bold instead of SemiBold"; empty when exact
};

/// The faces that are the one asked for, all on the best ground that any of them has; if there are
/// none the candidates, the nearest first.
[[nodiscard]] std::vector<Match> match(const Wanted& wanted, std::span<const Known> faces);

} // namespace faces
