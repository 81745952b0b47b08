// SPDX-License-Identifier: MIT
// The containers that hold a wanted face, best first.
#pragma once

#include "faces/matching.h"
#include "manager/activation/activation.h"
#include "manager/activation/desktopfonts.h"
#include "manager/exchange/commandtext.h"
#include "manager/exchange/lookup.h"
#include "manager/library/library.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace manager {

/// A container that holds the face, or one that comes near it.
struct Candidate {
    FaceMatch face; ///< of several in the container the best
    Container container;
    bool active = false; ///< with this file, as the index has it; or shown by the desktop anyway
    bool typeMatches = false;   ///< of the wanted type; true when any will do
    faces::Remarks reason = {}; ///< of one that only comes near: why it may do
};

/// What the library has for a font that is asked for, one candidate a container.
struct Finding {
    /// Of the face itself, in this order: active ones first, then those of the wanted type, newer
    /// versions, OpenType before TrueType before Type 1, containers with more faces, lower numbers.
    std::vector<Candidate> exact;
    /// When nobody has the face: what comes near, the nearest first; a few.
    std::vector<Candidate> near;

    /// The container that is to be activated without asking: the only one, or the only one of the
    /// type that `font` asks for. Null when there is none, or several.
    [[nodiscard]] const Candidate* decided(const CommandFont& font) const;
    /// Whether the user is to choose: several have the face, and none is active.
    [[nodiscard]] bool isOpen(const CommandFont& font) const {
        return !exact.empty() && !exact.front().active && decided(font) == nullptr;
    }
};

/// The face that a command asks for.
[[nodiscard]] faces::Wanted wantedOf(const CommandFont& font);

/// Finds candidates by the rule of faces/matching.h; remembers families and sets for as long as one
/// command is answered.
class CandidateFinder {
public:
    CandidateFinder(Library& library, const Activation& activation)
        : families_(library), activation_(activation) {}

    /// Of containers with the same file, byte for byte, the best stands for all.
    [[nodiscard]] Finding find(const CommandFont& font);
    /// Adds one that only comes near, unless its container or its file is there already. False:
    /// there are enough.
    bool addNear(Finding& finding, const CommandFont& font, FaceMatch face,
                 const faces::Remarks& reason);

    /// The faces that the desktop shows already, by the PostScript name that is asked for and by
    /// those of the candidates. Those in the sets of the candidates are left out: whether they are
    /// the ones that the index means, Candidate::active tells.
    [[nodiscard]] std::vector<DesktopFace> shown(const CommandFont& font,
                                                 const std::vector<Candidate>& candidates);

    /// The set of a container that is active, whichever of its files are.
    const std::optional<SetRecord>& setOf(const Container& container);

    /// A line for people of each of those that stand together: "Lato Bold — TrueType, 3 styles,
    /// /fonts/clients/acme"; with version and foundry where these tell them apart, and the reason.
    [[nodiscard]] static std::vector<std::string>
    describe(const std::vector<Candidate>& candidates);

private:
    [[nodiscard]] Candidate candidate(const CommandFont& font, FaceMatch face);
    [[nodiscard]] std::vector<Candidate> holders(const CommandFont& font,
                                                 std::vector<FaceMatch> faces);

    FamilyFaces families_;
    const Activation& activation_;
    std::unordered_map<std::int32_t, std::optional<SetRecord>> sets_; ///< by container
};

} // namespace manager
