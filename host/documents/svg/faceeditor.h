// SPDX-License-Identifier: MIT
// Edits the replaced faces of a document into the text of its drawing.
#pragma once

#include "host/documents/document.h"
#include "host/documents/svg/svgreader.h"

#include <string>

namespace host::svg {

/// The source with every replaced run in its new face and all other text in its old one. A value
/// that decides nothing but replaced text is changed where it stands: an attribute, a declaration,
/// a rule. Where it also decides other text, the change goes to the text's own element, or to a
/// span around the text.
/// `document` was read from `source` with `options`; `unicode` tells that the file can hold any
/// character, otherwise names are escaped. Throws DocumentError when no edit has exactly this
/// effect.
[[nodiscard]] std::string editFaces(const std::string& source, const Document& document,
                                    const SvgOptions& options, bool unicode);

} // namespace host::svg
