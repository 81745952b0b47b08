// SPDX-License-Identifier: MIT
// The walk over the fonts of the current document's text.
#pragma once

#include "ate/itext.h"

#include <functional>

/// [main-thread] Called for each font of each run, in text order. Both references are lent for the
/// call.
using FontVisitor = std::function<void(const ATE::ITextRange& run, const ATE::IFont& font)>;

struct WalkResult {
    AIErr error;   ///< of the last step from layer to layer, or what ended the walk
    bool finished; ///< false if an art object's type could not be read
};

/// Visits the text frames that stand directly in the top group of a layer, layer by layer. Throws
/// ATE::Exception when the text engine fails, and what `visit` throws. [main-thread]
WalkResult walkDocumentFonts(const FontVisitor& visit);
