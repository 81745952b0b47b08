// SPDX-License-Identifier: MIT
// Reads SVG drawings, plain or gzipped, into the document model.
#pragma once

#include "host/documents/document.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace host {

struct SvgOptions {
    /// Present groups as they stand. Otherwise every text of a layer is a direct child of the
    /// layer's top group, in document order, and other art is left out.
    bool keepGroups = false;
    /// Largest drawing in bytes, after decompression.
    std::size_t maximumSize = std::size_t{256} << 20;
    /// Deepest nesting of elements.
    unsigned maximumDepth = 256;
    /// Most elements that hold text, or groups and other art that are kept.
    std::size_t maximumElements = 2'000'000;
    /// What matching style sheets may cost, in bytes looked at: seconds' worth, hundreds of tests
    /// for each of many thousand elements.
    std::size_t maximumMatching = 1'000'000'000;
    /// The user's language, as a locale or a web page names it: decides where a drawing has texts
    /// in several.
    std::string language = "en_US";
};

/// What is read, and what counts:
/// - Layers are groups with groupmode="layer" (or layer="yes") in a drawing program's namespace,
///   nested ones too; without any, the top-level groups. Text outside all layers goes into a last
///   layer of its own, which has no name.
/// - A text frame is a `text` or `flowRoot` element. Text in foreign objects, titles and metadata
///   is none.
/// - Text with display:none, visibility:hidden or font-size:0 is not visible. What only an element
///   around it hides, a `use` of the text itself still shows. Of a `switch`, the first child that
///   can be shown, in the user's language or in none, is visible.
/// - Text in `defs`, `symbol`, `clipPath` and the like is not visible, unless it or the element
///   that holds it is referenced by its id from something visible, or from any style sheet. A
///   `tref` takes only the characters of a text, so it does not show that text. Text shown by a
///   `use` inherits from the first `use` that shows it; it is one text with one face, even where
///   another `use` would give it a different one. A mask, a pattern or the like counts as
///   referenced even by something that is not displayed.
/// - The first family of a list is the face's family.
/// No external entity, DTD, style sheet or link is ever opened.
/// Throws DocumentError for anything that is not a well-formed SVG drawing within the limits.
[[nodiscard]] Document readSvg(const std::filesystem::path& file, const SvgOptions& options = {});

/// The same from memory. `bytes` is a whole file, gzipped or not; `name` is for messages.
[[nodiscard]] Document readSvg(std::string bytes, std::string_view name,
                               const SvgOptions& options = {});

} // namespace host
