// SPDX-License-Identifier: MIT
// The global pointers of all suites: set while they are acquired, and null otherwise. A suite that
// nothing is called of has a type without a definition, since only its pointer is held.
// [main-thread], but for the basic suite's allocation.
#pragma once

#include "adm/suites.h"
#include "ai/suites.h"
#include "ate/suites.h"
#include "sp/basic.h"
#include "sp/suites.h"
#include "suitelist.h"

struct ADMDialogSuite;
struct ADMEntrySuite;
struct ADMItemSuite;
struct ADMDrawerSuite;
struct ADMDrawerSuite5;
struct ADMHierarchyListSuite;
struct ADMListEntrySuite;
struct ADMListEntrySuite4;
struct ADMListSuite;
struct ADMNotifierSuite;
struct ADMIconSuite;
struct ADMDialogGroupSuite;
struct ADMTrackerSuite;
struct AIDocumentViewSuite;
struct AIMatchingArtSuite;
struct AIMdMemorySuite;
struct AIDictionarySuite;
struct AIDictionaryIteratorSuite;
struct AIPathSuite;
struct AIPathStyleSuite;
struct AIPreferenceSuite;
struct AIToolSuite;
struct AIRuntimeSuite;
struct AIUndoSuite;
struct AIFoldersSuite;

namespace ATE {
struct ApplicationPaintSuite;
struct CompFontSuite;
struct CompFontClassSuite;
struct CompFontClassSetSuite;
struct CompFontComponentSuite;
struct CompFontSetSuite;
struct GlyphRunSuite;
struct GlyphRunsIteratorSuite;
struct MojiKumiSuite;
struct MojiKumiSetSuite;
struct TextFramesIteratorSuite;
struct TextLineSuite;
struct TextLinesIteratorSuite;
struct TextResourcesSuite;
struct ApplicationTextResourcesSuite;
struct DocumentTextResourcesSuite;
struct VersionInfoSuite;
struct ArrayApplicationPaintRefSuite;
struct ArrayRealSuite;
struct ArrayBoolSuite;
struct ArrayIntegerSuite;
struct ArrayLineCapTypeSuite;
struct ArrayFigureStyleSuite;
struct ArrayLineJoinTypeSuite;
struct ArrayWariChuJustificationSuite;
struct ArrayStyleRunAlignmentSuite;
struct ArrayAutoKernTypeSuite;
struct ArrayBaselineDirectionSuite;
struct ArrayLanguageSuite;
struct ArrayFontCapsOptionSuite;
struct ArrayFontBaselineOptionSuite;
struct ArrayFontOpenTypePositionOptionSuite;
struct ArrayUnderlinePositionSuite;
struct ArrayStrikethroughPositionSuite;
struct ArrayParagraphJustificationSuite;
struct ArrayArrayRealSuite;
struct ArrayBurasagariTypeSuite;
struct ArrayPreferredKinsokuOrderSuite;
struct ArrayKinsokuRefSuite;
struct ArrayMojiKumiRefSuite;
struct ArrayMojiKumiSetRefSuite;
struct ArrayTabStopsRefSuite;
struct ArrayLeadingTypeSuite;
struct ArrayGlyphIDSuite;
struct ArrayRealPointSuite;
struct ArrayRealMatrixSuite;
struct ArrayParagraphDirectionSuite;
struct ArrayJustificationMethodSuite;
struct ArrayKashidasSuite;
struct ArrayDirOverrideSuite;
struct ArrayDigitSetSuite;
struct ArrayDiacVPosSuite;
struct CharStyleSuite;
struct CharStylesSuite;
struct CharStylesIteratorSuite;
struct FindSuite;
struct GlyphSuite;
struct GlyphsSuite;
struct GlyphsIteratorSuite;
struct KinsokuSuite;
struct KinsokuSetSuite;
struct ParaFeaturesSuite;
struct ParagraphSuite;
struct ParagraphsIteratorSuite;
struct ParaInspectorSuite;
struct ParaStyleSuite;
struct ParaStylesSuite;
struct ParaStylesIteratorSuite;
struct SpellSuite;
struct StoriesSuite;
struct StorySuite;
struct TabStopSuite;
struct TabStopsSuite;
struct TabStopsIteratorSuite;
struct TextRangesSuite;
struct TextRangesIteratorSuite;
struct WordsIteratorSuite;
struct ArrayLineSuite;
struct ArrayComposerEngineSuite;
} // namespace ATE

/// The basic suite, taken from every message.
extern const SPBasicSuite* sSPBasic;

// NOLINTNEXTLINE(bugprone-macro-parentheses): a declaration takes none
#define GLYPHORA_DECLARE_SUITE(type, pointer, name, version) extern const type* pointer;
GLYPHORA_BASIC_SUITES(GLYPHORA_DECLARE_SUITE)
GLYPHORA_IMPORT_SUITES(GLYPHORA_DECLARE_SUITE)
#undef GLYPHORA_DECLARE_SUITE
