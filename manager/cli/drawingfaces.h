// SPDX-License-Identifier: MIT
// What drawings use, as the drawing program beside this one reads them.
#pragma once

#include "manager/cli/tally.h"
#include "manager/exchange/commandtext.h"
#include "manager/library/library.h"

#include <string>
#include <vector>

namespace manager {

/// Whether a word is the path of a file that is called as drawings are (any case): .svg, .svgz.
[[nodiscard]] bool meansDrawing(const std::string& word);

/// The fonts of drawings, each once, and in the same order the drawing in which each was met first.
struct DrawingFonts {
    std::vector<CommandFont> fonts;
    std::vector<std::string> files;
};

/// [main-thread] Reads drawings, at most a hundred: what their texts name, without what they bring
/// along themselves and generic families, which any font will do for. Those that cannot be read
/// fail, and cost only themselves. Runs `glyphora-host`, found beside this program or in PATH, for
/// a minute at most. Throws Error (the drawing, and what is wrong), and Cancelled.
[[nodiscard]] DrawingFonts fontsOfDrawings(const std::vector<std::string>& files, Tally& tally);

/// The library's containers for them, for each font the first of Finding::exact; fonts that are in
/// none fail, unless the desktop shows them anyway, which is remarked upon. Throws as
/// fontsOfDrawings().
[[nodiscard]] std::vector<Container>
containersOfDrawings(const Places& places, const std::vector<std::string>& files, Tally& tally);

/// Tells a window the fonts of drawings. Returns an ExitStatus, and throws as fontsOfDrawings().
int readDrawingsCommand(const std::vector<std::string>& files, bool json);

} // namespace manager
