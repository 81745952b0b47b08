// SPDX-License-Identifier: MIT
// Suites of the lists in dialogs and of their entries. What is said of calls, texts and errors in
// dialogsuites.h holds here, too. Indices count from 0.
#pragma once

#include "adm/types.h"

/// "ADM List Suite" 1: a list of texts.
struct ADMListSuite {
    /// [main-thread] Inserts an entry before the one at `index`, or at the end. kBadParameterErr:
    /// an index beyond that.
    ADMErr (*InsertEntry)(ADMListRef list, std::int32_t index, ADMEntryRef* entry);
    /// [main-thread] The entry that the user chose last; null when there is none.
    ADMErr (*GetActiveEntry)(ADMListRef list, ADMEntryRef* entry);
};
static_assert(isSuiteTable<ADMListSuite, 2>);

/// "ADM Entry Suite" 2
struct ADMEntrySuite {
    ADMErr (*SetText)(ADMEntryRef entry, const char* text); ///< [main-thread]
    /// [main-thread] Reads the text into the caller's `buffer`: at most `size` - 1 bytes and a
    /// terminating zero. A character that does not fit whole may be cut.
    ADMErr (*GetText)(ADMEntryRef entry, char* buffer, std::int32_t size);
};
static_assert(isSuiteTable<ADMEntrySuite, 2>);

/// "ADM Hierarchy List Suite" 5: a list whose entries may have child lists. Calls that concern
/// selection, routines and masks are about the whole tree that the list stands in.
struct ADMHierarchyListSuite {
    /// [main-thread] The track routine of the entries, which is never null: at first it is the
    /// host's own.
    ADMErr (*GetTrackProc)(ADMHierarchyListRef list, ADMListEntryTrackProc* track);
    /// [main-thread]
    ADMErr (*SetTrackProc)(ADMHierarchyListRef list, ADMListEntryTrackProc track);
    /// [main-thread] What the track routine is called for.
    ADMErr (*SetMask)(ADMHierarchyListRef list, std::uint32_t mask);
    /// [main-thread] What draws each row.
    ADMErr (*SetDrawProc)(ADMHierarchyListRef list, ADMListEntryDrawProc draw);

    /// [main-thread] Where the rows are within the dialog.
    ADMErr (*GetBoundsRect)(ADMHierarchyListRef list, ADMRect* bounds);
    /// [main-thread] Size of the rows of this list alone, in pixels. In a window, rows end with the
    /// list, which grows and shrinks with it, and the height is at least that of a line.
    /// kBadParameterErr: below 1.
    ADMErr (*SetEntryWidth)(ADMHierarchyListRef list, std::int32_t width);
    /// [main-thread] The same; of several heights the greatest holds, as all rows are equally high.
    ADMErr (*SetEntryHeight)(ADMHierarchyListRef list, std::int32_t height);
    /// [main-thread] How far the rows of this list stand to the right of where they would stand by
    /// their depth; negative: to the left.
    ADMErr (*SetIndentation)(ADMHierarchyListRef list, std::int32_t pixels);

    /// [main-thread] Inserts an entry before the one at `index`, or at the end. kBadParameterErr:
    /// an index beyond that.
    ADMErr (*InsertEntry)(ADMHierarchyListRef list, std::int32_t index, ADMListEntryRef* entry);
    /// [main-thread] Removes an entry and those below it.
    ADMErr (*RemoveEntry)(ADMHierarchyListRef list, std::int32_t index);
    ADMErr (*NumberOfEntries)(ADMHierarchyListRef list, std::int32_t* count); ///< [main-thread]
    /// [main-thread] kBadParameterErr: an index out of range.
    ADMErr (*GetEntry)(ADMHierarchyListRef list, std::int32_t index, ADMListEntryRef* entry);

    /// [main-thread] The selected entries of the whole tree, in the order of their rows.
    ADMErr (*NumberOfSelectedEntries)(ADMHierarchyListRef list, std::int32_t* count);
    /// [main-thread] kBadParameterErr: an index out of range.
    ADMErr (*GetSelectedEntry)(ADMHierarchyListRef list, std::int32_t index,
                               ADMListEntryRef* entry);
    /// [main-thread] The entry that the user chose last; null when there is none.
    ADMErr (*GetActiveEntry)(ADMHierarchyListRef list, ADMListEntryRef* entry);
};
static_assert(isSuiteTable<ADMHierarchyListSuite, 15>);

/// "ADM List Entry Suite" 4: an entry of a hierarchical list.
struct ADMListEntrySuite4 {
    ADMErr (*SetText)(ADMListEntryRef entry, const char* text); ///< [main-thread]
    /// [main-thread] Reads the text into the caller's `buffer`: at most `size` - 1 bytes and a
    /// terminating zero. A character that does not fit whole may be cut.
    ADMErr (*GetText)(ADMListEntryRef entry, char* buffer, std::int32_t size);
    /// [main-thread] A pointer of the plug-in's, null at first. The plug-in frees what it points to
    /// before the entry goes.
    ADMErr (*SetUserData)(ADMListEntryRef entry, void* data);
    ADMErr (*GetUserData)(ADMListEntryRef entry, void** data); ///< [main-thread]
    /// [main-thread] The item that shows the entry.
    ADMErr (*GetItem)(ADMListEntryRef entry, ADMItemRef* item);
    /// [main-thread] The list below the entry; null when there is none.
    ADMErr (*GetChildList)(ADMListEntryRef entry, ADMHierarchyListRef* list);
    /// [main-thread] The list below the entry, made if there is none.
    ADMErr (*CreateChildList)(ADMListEntryRef entry, ADMHierarchyListRef* list);
    /// [main-thread] Shows or hides the entries below. They are hidden at first.
    ADMErr (*Expand)(ADMListEntryRef entry, AIBoolean expanded);
    ADMErr (*IsExpanded)(ADMListEntryRef entry, AIBoolean* expanded); ///< [main-thread]
    ADMErr (*IsSelected)(ADMListEntryRef entry, AIBoolean* selected); ///< [main-thread]
    /// [main-thread] Adds the entry to what is selected, or takes it out, as if it had been so
    /// before: no notifier comes. It becomes the active one if there is none.
    ADMErr (*Select)(ADMListEntryRef entry, AIBoolean selected);
    /// [main-thread] A drawer to measure with, as its row would be drawn; valid as long as the
    /// dialog. What is drawn with it goes nowhere.
    ADMErr (*GetMeasuringDrawer)(ADMListEntryRef entry, ADMDrawerRef* drawer);
};
static_assert(isSuiteTable<ADMListEntrySuite4, 12>);
