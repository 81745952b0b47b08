// SPDX-License-Identifier: MIT
// Handles, values and callbacks of the dialog manager.
// A handle is owned by the host and dies with what it stands for: an item, a list and its entries
// with their dialog, an entry with its removal, a notifier, tracker or drawer with the callback
// that it came with. A callback runs on the main thread, within the message that the plug-in
// handles, and must not throw.
#pragma once

#include "sp/types.h"

using ADMDialogRef = struct ADMDialog*;
using ADMItemRef = struct ADMItem*;
/// A list of texts in one column.
using ADMListRef = struct ADMList*;
using ADMEntryRef = struct ADMEntry*;
/// A list whose entries may have lists of their own below them.
using ADMHierarchyListRef = struct ADMHierarchyList*;
using ADMListEntryRef = struct ADMListEntry*;
using ADMNotifierRef = struct ADMNotifier*;
using ADMTrackerRef = struct ADMTracker*;
using ADMDrawerRef = struct ADMDrawer*;
using ADMTimerRef = struct ADMTimer*;

/// In pixels of a screen of ordinary density; y grows downward.
struct ADMPoint {
    std::int32_t h;
    std::int32_t v;
};
/// Right and bottom are the first pixels outside.
struct ADMRect {
    std::int32_t left;
    std::int32_t top;
    std::int32_t right;
    std::int32_t bottom;
};
static_assert(sizeof(ADMPoint) == 8 && sizeof(ADMRect) == 16);

/// How a dialog is to look and behave; no other style is used.
constexpr std::int32_t kADMModalDialogStyle = 0;

/// The push button that confirms, and the one that gives up. Unless the plug-in handles it
/// otherwise, each ends the modal run of its dialog.
constexpr std::int32_t kADMOKItemID = 1;
constexpr std::int32_t kADMCancelItemID = 2;

/// Item style of a list in which several entries can be selected at a time.
constexpr std::int32_t kADMMultiSelectListStyle = 1;

/// The type of a notifier that comes when the user has changed an item: pressed a button, changed
/// what is selected in a list.
constexpr const char* kADMUserChangedNotifier = "ADM User Changed Notifier";

// What a track routine is called for; a mask is a sum of these.
constexpr std::uint32_t kADMButtonMask = 0x4; ///< a mouse button was released over it
/// What the routine is not called for is tracked by the host as ever. This host does so anyway.
constexpr std::uint32_t kADMDefaultTrackingMask = 0x80000000;

/// Bit of a tracker's modifiers: the release ends a double click.
constexpr std::uint32_t kADMDoubleClickModifier = 0x800;

/// Colours of the user's desktop.
enum ADMColor : std::int32_t {
    kADMTextColor = 0,
    kADMBackgroundColor = 1,
    kADMHighlightColor = 2 ///< behind what is selected
};

// The host's own pictures, which every plug-in may draw.
constexpr std::int32_t kADMExpandedPicture = -16096;
constexpr std::int32_t kADMCollapsedPicture = -16097;

/// [main-thread] Called once, while the dialog is being created and is not yet shown. `data` is
/// what the creator gave. An error undoes the creation.
using ADMDialogInitProc = ADMErr (*)(ADMDialogRef dialog, void* data);
/// [main-thread] Something happened to the dialog or, where no routine of the item took it, to one
/// of its items.
using ADMDialogNotifyProc = void (*)(ADMDialogRef dialog, ADMNotifierRef notifier);
/// [main-thread] Draws what lies behind the items.
using ADMDialogDrawProc = void (*)(ADMDialogRef dialog, ADMDrawerRef drawer);
/// [main-thread] The result says whether the mouse was dealt with; the host goes on all the same.
using ADMDialogTrackProc = AIBoolean (*)(ADMDialogRef dialog, ADMTrackerRef tracker);
/// [main-thread] The same for one item.
using ADMItemNotifyProc = void (*)(ADMItemRef item, ADMNotifierRef notifier);
/// [main-thread] Draws the item.
using ADMItemDrawProc = void (*)(ADMItemRef item, ADMDrawerRef drawer);
/// [main-thread] See ADMDialogTrackProc.
using ADMItemTrackProc = AIBoolean (*)(ADMItemRef item, ADMTrackerRef tracker);
/// [main-thread] Draws one row.
using ADMListEntryDrawProc = void (*)(ADMListEntryRef entry, ADMDrawerRef drawer);
/// [main-thread] The result says whether the mouse was dealt with; the host goes on all the same.
using ADMListEntryTrackProc = AIBoolean (*)(ADMListEntryRef entry, ADMTrackerRef tracker);
/// [main-thread] A timer's time has passed. The result says whether it is to come again.
using ADMTimerProc = AIBoolean (*)(ADMDialogRef dialog, ADMTimerRef timer);
/// [main-thread] The dialog ended before the timer was done.
using ADMTimerAbortProc = void (*)(ADMDialogRef dialog, ADMTimerRef timer);
