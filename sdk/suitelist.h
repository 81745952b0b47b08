// SPDX-License-Identifier: MIT
// Every suite of the host that the plug-in acquires: the type of its table, its global pointer, its
// name and its version. One list, so that declaring, acquiring and releasing cannot drift apart.
#pragma once

// X(type, pointer, name, version): acquired first and released first.
// clang-format off
#define GLYPHORA_BASIC_SUITES(X) \
    X(SPAccessSuite, sSPAccess, "SP Access Suite", 3) \
    X(SPPluginsSuite, sSPPlugins, "SP Plug-ins Suite", 4) \
    X(AINotifierSuite, sAINotifier, "AI Notifier Suite", 1002) \
    X(AIAppContextSuite, sAIAppContext, "AI Context Suite", 1004) \
    X(ADMBasicSuite, sADMBasic, "ADM Basic Suite", 10)

// The suites that the plug-in's own work needs, in the order of acquisition: the host's
// first, ...
#define GLYPHORA_HOST_SUITES(X) \
    X(ADMDialogSuite, sADMDialog, "ADM Dialog Suite", 10) \
    X(ADMEntrySuite, sADMEntry, "ADM Entry Suite", 2) \
    X(ADMItemSuite, sADMItem, "ADM Item Suite", 7) \
    X(ADMDrawerSuite, sADMDrawer, "ADM Drawer Suite", 7) \
    X(ADMDrawerSuite5, sADMDrawer5, "ADM Drawer Suite", 5) \
    X(ADMHierarchyListSuite, sADMHierarchyList, "ADM Hierarchy List Suite", 5) \
    X(ADMListEntrySuite, sADMListEntry, "ADM List Entry Suite", 1) \
    X(ADMListEntrySuite4, sADMListEntry4, "ADM List Entry Suite", 4) \
    X(ADMListSuite, sADMList, "ADM List Suite", 1) \
    X(ADMNotifierSuite, sADMNotifier, "ADM Notifier Suite", 2) \
    X(ADMIconSuite, sADMIcon, "ADM Icon Suite", 1) \
    X(ADMDialogGroupSuite, sADMDialogGroup, "ADM Dialog Group Suite", 1) \
    X(ADMTrackerSuite, sADMTracker, "ADM Tracker Suite", 2) \
    X(AIArtSuite, sAIArt, "AI Art Suite", 1014) \
    X(AIDocumentSuite, sAIDocument, "AI Document Suite", 1011) \
    X(AIDocumentListSuite, sAIDocumentList, "AI Document List Suite", 1006) \
    X(AIDocumentViewSuite, sAIDocumentView, "AI Document View Suite", 1010) \
    X(AIMatchingArtSuite, sAIMatchingArt, "AI Matching Art Suite", 1005) \
    X(AIMdMemorySuite, sAIMdMemory, "AI MdMemory Suite", 1001) \
    X(AIMenuSuite, sAIMenu, "AI Menu Suite", 1009) \
    X(AIDictionarySuite, sAIDictionary, "AI Dictionary Suite", 1006) \
    X(AIDictionaryIteratorSuite, sAIDictionaryIterator, "AI Dictionary Iterator Suite", 1001) \
    X(AIPathSuite, sAIPath, "AI Path Suite", 1008) \
    X(AIPathStyleSuite, sAIPathStyle, "AI Path Style Suite", 1010) \
    X(AIPreferenceSuite, sAIPreference, "AI Preference Suite", 1004) \
    X(AIToolSuite, sAITool, "AI Tool Suite", 1010) \
    X(AILayerSuite, sAILayer, "AI Layer Suite", 1011) \
    X(AITimerSuite, sAITimer, "AI Timer Suite", 1003) \
    X(AIRuntimeSuite, sAIRuntime, "AI Runtime Suite", 1010) \
    X(AIUndoSuite, sAIUndo, "AI Undo Suite", 1004) \
    X(AIFoldersSuite, sAIFolders, "AI Folders Suite", 1003) \
    X(ADMHostSuite, sADMHost, "ADM Host Suite", 6) \
    X(AIUnicodeStringSuite, sAIUnicodeString, "AI Unicode String Suite", 1006) \
    X(AITextFrameSuite, sAITextFrame, "AI Text Frame Suite", 1001) \
    X(AIFontSuite, sAIFont, "AI Font Suite", 1003)

// ... then the text engine's. `scope` stands before each type: "ATE::", or nothing within ATE.
#define GLYPHORA_TEXT_SUITES(X, scope) \
    X(scope ApplicationPaintSuite, sApplicationPaint, "ATE ApplicationPaint Suite", 1) \
    X(scope CompFontSuite, sCompFont, "ATE CompFont Suite", 1) \
    X(scope CompFontClassSuite, sCompFontClass, "ATE CompFontClass Suite", 1) \
    X(scope CompFontClassSetSuite, sCompFontClassSet, "ATE CompFontClassSet Suite", 1) \
    X(scope CompFontComponentSuite, sCompFontComponent, "ATE CompFontComponent Suite", 1) \
    X(scope CompFontSetSuite, sCompFontSet, "ATE CompFontSet Suite", 1) \
    X(scope GlyphRunSuite, sGlyphRun, "ATE GlyphRun Suite", 1) \
    X(scope GlyphRunsIteratorSuite, sGlyphRunsIterator, "ATE GlyphRunsIterator Suite", 1) \
    X(scope MojiKumiSuite, sMojiKumi, "ATE MojiKumi Suite", 1) \
    X(scope MojiKumiSetSuite, sMojiKumiSet, "ATE MojiKumiSet Suite", 1) \
    X(scope TextFrameSuite, sTextFrame, "ATE TextFrame Suite", 101) \
    X(scope TextFramesIteratorSuite, sTextFramesIterator, "ATE TextFramesIterator Suite", 1) \
    X(scope TextLineSuite, sTextLine, "ATE TextLine Suite", 1) \
    X(scope TextLinesIteratorSuite, sTextLinesIterator, "ATE TextLinesIterator Suite", 1) \
    X(scope TextResourcesSuite, sTextResources, "ATE TextResources Suite", 1) \
    X(scope ApplicationTextResourcesSuite, sApplicationTextResources, "ATE ApplicationTextResources Suite", 1) \
    X(scope DocumentTextResourcesSuite, sDocumentTextResources, "ATE DocumentTextResources Suite", 101) \
    X(scope VersionInfoSuite, sVersionInfo, "ATE VersionInfo Suite", 1) \
    X(scope ArrayApplicationPaintRefSuite, sArrayApplicationPaintRef, "ATE ArrayApplicationPaintRef Suite", 1) \
    X(scope ArrayRealSuite, sArrayReal, "ATE ArrayReal Suite", 1) \
    X(scope ArrayBoolSuite, sArrayBool, "ATE ArrayBool Suite", 1) \
    X(scope ArrayIntegerSuite, sArrayInteger, "ATE ArrayInteger Suite", 1) \
    X(scope ArrayLineCapTypeSuite, sArrayLineCapType, "ATE ArrayLineCapType Suite", 1) \
    X(scope ArrayFigureStyleSuite, sArrayFigureStyle, "ATE ArrayFigureStyle Suite", 1) \
    X(scope ArrayLineJoinTypeSuite, sArrayLineJoinType, "ATE ArrayLineJoinType Suite", 1) \
    X(scope ArrayWariChuJustificationSuite, sArrayWariChuJustification, "ATE ArrayWariChuJustification Suite", 1) \
    X(scope ArrayStyleRunAlignmentSuite, sArrayStyleRunAlignment, "ATE ArrayStyleRunAlignment Suite", 1) \
    X(scope ArrayAutoKernTypeSuite, sArrayAutoKernType, "ATE ArrayAutoKernType Suite", 1) \
    X(scope ArrayBaselineDirectionSuite, sArrayBaselineDirection, "ATE ArrayBaselineDirection Suite", 1) \
    X(scope ArrayLanguageSuite, sArrayLanguage, "ATE ArrayLanguage Suite", 1) \
    X(scope ArrayFontCapsOptionSuite, sArrayFontCapsOption, "ATE ArrayFontCapsOption Suite", 1) \
    X(scope ArrayFontBaselineOptionSuite, sArrayFontBaselineOption, "ATE ArrayFontBaselineOption Suite", 1) \
    X(scope ArrayFontOpenTypePositionOptionSuite, sArrayFontOpenTypePositionOption, "ATE ArrayFontOpenTypePositionOption Suite", 1) \
    X(scope ArrayUnderlinePositionSuite, sArrayUnderlinePosition, "ATE ArrayUnderlinePosition Suite", 1) \
    X(scope ArrayStrikethroughPositionSuite, sArrayStrikethroughPosition, "ATE ArrayStrikethroughPosition Suite", 1) \
    X(scope ArrayParagraphJustificationSuite, sArrayParagraphJustification, "ATE ArrayParagraphJustification Suite", 1) \
    X(scope ArrayArrayRealSuite, sArrayArrayReal, "ATE ArrayArrayReal Suite", 1) \
    X(scope ArrayBurasagariTypeSuite, sArrayBurasagariType, "ATE ArrayBurasagariType Suite", 1) \
    X(scope ArrayPreferredKinsokuOrderSuite, sArrayPreferredKinsokuOrder, "ATE ArrayPreferredKinsokuOrder Suite", 1) \
    X(scope ArrayKinsokuRefSuite, sArrayKinsokuRef, "ATE ArrayKinsokuRef Suite", 1) \
    X(scope ArrayMojiKumiRefSuite, sArrayMojiKumiRef, "ATE ArrayMojiKumiRef Suite", 1) \
    X(scope ArrayMojiKumiSetRefSuite, sArrayMojiKumiSetRef, "ATE ArrayMojiKumiSetRef Suite", 1) \
    X(scope ArrayTabStopsRefSuite, sArrayTabStopsRef, "ATE ArrayTabStopsRef Suite", 1) \
    X(scope ArrayLeadingTypeSuite, sArrayLeadingType, "ATE ArrayLeadingType Suite", 1) \
    X(scope ArrayFontRefSuite, sArrayFontRef, "ATE ArrayFontRef Suite", 1) \
    X(scope ArrayGlyphIDSuite, sArrayGlyphID, "ATE ArrayGlyphID Suite", 1) \
    X(scope ArrayRealPointSuite, sArrayRealPoint, "ATE ArrayRealPoint Suite", 1) \
    X(scope ArrayRealMatrixSuite, sArrayRealMatrix, "ATE ArrayRealMatrix Suite", 1) \
    X(scope ArrayParagraphDirectionSuite, sArrayParagraphDirection, "ATE ArrayParagraphDirection Suite", 1) \
    X(scope ArrayJustificationMethodSuite, sArrayJustificationMethod, "ATE ArrayJustificationMethod Suite", 1) \
    X(scope ArrayKashidasSuite, sArrayKashidas, "ATE ArrayKashidas Suite", 1) \
    X(scope ArrayDirOverrideSuite, sArrayDirOverride, "ATE ArrayDirOverride Suite", 1) \
    X(scope ArrayDigitSetSuite, sArrayDigitSet, "ATE ArrayDigitSet Suite", 1) \
    X(scope ArrayDiacVPosSuite, sArrayDiacVPos, "ATE ArrayDiacVPos Suite", 1) \
    X(scope CharFeaturesSuite, sCharFeatures, "ATE CharFeatures Suite", 101) \
    X(scope CharInspectorSuite, sCharInspector, "ATE CharInspector Suite", 101) \
    X(scope CharStyleSuite, sCharStyle, "ATE CharStyle Suite", 1) \
    X(scope CharStylesSuite, sCharStyles, "ATE CharStyles Suite", 1) \
    X(scope CharStylesIteratorSuite, sCharStylesIterator, "ATE CharStylesIterator Suite", 1) \
    X(scope FindSuite, sFind, "ATE Find Suite", 101) \
    X(scope FontSuite, sFont, "ATE Font Suite", 1) \
    X(scope GlyphSuite, sGlyph, "ATE Glyph Suite", 1) \
    X(scope GlyphsSuite, sGlyphs, "ATE Glyphs Suite", 1) \
    X(scope GlyphsIteratorSuite, sGlyphsIterator, "ATE GlyphsIterator Suite", 1) \
    X(scope KinsokuSuite, sKinsoku, "ATE Kinsoku Suite", 1) \
    X(scope KinsokuSetSuite, sKinsokuSet, "ATE KinsokuSet Suite", 1) \
    X(scope ParaFeaturesSuite, sParaFeatures, "ATE ParaFeatures Suite", 101) \
    X(scope ParagraphSuite, sParagraph, "ATE Paragraph Suite", 1) \
    X(scope ParagraphsIteratorSuite, sParagraphsIterator, "ATE ParagraphsIterator Suite", 1) \
    X(scope ParaInspectorSuite, sParaInspector, "ATE ParaInspector Suite", 101) \
    X(scope ParaStyleSuite, sParaStyle, "ATE ParaStyle Suite", 1) \
    X(scope ParaStylesSuite, sParaStyles, "ATE ParaStyles Suite", 1) \
    X(scope ParaStylesIteratorSuite, sParaStylesIterator, "ATE ParaStylesIterator Suite", 1) \
    X(scope SpellSuite, sSpell, "ATE Spell Suite", 101) \
    X(scope StoriesSuite, sStories, "ATE Stories Suite", 1) \
    X(scope StorySuite, sStory, "ATE Story Suite", 1) \
    X(scope TabStopSuite, sTabStop, "ATE TabStop Suite", 1) \
    X(scope TabStopsSuite, sTabStops, "ATE TabStops Suite", 1) \
    X(scope TabStopsIteratorSuite, sTabStopsIterator, "ATE TabStopsIterator Suite", 1) \
    X(scope TextRangeSuite, sTextRange, "ATE TextRange Suite", 1) \
    X(scope TextRangesSuite, sTextRanges, "ATE TextRanges Suite", 1) \
    X(scope TextRangesIteratorSuite, sTextRangesIterator, "ATE TextRangesIterator Suite", 1) \
    X(scope TextRunsIteratorSuite, sTextRunsIterator, "ATE TextRunsIterator Suite", 1) \
    X(scope WordsIteratorSuite, sWordsIterator, "ATE WordsIterator Suite", 1) \
    X(scope ArrayLineSuite, sArrayLine, "ATE ArrayLine Suite", 1) \
    X(scope ArrayComposerEngineSuite, sArrayComposerEngine, "ATE ArrayComposerEngine Suite", 1)

#define GLYPHORA_IMPORT_SUITES(X) \
    GLYPHORA_HOST_SUITES(X) \
    GLYPHORA_TEXT_SUITES(X, ATE::)
// clang-format on
