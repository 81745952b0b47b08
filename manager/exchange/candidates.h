// SPDX-License-Identifier: MIT
// The containers that hold a wanted face, best first.
#pragma once

#include "manager/activation/activation.h"
#include "manager/activation/desktopfonts.h"
#include "manager/exchange/commandtext.h"
#include "manager/library/library.h"

#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace manager {

/// A container that holds the face.
struct Candidate {
    FaceMatch face; ///< of several in the container the best
    Container container;
    bool active = false;      ///< with this file, as the index has it
    bool typeMatches = false; ///< of the wanted type; true when any will do
};

/// Finds candidates; remembers containers for as long as one command is answered.
class CandidateFinder {
public:
    CandidateFinder(Library& library, const Activation& activation)
        : library_(library), activation_(activation) {}

    /// By PostScript name; when that finds none, by family and style. One candidate a container, in
    /// this order: active ones first, then those of the wanted type, then OpenType before TrueType
    /// before Type 1, then containers with more faces, then lower numbers.
    [[nodiscard]] std::vector<Candidate> find(const CommandFont& font);

    /// The faces of this PostScript name that the desktop shows already. Those in the sets of the
    /// candidates are left out: whether they are the ones that the index means, Candidate::active
    /// tells.
    [[nodiscard]] std::vector<DesktopFace> shown(const CommandFont& font,
                                                 const std::vector<Candidate>& candidates);

    /// nullopt: unknown, or without fonts.
    std::optional<Container> container(ContainerId id) { return holder(id).container; }

    /// A line for people: "Lato Bold — TrueType, 3 styles, /fonts/clients/acme".
    [[nodiscard]] static std::string describe(const Candidate& candidate);

private:
    struct Holder {
        std::optional<Container> container;
        std::set<std::string> activeFiles;
    };
    const Holder& holder(ContainerId id);

    Library& library_;
    const Activation& activation_;
    DesktopFaces desktop_;
    std::unordered_map<std::int32_t, Holder> holders_;
};

} // namespace manager
