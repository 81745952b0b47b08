// SPDX-License-Identifier: MIT
// The text engine's suites that are called, one per class of object. Every call is [main-thread]
// and answers a non-zero code for a null or dead reference or a null result pointer. References
// that a call hands out count one, the caller's.
#pragma once

#include "ate/types.h"

namespace ATE {

/// "ATE TextFrame Suite" 101
struct TextFrameSuite {
    ATEErr (*AddRef)(TextFrameRef frame);
    ATEErr (*Release)(TextFrameRef frame);
    /// The frame's text, with what overflows it when `includeOverflow` is not 0.
    ATEErr (*GetTextRange)(TextFrameRef frame, AIBoolean includeOverflow, TextRangeRef* range);
};

/// "ATE TextRange Suite" 1
struct TextRangeSuite {
    ATEErr (*AddRef)(TextRangeRef range);
    ATEErr (*Release)(TextRangeRef range);
    ATEErr (*GetTextRunsIterator)(TextRangeRef range, TextRunsIteratorRef* iterator);
    /// 1 when the range has character features of its own beside those of its style.
    ATEErr (*HasLocalCharFeatures)(TextRangeRef range, AIBoolean* result);
    ATEErr (*GetCharInspector)(TextRangeRef range, CharInspectorRef* inspector);
    /// Sets every feature that `features` holds on the whole range.
    ATEErr (*ReplaceOrAddLocalCharFeatures)(TextRangeRef range, CharFeaturesRef features);
};

/// "ATE TextRunsIterator Suite" 1: stretches of equal character features, in text order.
struct TextRunsIteratorSuite {
    ATEErr (*AddRef)(TextRunsIteratorRef iterator);
    ATEErr (*Release)(TextRunsIteratorRef iterator);
    ATEErr (*IsDone)(TextRunsIteratorRef iterator, AIBoolean* done);
    /// The current run; an error when done.
    ATEErr (*Item)(TextRunsIteratorRef iterator, TextRangeRef* range);
    /// An error when done.
    ATEErr (*Next)(TextRunsIteratorRef iterator);
};

/// "ATE CharInspector Suite" 101: what a range's characters look like.
struct CharInspectorSuite {
    ATEErr (*AddRef)(CharInspectorRef inspector);
    ATEErr (*Release)(CharInspectorRef inspector);
    /// The distinct fonts of the range; empty when it has no visible characters.
    ATEErr (*GetFont)(CharInspectorRef inspector, ArrayFontRefRef* fonts);
};

/// "ATE ArrayFontRef Suite" 1
struct ArrayFontRefSuite {
    ATEErr (*AddRef)(ArrayFontRefRef array);
    ATEErr (*Release)(ArrayFontRefRef array);
    ATEErr (*GetSize)(ArrayFontRefRef array, std::int32_t* size);
    /// `index` counts from 0; an error when out of range.
    ATEErr (*Item)(ArrayFontRefRef array, std::int32_t index, FontRef* font);
};

/// "ATE Font Suite" 1
struct FontSuite {
    ATEErr (*AddRef)(FontRef font);
    ATEErr (*Release)(FontRef font);
};

/// "ATE CharFeatures Suite" 101: a set of character features to apply.
struct CharFeaturesSuite {
    /// Makes an empty set.
    ATEErr (*Create)(CharFeaturesRef* features);
    ATEErr (*AddRef)(CharFeaturesRef features);
    ATEErr (*Release)(CharFeaturesRef features);
    ATEErr (*SetFont)(CharFeaturesRef features, FontRef font);
};

} // namespace ATE
