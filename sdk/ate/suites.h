// SPDX-License-Identifier: MIT
// The text engine's suites that are called, one per class of object. Every call answers a non-zero
// code for a reference that is null or dead and for a null result pointer. Of a reference that a
// call hands out, the caller owns one count.
#pragma once

#include "ate/types.h"

namespace ATE {

/// "ATE TextFrame Suite" 101
struct TextFrameSuite {
    /// [main-thread] Counts one more reference, the caller's.
    ATEErr (*AddRef)(TextFrameRef frame);
    /// [main-thread] Gives one of the caller's counts back.
    ATEErr (*Release)(TextFrameRef frame);
    /// [main-thread] The frame's text, with what overflows it if `includeOverflow` is not 0. The
    /// caller owns one count of `*range`.
    ATEErr (*GetTextRange)(TextFrameRef frame, AIBoolean includeOverflow, TextRangeRef* range);
};
static_assert(isSuiteTable<TextFrameSuite, 3>);

/// "ATE TextRange Suite" 1
struct TextRangeSuite {
    /// [main-thread] Counts one more reference, the caller's.
    ATEErr (*AddRef)(TextRangeRef range);
    /// [main-thread] Gives one of the caller's counts back.
    ATEErr (*Release)(TextRangeRef range);
    /// [main-thread] The runs of the range, from the first on. The caller owns one count of
    /// `*iterator`.
    ATEErr (*GetTextRunsIterator)(TextRangeRef range, TextRunsIteratorRef* iterator);
    /// [main-thread] Sets `*result` to 1 if the range has character features of its own beside
    /// those of its style, else to 0.
    ATEErr (*HasLocalCharFeatures)(TextRangeRef range, AIBoolean* result);
    /// [main-thread] What the range's characters look like. The caller owns one count of
    /// `*inspector`.
    ATEErr (*GetCharInspector)(TextRangeRef range, CharInspectorRef* inspector);
    /// [main-thread] Sets every feature that `features` holds on the whole range; `features` stays
    /// the caller's.
    ATEErr (*ReplaceOrAddLocalCharFeatures)(TextRangeRef range, CharFeaturesRef features);
};
static_assert(isSuiteTable<TextRangeSuite, 6>);

/// "ATE TextRunsIterator Suite" 1: stretches of equal character features, in text order.
struct TextRunsIteratorSuite {
    /// [main-thread] Counts one more reference, the caller's.
    ATEErr (*AddRef)(TextRunsIteratorRef iterator);
    /// [main-thread] Gives one of the caller's counts back.
    ATEErr (*Release)(TextRunsIteratorRef iterator);
    /// [main-thread] Sets `*done` to 1 behind the last run, else to 0.
    ATEErr (*IsDone)(TextRunsIteratorRef iterator, AIBoolean* done);
    /// [main-thread] The current run, of which the caller owns one count; an error behind the last.
    ATEErr (*Item)(TextRunsIteratorRef iterator, TextRangeRef* range);
    /// [main-thread] Goes on to the next run; an error behind the last.
    ATEErr (*Next)(TextRunsIteratorRef iterator);
};
static_assert(isSuiteTable<TextRunsIteratorSuite, 5>);

/// "ATE CharInspector Suite" 101: what a range's characters look like.
struct CharInspectorSuite {
    /// [main-thread] Counts one more reference, the caller's.
    ATEErr (*AddRef)(CharInspectorRef inspector);
    /// [main-thread] Gives one of the caller's counts back.
    ATEErr (*Release)(CharInspectorRef inspector);
    /// [main-thread] The distinct fonts of the range; empty if it has no visible characters. The
    /// caller owns one count of `*fonts`.
    ATEErr (*GetFont)(CharInspectorRef inspector, ArrayFontRefRef* fonts);
};
static_assert(isSuiteTable<CharInspectorSuite, 3>);

/// "ATE ArrayFontRef Suite" 1
struct ArrayFontRefSuite {
    /// [main-thread] Counts one more reference, the caller's.
    ATEErr (*AddRef)(ArrayFontRefRef array);
    /// [main-thread] Gives one of the caller's counts back.
    ATEErr (*Release)(ArrayFontRefRef array);
    /// [main-thread] How many fonts the array holds.
    ATEErr (*GetSize)(ArrayFontRefRef array, std::int32_t* size);
    /// [main-thread] Font `index` (from 0), of which the caller owns one count; an error if there
    /// is none.
    ATEErr (*Item)(ArrayFontRefRef array, std::int32_t index, FontRef* font);
};
static_assert(isSuiteTable<ArrayFontRefSuite, 4>);

/// "ATE Font Suite" 1
struct FontSuite {
    /// [main-thread] Counts one more reference, the caller's.
    ATEErr (*AddRef)(FontRef font);
    /// [main-thread] Gives one of the caller's counts back.
    ATEErr (*Release)(FontRef font);
};
static_assert(isSuiteTable<FontSuite, 2>);

/// "ATE CharFeatures Suite" 101: a set of character features to apply.
struct CharFeaturesSuite {
    /// [main-thread] Makes an empty set. The caller owns one count of `*features`.
    ATEErr (*Create)(CharFeaturesRef* features);
    /// [main-thread] Counts one more reference, the caller's.
    ATEErr (*AddRef)(CharFeaturesRef features);
    /// [main-thread] Gives one of the caller's counts back.
    ATEErr (*Release)(CharFeaturesRef features);
    /// [main-thread] Puts a font into the set, which keeps a count of its own; `font` stays the
    /// caller's.
    ATEErr (*SetFont)(CharFeaturesRef features, FontRef font);
};
static_assert(isSuiteTable<CharFeaturesSuite, 4>);

} // namespace ATE
