// SPDX-License-Identifier: MIT
// Gives the texts of a document other fonts, by a table.
#pragma once

#include "host/documents/document.h"
#include "host/fonts/catalogue.h"
#include "host/replace/replacementtable.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// A face of a document that was replaced.
struct ReplacedFace {
    std::string from;
    std::string to;
    std::size_t runs = 0; ///< all of them, visible or not
};

/// Replaces every run's face that a rule of the table is about, and ends the step. A new name that
/// is a family's means the face of it in the old one's weight, width and slant; else it is a
/// face's. Faces that are the new font already, or that the document brings along, stay. Throws
/// DocumentError, before anything is replaced, when the desktop lacks a new face, or when the
/// document would show another in its place.
std::vector<ReplacedFace> replaceFaces(Document& document, const ReplacementTable& table,
                                       Catalogue& catalogue);

} // namespace host
