// SPDX-License-Identifier: MIT
// The items of the missing-fonts dialog, and what the rows of its list stand for.
#pragma once

#include "GLYFontInfo.h"
#include "adm/types.h"
#include "misc/threads/smartpointer.h"

#include <string>
#include <unordered_map>
#include <unordered_set>

/// Numbers in the layout; OK and Cancel are the host's.
enum DialogItem : std::int32_t {
    showButton = 3,
    buyButton = 4,
    activateButton = 5,
    replaceButton = 6,
    fontListItem = 7,
    statusHeading = 8,
    familyHeading = 9,
    styleHeading = 10,
    technologyHeading = 11,
};

/// What a row stands for. [main-thread]
struct UserDataContainer {
    enum Kind : std::int32_t {
        candidateRow = 1,
        fontRow = 2,
    };

    Kind kind;
    std::string text;                           ///< the record's container; the candidate's name
    Orvil::SmartPointer<GLY::GLYFontInfo> info; ///< never null
};

/// The dialog that the entry is in; null if there is none.
[[nodiscard]] ADMDialogRef dialogOf(ADMListEntryRef entry);
/// Of the entry, which owns it; null if there is none.
[[nodiscard]] UserDataContainer* containerOf(ADMListEntryRef entry);
/// Throws ai::Error when the entry does not take it.
void giveContainer(ADMListEntryRef entry, UserDataContainer container);

/// What the font manager is to show for a row: the candidate, or for a font row its own choice.
[[nodiscard]] std::string containerToShow(const UserDataContainer& row);
/// The container of a request by which the font manager chooses.
constexpr const char* anyContainer = "-1";

/// How the rows of a record were.
struct RowState {
    bool expanded = false;
    bool selected = false;
    std::unordered_set<std::string> selectedCandidates; ///< by name
};
using RowStates = std::unordered_map<const GLY::GLYFontInfo*, RowState>;

/// Removes all entries with their containers, and returns how they were. An entry that the host
/// does not remove stays without one. `list` may be null. Throws nothing but std::bad_alloc.
RowStates emptyFontList(ADMHierarchyListRef list);
