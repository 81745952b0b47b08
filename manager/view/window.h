// SPDX-License-Identifier: MIT
// What shows the library on a screen, without a word of the toolkit that does it.
#pragma once

#include "manager/library/places.h"

#include <filesystem>
#include <string>
#include <vector>

namespace manager {

/// What a window is to show.
struct WindowRequest {
    std::string search = {};                ///< what is searched for
    std::string command = {};               ///< of a plug-in that wants its fonts to be shown
    std::vector<std::string> files = {};    ///< font files to look at, by absolute paths
    std::vector<std::string> drawings = {}; ///< whose fonts are listed, by absolute paths
};

struct WindowOptions {
    Places places;
    std::string program;                 ///< the path of this program, which does what is asked for
    WindowRequest request;               ///< to begin with
    std::filesystem::path pictures = {}; ///< of every view, instead of a screen; empty: none
};

/// Shows the library until the user closes the window; gives an ExitStatus. The module that knows
/// the toolkit is loaded for it, and stays. Throws Error when there is no screen, or no module.
int showWindow(const WindowOptions& options);

} // namespace manager

/// What the module has. `platforms` are the toolkit's, tried in turn; a negative number when none
/// works but the one in memory, unless that one alone is asked for.
extern "C" int glyphoraShowWindow(const manager::WindowOptions& options,
                                  const std::string& platforms);
