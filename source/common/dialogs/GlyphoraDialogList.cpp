// SPDX-License-Identifier: MIT
// The rows of the missing-fonts dialog: making them from the records, and what a double click does.
#include "GLYController.h"
#include "GLYLanguageMgr.h"
#include "GlyphoraDialog.h"
#include "adm/BaseADMItem.h"
#include "ai/unicodestring.h"
#include "platform/timing.h"
#include "suitepointers.h"

#include <algorithm>

namespace {

constexpr std::uint32_t rowTrackingMask = kADMButtonMask | kADMDefaultTrackingMask;
constexpr std::int32_t fontRowHeight = 19;
constexpr std::int32_t candidateIndentation = -50;
constexpr float candidateGap = 3.0F;
constexpr std::uint32_t closingPause = 200; ///< ticks

/// The host's own, which the dialog's calls first.
ADMListEntryTrackProc previousTracker = nullptr;

struct ItemText {
    std::int32_t item;
    std::int32_t text;
};
constexpr ItemText itemTexts[] = {
    {showButton, 5},         {buyButton, 6},         {replaceButton, 7},  {activateButton, 8},
    {kADMOKItemID, 9},       {kADMCancelItemID, 10}, {familyHeading, 11}, {styleHeading, 12},
    {technologyHeading, 13}, {statusHeading, 14},
};
constexpr ItemText activateSelectedText{activateButton, 17};

void check(ADMErr result) {
    if (result != kNoErr) {
        throw ai::Error(result);
    }
}

std::int32_t widthOf(ADMHierarchyListRef list) {
    ADMRect bounds{};
    check(sADMHierarchyList->GetBoundsRect(list, &bounds));
    return bounds.right - bounds.left;
}

void setText(const BaseADMDialog& dialog, ItemText text) {
    BaseADMItem(dialog, text.item).SetText(GLYLanguageMgr::getLanguageMgr()->getString(text.text));
}

void showFont(ADMListEntryRef entry) {
    const UserDataContainer* const row = containerOf(entry);
    if (row == nullptr) {
        return;
    }
    GLY::GLYFontInfoEvent event;
    GLY::GLYController::LaunchGlyphora();
    event.fonts.push_back(row->info);
    row->info->chosenContainer = containerToShow(*row);
    event.build();
    event.send();
}

} // namespace

AIBoolean GlyphoraDialog::FontListTracker(ADMListEntryRef entry, ADMTrackerRef tracker) {
    return guard(dialogOf(entry), AIBoolean{0}, [=](BaseADMDialog& /*dialog*/) {
        const AIBoolean handled = previousTracker(entry, tracker);
        std::uint32_t modifiers = 0;
        sADMTracker->GetModifiers(tracker, &modifiers);
        if ((modifiers & kADMDoubleClickModifier) != 0) {
            showFont(entry);
        }
        return handled;
    });
}

/// Routines come first: rows may be drawn as soon as there are any.
void GlyphoraDialog::prepareList() {
    ADMHierarchyListRef list = fontList();
    check(sADMHierarchyList->GetTrackProc(list, &previousTracker));
    check(sADMHierarchyList->SetTrackProc(list, FontListTracker));
    check(sADMHierarchyList->SetMask(list, rowTrackingMask));
    check(sADMHierarchyList->SetDrawProc(list, mydrawProc));
    check(sADMDialog->SetMask(GetDialogRef(), kADMDefaultTrackingMask));
}

void GlyphoraDialog::layOutList() {
    BaseADMItem item(*this, fontListItem);
    item.SetItemStyle(kADMMultiSelectListStyle);
    item.Invalidate();
    ADMHierarchyListRef list = fontList();
    check(sADMHierarchyList->SetEntryWidth(list, widthOf(list)));
    check(sADMHierarchyList->SetEntryHeight(list, fontRowHeight));
}

ADMHierarchyListRef GlyphoraDialog::fontList() const noexcept {
    ADMHierarchyListRef list = nullptr;
    sADMItem->GetHierarchyList(GetItem(fontListItem), &list);
    return list;
}

GlyphoraDialog::Rows GlyphoraDialog::selectedRows() const {
    ADMHierarchyListRef list = fontList();
    std::int32_t count = 0;
    check(sADMHierarchyList->NumberOfSelectedEntries(list, &count));
    Rows rows;
    for (std::int32_t i = 0; i < count; ++i) {
        ADMListEntryRef entry = nullptr;
        check(sADMHierarchyList->GetSelectedEntry(list, i, &entry));
        if (const UserDataContainer* const row = containerOf(entry); row != nullptr) {
            rows.push_back(row);
        }
    }
    return rows;
}

void GlyphoraDialog::synchronizeDialog() {
    const RowStates before = emptyFontList(fontList());
    std::int32_t index = 0;
    for (const auto& info : fonts_) {
        if (!info->font.isActive) {
            insertFontRow(index++, info, before);
        }
    }
    BaseADMItem(*this, fontListItem).Invalidate();
    updateFontList();
    if (!isClosing_ && VexFontSuite::getNumMissingFonts(fonts_) == 0) {
        isClosing_ = true; // further news may come before the run has ended
        processReplacements();
        Delay(closingPause, nullptr);
        EndModal(kADMOKItemID, false);
    }
}

void GlyphoraDialog::insertFontRow(std::int32_t index,
                                   const Orvil::SmartPointer<GLY::GLYFontInfo>& info,
                                   const RowStates& before) {
    ADMListEntryRef entry = nullptr;
    check(sADMHierarchyList->InsertEntry(fontList(), index, &entry));
    giveContainer(entry, {UserDataContainer::fontRow, info->font.containerID, info});
    const auto found = before.find(info.get());
    const RowState* const state = found != before.end() ? &found->second : nullptr;
    if (state != nullptr && state->selected) {
        check(sADMListEntry4->Select(entry, 1));
    }
    if (info->replaced == 0 && !info->font.fontInfos.empty()) {
        insertCandidateRows(entry, info, state);
    }
    if (state != nullptr) {
        sADMListEntry4->Expand(entry, static_cast<AIBoolean>(state->expanded));
    } else if (info->font.fontInfos.size() == 1) {
        sADMListEntry4->Expand(entry, 0);
    }
}

void GlyphoraDialog::insertCandidateRows(ADMListEntryRef fontEntry,
                                         const Orvil::SmartPointer<GLY::GLYFontInfo>& info,
                                         const RowState* before) {
    ADMHierarchyListRef candidates = nullptr;
    check(sADMListEntry4->CreateChildList(fontEntry, &candidates));
    check(sADMHierarchyList->SetIndentation(candidates, candidateIndentation));
    const std::int32_t width = widthOf(candidates);
    check(sADMHierarchyList->SetEntryWidth(candidates, width));
    std::int32_t index = 0;
    for (const Protocol::Font::Info& candidate : info->font.fontInfos) {
        ADMListEntryRef entry = nullptr;
        check(sADMHierarchyList->InsertEntry(candidates, index++, &entry));
        giveContainer(entry, {UserDataContainer::candidateRow, candidate.name, info});
        check(sADMListEntry4->SetText(entry, candidate.value.c_str()));
        if (before != nullptr && before->selectedCandidates.contains(candidate.name)) {
            check(sADMListEntry4->Select(entry, 1));
        }
        float height = 0;
        breakStringAtWidth(entry, candidate.value, static_cast<float>(width), height);
        check(sADMHierarchyList->SetEntryHeight(candidates,
                                                static_cast<std::int32_t>(height + candidateGap)));
    }
    check(sADMHierarchyList->SetIndentation(candidates, candidateIndentation));
}

void GlyphoraDialog::updateFontList() {
    const auto enable = [this](std::int32_t item, bool enabled) {
        BaseADMItem(*this, item).Enable(enabled);
    };
    const Rows rows = selectedRows();
    const bool isSelected = !rows.empty();
    const bool hasCandidate = std::any_of(rows.begin(), rows.end(), [](const auto* row) {
        return row->kind == UserDataContainer::candidateRow;
    });
    const bool isKnown = std::any_of(rows.begin(), rows.end(),
                                     [](const auto* row) { return row->info->installed != 0; });
    for (const ItemText& text : itemTexts) {
        setText(*this, text);
    }
    if (isSelected) {
        setText(*this, activateSelectedText);
    }
    enable(showButton, isKnown);
    enable(buyButton, rows.size() == 1 && GLY::isStoreEnabled());
    enable(activateButton, !isSelected || isKnown);
    enable(replaceButton, isSelected && !hasCandidate);
}
