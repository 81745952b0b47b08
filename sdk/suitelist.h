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

// The suites that the plug-in's own work needs, in the order of acquisition.
#define GLYPHORA_IMPORT_SUITES(X) \
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
    X(AIFontSuite, sAIFont, "AI Font Suite", 1003) \
    X(ATE::ApplicationPaintSuite, sApplicationPaint, "ATE ApplicationPaint Suite", 1) \
    X(ATE::CompFontSuite, sCompFont, "ATE CompFont Suite", 1) \
    X(ATE::CompFontClassSuite, sCompFontClass, "ATE CompFontClass Suite", 1) \
    X(ATE::CompFontClassSetSuite, sCompFontClassSet, "ATE CompFontClassSet Suite", 1) \
    X(ATE::CompFontComponentSuite, sCompFontComponent, "ATE CompFontComponent Suite", 1) \
    X(ATE::CompFontSetSuite, sCompFontSet, "ATE CompFontSet Suite", 1) \
    X(ATE::GlyphRunSuite, sGlyphRun, "ATE GlyphRun Suite", 1) \
    X(ATE::GlyphRunsIteratorSuite, sGlyphRunsIterator, "ATE GlyphRunsIterator Suite", 1) \
    X(ATE::MojiKumiSuite, sMojiKumi, "ATE MojiKumi Suite", 1) \
    X(ATE::MojiKumiSetSuite, sMojiKumiSet, "ATE MojiKumiSet Suite", 1) \
    X(ATE::TextFrameSuite, sTextFrame, "ATE TextFrame Suite", 101) \
    X(ATE::TextFramesIteratorSuite, sTextFramesIterator, "ATE TextFramesIterator Suite", 1) \
    X(ATE::TextLineSuite, sTextLine, "ATE TextLine Suite", 1) \
    X(ATE::TextLinesIteratorSuite, sTextLinesIterator, "ATE TextLinesIterator Suite", 1) \
    X(ATE::TextResourcesSuite, sTextResources, "ATE TextResources Suite", 1) \
    X(ATE::ApplicationTextResourcesSuite, sApplicationTextResources, "ATE ApplicationTextResources Suite", 1) \
    X(ATE::DocumentTextResourcesSuite, sDocumentTextResources, "ATE DocumentTextResources Suite", 101) \
    X(ATE::VersionInfoSuite, sVersionInfo, "ATE VersionInfo Suite", 1) \
    X(ATE::ArrayApplicationPaintRefSuite, sArrayApplicationPaintRef, "ATE ArrayApplicationPaintRef Suite", 1) \
    X(ATE::ArrayRealSuite, sArrayReal, "ATE ArrayReal Suite", 1) \
    X(ATE::ArrayBoolSuite, sArrayBool, "ATE ArrayBool Suite", 1) \
    X(ATE::ArrayIntegerSuite, sArrayInteger, "ATE ArrayInteger Suite", 1) \
    X(ATE::ArrayLineCapTypeSuite, sArrayLineCapType, "ATE ArrayLineCapType Suite", 1) \
    X(ATE::ArrayFigureStyleSuite, sArrayFigureStyle, "ATE ArrayFigureStyle Suite", 1) \
    X(ATE::ArrayLineJoinTypeSuite, sArrayLineJoinType, "ATE ArrayLineJoinType Suite", 1) \
    X(ATE::ArrayWariChuJustificationSuite, sArrayWariChuJustification, "ATE ArrayWariChuJustification Suite", 1) \
    X(ATE::ArrayStyleRunAlignmentSuite, sArrayStyleRunAlignment, "ATE ArrayStyleRunAlignment Suite", 1) \
    X(ATE::ArrayAutoKernTypeSuite, sArrayAutoKernType, "ATE ArrayAutoKernType Suite", 1) \
    X(ATE::ArrayBaselineDirectionSuite, sArrayBaselineDirection, "ATE ArrayBaselineDirection Suite", 1) \
    X(ATE::ArrayLanguageSuite, sArrayLanguage, "ATE ArrayLanguage Suite", 1) \
    X(ATE::ArrayFontCapsOptionSuite, sArrayFontCapsOption, "ATE ArrayFontCapsOption Suite", 1) \
    X(ATE::ArrayFontBaselineOptionSuite, sArrayFontBaselineOption, "ATE ArrayFontBaselineOption Suite", 1) \
    X(ATE::ArrayFontOpenTypePositionOptionSuite, sArrayFontOpenTypePositionOption, "ATE ArrayFontOpenTypePositionOption Suite", 1) \
    X(ATE::ArrayUnderlinePositionSuite, sArrayUnderlinePosition, "ATE ArrayUnderlinePosition Suite", 1) \
    X(ATE::ArrayStrikethroughPositionSuite, sArrayStrikethroughPosition, "ATE ArrayStrikethroughPosition Suite", 1) \
    X(ATE::ArrayParagraphJustificationSuite, sArrayParagraphJustification, "ATE ArrayParagraphJustification Suite", 1) \
    X(ATE::ArrayArrayRealSuite, sArrayArrayReal, "ATE ArrayArrayReal Suite", 1) \
    X(ATE::ArrayBurasagariTypeSuite, sArrayBurasagariType, "ATE ArrayBurasagariType Suite", 1) \
    X(ATE::ArrayPreferredKinsokuOrderSuite, sArrayPreferredKinsokuOrder, "ATE ArrayPreferredKinsokuOrder Suite", 1) \
    X(ATE::ArrayKinsokuRefSuite, sArrayKinsokuRef, "ATE ArrayKinsokuRef Suite", 1) \
    X(ATE::ArrayMojiKumiRefSuite, sArrayMojiKumiRef, "ATE ArrayMojiKumiRef Suite", 1) \
    X(ATE::ArrayMojiKumiSetRefSuite, sArrayMojiKumiSetRef, "ATE ArrayMojiKumiSetRef Suite", 1) \
    X(ATE::ArrayTabStopsRefSuite, sArrayTabStopsRef, "ATE ArrayTabStopsRef Suite", 1) \
    X(ATE::ArrayLeadingTypeSuite, sArrayLeadingType, "ATE ArrayLeadingType Suite", 1) \
    X(ATE::ArrayFontRefSuite, sArrayFontRef, "ATE ArrayFontRef Suite", 1) \
    X(ATE::ArrayGlyphIDSuite, sArrayGlyphID, "ATE ArrayGlyphID Suite", 1) \
    X(ATE::ArrayRealPointSuite, sArrayRealPoint, "ATE ArrayRealPoint Suite", 1) \
    X(ATE::ArrayRealMatrixSuite, sArrayRealMatrix, "ATE ArrayRealMatrix Suite", 1) \
    X(ATE::ArrayParagraphDirectionSuite, sArrayParagraphDirection, "ATE ArrayParagraphDirection Suite", 1) \
    X(ATE::ArrayJustificationMethodSuite, sArrayJustificationMethod, "ATE ArrayJustificationMethod Suite", 1) \
    X(ATE::ArrayKashidasSuite, sArrayKashidas, "ATE ArrayKashidas Suite", 1) \
    X(ATE::ArrayDirOverrideSuite, sArrayDirOverride, "ATE ArrayDirOverride Suite", 1) \
    X(ATE::ArrayDigitSetSuite, sArrayDigitSet, "ATE ArrayDigitSet Suite", 1) \
    X(ATE::ArrayDiacVPosSuite, sArrayDiacVPos, "ATE ArrayDiacVPos Suite", 1) \
    X(ATE::CharFeaturesSuite, sCharFeatures, "ATE CharFeatures Suite", 101) \
    X(ATE::CharInspectorSuite, sCharInspector, "ATE CharInspector Suite", 101) \
    X(ATE::CharStyleSuite, sCharStyle, "ATE CharStyle Suite", 1) \
    X(ATE::CharStylesSuite, sCharStyles, "ATE CharStyles Suite", 1) \
    X(ATE::CharStylesIteratorSuite, sCharStylesIterator, "ATE CharStylesIterator Suite", 1) \
    X(ATE::FindSuite, sFind, "ATE Find Suite", 101) \
    X(ATE::FontSuite, sFont, "ATE Font Suite", 1) \
    X(ATE::GlyphSuite, sGlyph, "ATE Glyph Suite", 1) \
    X(ATE::GlyphsSuite, sGlyphs, "ATE Glyphs Suite", 1) \
    X(ATE::GlyphsIteratorSuite, sGlyphsIterator, "ATE GlyphsIterator Suite", 1) \
    X(ATE::KinsokuSuite, sKinsoku, "ATE Kinsoku Suite", 1) \
    X(ATE::KinsokuSetSuite, sKinsokuSet, "ATE KinsokuSet Suite", 1) \
    X(ATE::ParaFeaturesSuite, sParaFeatures, "ATE ParaFeatures Suite", 101) \
    X(ATE::ParagraphSuite, sParagraph, "ATE Paragraph Suite", 1) \
    X(ATE::ParagraphsIteratorSuite, sParagraphsIterator, "ATE ParagraphsIterator Suite", 1) \
    X(ATE::ParaInspectorSuite, sParaInspector, "ATE ParaInspector Suite", 101) \
    X(ATE::ParaStyleSuite, sParaStyle, "ATE ParaStyle Suite", 1) \
    X(ATE::ParaStylesSuite, sParaStyles, "ATE ParaStyles Suite", 1) \
    X(ATE::ParaStylesIteratorSuite, sParaStylesIterator, "ATE ParaStylesIterator Suite", 1) \
    X(ATE::SpellSuite, sSpell, "ATE Spell Suite", 101) \
    X(ATE::StoriesSuite, sStories, "ATE Stories Suite", 1) \
    X(ATE::StorySuite, sStory, "ATE Story Suite", 1) \
    X(ATE::TabStopSuite, sTabStop, "ATE TabStop Suite", 1) \
    X(ATE::TabStopsSuite, sTabStops, "ATE TabStops Suite", 1) \
    X(ATE::TabStopsIteratorSuite, sTabStopsIterator, "ATE TabStopsIterator Suite", 1) \
    X(ATE::TextRangeSuite, sTextRange, "ATE TextRange Suite", 1) \
    X(ATE::TextRangesSuite, sTextRanges, "ATE TextRanges Suite", 1) \
    X(ATE::TextRangesIteratorSuite, sTextRangesIterator, "ATE TextRangesIterator Suite", 1) \
    X(ATE::TextRunsIteratorSuite, sTextRunsIterator, "ATE TextRunsIterator Suite", 1) \
    X(ATE::WordsIteratorSuite, sWordsIterator, "ATE WordsIterator Suite", 1) \
    X(ATE::ArrayLineSuite, sArrayLine, "ATE ArrayLine Suite", 1) \
    X(ATE::ArrayComposerEngineSuite, sArrayComposerEngine, "ATE ArrayComposerEngine Suite", 1)
// clang-format on
