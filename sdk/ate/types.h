// SPDX-License-Identifier: MIT
// References to objects of the host's text engine. Each is counted: whoever is handed one by a call
// owns one count, and gives it back with the Release call of its suite.
#pragma once

#include "sp/types.h"

namespace ATE {

using ATEErr = std::int32_t; ///< 0 for success

using TextFrameRef = struct TextFrameObject*;
using TextRangeRef = struct TextRangeObject*;
using TextRunsIteratorRef = struct TextRunsIteratorObject*;
using CharInspectorRef = struct CharInspectorObject*;
using CharFeaturesRef = struct CharFeaturesObject*;
using ArrayFontRefRef = struct ArrayFontRefObject*;
using FontRef = struct FontObject*;

} // namespace ATE
