// SPDX-License-Identifier: MIT
// A drawing as reader and writer share it: tree, styles, and the document made of them. The same
// source always gives the same runs in the same order, so a writer can read it again.
#pragma once

#include "host/documents/document.h"
#include "host/documents/svg/svgreader.h"
#include "host/documents/svg/svgstyle.h"
#include "host/documents/svg/svgtree.h"

#include <string>
#include <string_view>
#include <vector>

namespace host::svg {

inline constexpr RunId noRun = 0xFFFFFFFFU;

struct Drawing {
    Tree tree;
    Styles styles;
    DocumentParts parts;
    std::vector<RunId> runOfPiece; ///< noRun for a piece of which no character is left
};

/// `source` is UTF-8 and outlives the result. Throws DocumentError when it is no drawing.
[[nodiscard]] Drawing readDrawing(const std::string& source, std::string_view name,
                                  const SvgOptions& options);

/// False for text of blanks, joiners, direction marks and the like alone.
[[nodiscard]] bool hasVisibleCharacter(std::string_view text);

/// The face that a family list gives by its first family, in normal weight, slant and stretch.
/// `families` is its text number.
[[nodiscard]] Face faceOfFamilies(const Tree& tree, const Styles& styles, std::uint32_t families);

/// The families behind the first of a list, as many as anybody looks at.
[[nodiscard]] std::vector<std::string> laterFamilies(std::string_view list);

/// The face of a family in the weight, slant and stretch that a style has.
[[nodiscard]] Face styledFace(Face face, const Style& look);

} // namespace host::svg
