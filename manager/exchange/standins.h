// SPDX-License-Identifier: MIT
// What may be used in place of a face that the library lacks, when it is known what that looks
// like: from the index, while the face's folder is away, or from a family that the desktop's
// settings bind to its own.
#pragma once

#include "faces/similar.h"
#include "manager/exchange/candidates.h"
#include "manager/exchange/familyaliases.h"
#include "manager/library/library.h"

#include <cstddef>
#include <optional>
#include <span>

namespace manager {

/// A font of a command that nobody holds.
struct Absent {
    const CommandFont& font;
    Finding& finding; ///< gets what was found behind what comes near by name
};

/// [one-thread] Remembers from one command to the next what all faces of one library look like, and
/// what the desktop's settings say. Every call throws Error when the index cannot be read.
class StandIns {
public:
    /// Adds them for all fonts of a command, as far as there is time: those behind the first few
    /// dozen, or in a very large library behind the first few, may get none.
    void add(Library& library, CandidateFinder& finder, std::span<const Absent> absent);

private:
    std::optional<faces::Likeness> addAlias(Library& library, CandidateFinder& finder,
                                            const Absent& absent);
    void addSimilar(Library& library, CandidateFinder& finder, const Absent& absent,
                    const faces::Likeness& look);
    const ComparableFaces& facesOf(Library& library);

    FamilyAliases aliases_;
    ComparableFaces faces_;
    std::optional<Library::Generation> generation_; ///< of `faces_`
    std::size_t work_ = 0;                          ///< for this command, in faces compared
};

} // namespace manager
