// SPDX-License-Identifier: MIT
// Suites of dialogs, of the items in them, and of what is told about them.
// Besides what is said of it, every call answers kBadParameterErr for a null or dead handle, a null
// result pointer or text, or a buffer of less than one byte; kWrongThreadErr off the main thread;
// and kNotRunningErr while the plug-in handles no message. Texts are UTF-8; the host copies those
// that it is given. Where a routine may be null, null means the host's own.
#pragma once

#include "adm/types.h"

/// "ADM Dialog Suite" 10
struct ADMDialogSuite {
    /// [main-thread] Makes a dialog, not yet shown, by the layout `layoutID` of the plug-in's
    /// resources, and calls `init`, unless it is null, with it and `data`; the plug-in owns
    /// `*dialog` until Destroy. `options` are not looked at. The error of `init`, and no dialog;
    /// kBadParameterErr: there is no such layout, or a style other than kADMModalDialogStyle.
    ADMErr (*Create)(SPPluginRef plugin, const char* name, std::int32_t layoutID,
                     std::int32_t style, ADMDialogInitProc init, void* data, std::int32_t options,
                     ADMDialogRef* dialog);
    /// [main-thread] Ends the dialog and all that belongs to it; its timers are aborted.
    /// kBadParameterErr: it is running modally, or being destroyed.
    ADMErr (*Destroy)(ADMDialogRef dialog);
    /// [main-thread, modal] Shows the dialog until EndModal; `*item` is the item that ended it.
    /// kBadParameterErr: it is running already.
    ADMErr (*DisplayAsModal)(ADMDialogRef dialog, std::int32_t* item);
    /// [main-thread] Ends the dialog's modal run, after those within it, as soon as the callbacks
    /// return; `cancelled` tells whether the user gave up. A second ending changes nothing; one
    /// that comes before the run has DisplayAsModal return at once.
    ADMErr (*EndModal)(ADMDialogRef dialog, std::int32_t item, AIBoolean cancelled);

    /// [main-thread] kBadParameterErr: there is no item of this number.
    ADMErr (*GetItem)(ADMDialogRef dialog, std::int32_t itemID, ADMItemRef* item);
    /// [main-thread] A pointer of the plug-in's, null at first.
    ADMErr (*SetUserData)(ADMDialogRef dialog, void* data);
    ADMErr (*GetUserData)(ADMDialogRef dialog, void** data); ///< [main-thread]
    /// [main-thread] The dialog's title.
    ADMErr (*SetText)(ADMDialogRef dialog, const char* title);
    /// [main-thread] Where the dialog is on the screen.
    ADMErr (*SetBoundsRect)(ADMDialogRef dialog, const ADMRect* bounds);
    /// [main-thread] Whether the dialog can be seen while it runs. It can, at first.
    ADMErr (*Show)(ADMDialogRef dialog, AIBoolean visible);
    /// [main-thread] Whether the host moves the dialog so that the user can reach it. It does, at
    /// first.
    ADMErr (*ForceOnScreen)(ADMDialogRef dialog, AIBoolean forced);

    /// [main-thread] What the track routine is called for.
    ADMErr (*SetMask)(ADMDialogRef dialog, std::uint32_t mask);
    /// [main-thread] What is called when something happens to the dialog or to its items.
    ADMErr (*SetNotifyProc)(ADMDialogRef dialog, ADMDialogNotifyProc notify);
    ADMErr (*SetDrawProc)(ADMDialogRef dialog, ADMDialogDrawProc draw); ///< [main-thread]
    /// [main-thread]
    ADMErr (*SetTrackProc)(ADMDialogRef dialog, ADMDialogTrackProc track);
    /// [main-thread] What the host does by itself: the buttons 1 and 2 end a modal run.
    ADMErr (*DefaultNotify)(ADMDialogRef dialog, ADMNotifierRef notifier);
    /// [main-thread] The host draws nothing there by itself.
    ADMErr (*DefaultDraw)(ADMDialogRef dialog, ADMDrawerRef drawer);
    /// [main-thread] Nor does it track anything: `*handled` is 0.
    ADMErr (*DefaultTrack)(ADMDialogRef dialog, ADMTrackerRef tracker, AIBoolean* handled);

    /// [main-thread] Calls `proc` every `milliseconds` while the dialog runs, until it answers 0.
    /// `abort` may be null. kBadParameterErr: a time below 1 ms.
    ADMErr (*CreateTimer)(ADMDialogRef dialog, std::int32_t milliseconds, ADMTimerProc proc,
                          ADMTimerAbortProc abort, ADMTimerRef* timer);
};
static_assert(isSuiteTable<ADMDialogSuite, 19>);

/// "ADM Item Suite" 7
struct ADMItemSuite {
    ADMErr (*GetID)(ADMItemRef item, std::int32_t* itemID); ///< [main-thread]
    /// [main-thread] The dialog that the item is in.
    ADMErr (*GetDialog)(ADMItemRef item, ADMDialogRef* dialog);
    /// [main-thread] A pointer of the plug-in's, null at first.
    ADMErr (*SetUserData)(ADMItemRef item, void* data);
    ADMErr (*GetUserData)(ADMItemRef item, void** data); ///< [main-thread]
    /// [main-thread] Whether the user can use the item. They can, at first.
    ADMErr (*Enable)(ADMItemRef item, AIBoolean enabled);
    /// [main-thread] The label of a button, the words of a static text.
    ADMErr (*SetText)(ADMItemRef item, const char* text);
    /// [main-thread] Where the item is within its dialog.
    ADMErr (*GetBoundsRect)(ADMItemRef item, ADMRect* bounds);
    /// [main-thread] Has the item drawn anew.
    ADMErr (*Invalidate)(ADMItemRef item);
    /// [main-thread] kADMMultiSelectListStyle or 0. kBadParameterErr: the item is no list.
    ADMErr (*SetItemStyle)(ADMItemRef item, std::int32_t style);
    /// [main-thread] The list that the item shows. kBadParameterErr: it shows none of this kind.
    ADMErr (*GetList)(ADMItemRef item, ADMListRef* list);
    /// [main-thread] See GetList.
    ADMErr (*GetHierarchyList)(ADMItemRef item, ADMHierarchyListRef* list);

    /// [main-thread] What the track routine is called for.
    ADMErr (*SetMask)(ADMItemRef item, std::uint32_t mask);
    ADMErr (*SetNotifyProc)(ADMItemRef item, ADMItemNotifyProc notify); ///< [main-thread]
    ADMErr (*SetDrawProc)(ADMItemRef item, ADMItemDrawProc draw);       ///< [main-thread]
    ADMErr (*SetTrackProc)(ADMItemRef item, ADMItemTrackProc track);    ///< [main-thread]
    /// [main-thread] What the host does by itself: the notifier goes on to the dialog.
    ADMErr (*DefaultNotify)(ADMItemRef item, ADMNotifierRef notifier);
    /// [main-thread] See ADMDialogSuite::DefaultDraw, here and below.
    ADMErr (*DefaultDraw)(ADMItemRef item, ADMDrawerRef drawer);
    /// [main-thread]
    ADMErr (*DefaultTrack)(ADMItemRef item, ADMTrackerRef tracker, AIBoolean* handled);
};
static_assert(isSuiteTable<ADMItemSuite, 18>);

/// "ADM Notifier Suite" 2
struct ADMNotifierSuite {
    /// [main-thread] `*item` is null when the notifier is the dialog's own.
    ADMErr (*GetItem)(ADMNotifierRef notifier, ADMItemRef* item);
    /// [main-thread] Reads the type into the caller's `buffer`: at most `size` - 1 bytes and a
    /// terminating zero.
    ADMErr (*GetNotifierType)(ADMNotifierRef notifier, char* buffer, std::int32_t size);
};
static_assert(isSuiteTable<ADMNotifierSuite, 2>);

/// "ADM Tracker Suite" 2
struct ADMTrackerSuite {
    /// [main-thread] kADMDoubleClickModifier, or 0.
    ADMErr (*GetModifiers)(ADMTrackerRef tracker, std::uint32_t* modifiers);
};
static_assert(isSuiteTable<ADMTrackerSuite, 1>);
