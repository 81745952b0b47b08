// SPDX-License-Identifier: MIT
// The fonts that a plug-in has asked to be shown, with what may be used for each.
#pragma once

#include "faces/remark.h"
#include "manager/activation/activation.h"
#include "manager/exchange/commandtext.h"
#include "manager/library/library.h"

#include <span>
#include <string>
#include <vector>

namespace manager {

/// A font of a drawing.
struct AskedFont {
    struct Choice {
        FaceId face{};
        ContainerId container{}; ///< that holds it
        bool isExact = false;    ///< it is the font asked for
        faces::Remarks reason;   ///< why it may do, when it is not
    };
    std::string name;            ///< as the drawing has it
    bool isShown = false;        ///< the desktop shows it, though not by a face of the library
    std::vector<Choice> choices; ///< the best first
};

/// [any-thread] Finds them as for an answer to the plug-in. Throws Error when the index cannot be
/// read.
[[nodiscard]] std::vector<AskedFont> readDrawing(Library& library, Activation& activation,
                                                 std::span<const CommandFont> fonts);

} // namespace manager
