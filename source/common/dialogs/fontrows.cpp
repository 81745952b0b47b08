// SPDX-License-Identifier: MIT
// Containers go to entries when rows are made, and are taken back before rows are removed.
#include "fontrows.h"

#include "ai/unicodestring.h"
#include "suitepointers.h"

#include <memory>
#include <utility>

namespace {

std::unique_ptr<UserDataContainer> takeContainer(ADMListEntryRef entry) {
    std::unique_ptr<UserDataContainer> container(containerOf(entry));
    if (container != nullptr) {
        sADMListEntry4->SetUserData(entry, nullptr);
    }
    return container;
}

bool isSelected(ADMListEntryRef entry) {
    AIBoolean selected = 0;
    return sADMListEntry4->IsSelected(entry, &selected) == kNoErr && selected != 0;
}

void takeCandidateContainers(ADMListEntryRef entry, RowState& state) {
    ADMHierarchyListRef candidates = nullptr;
    std::int32_t count = 0;
    if (sADMListEntry4->GetChildList(entry, &candidates) != kNoErr || candidates == nullptr ||
        sADMHierarchyList->NumberOfEntries(candidates, &count) != kNoErr) {
        return;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        ADMListEntryRef candidate = nullptr;
        if (sADMHierarchyList->GetEntry(candidates, i, &candidate) != kNoErr) {
            continue;
        }
        const auto container = takeContainer(candidate);
        if (container != nullptr && isSelected(candidate)) {
            state.selectedCandidates.insert(container->text);
        }
    }
}

} // namespace

ADMDialogRef dialogOf(ADMListEntryRef entry) {
    ADMItemRef item = nullptr;
    ADMDialogRef dialog = nullptr;
    return sADMListEntry4->GetItem(entry, &item) == kNoErr &&
                   sADMItem->GetDialog(item, &dialog) == kNoErr
               ? dialog
               : nullptr;
}

UserDataContainer* containerOf(ADMListEntryRef entry) {
    void* data = nullptr;
    return sADMListEntry4->GetUserData(entry, &data) == kNoErr
               ? static_cast<UserDataContainer*>(data)
               : nullptr;
}

void giveContainer(ADMListEntryRef entry, UserDataContainer container) {
    auto owned = std::make_unique<UserDataContainer>(std::move(container));
    const ADMErr error = sADMListEntry4->SetUserData(entry, owned.get());
    if (error != kNoErr) {
        throw ai::Error(error);
    }
    static_cast<void>(owned.release()); // the entry's from here on
}

std::string containerToShow(const UserDataContainer& row) {
    return row.kind == UserDataContainer::fontRow ? anyContainer : row.text;
}

RowStates emptyFontList(ADMHierarchyListRef list) {
    RowStates states;
    ADMListEntryRef entry = nullptr;
    for (std::int32_t kept = 0; sADMHierarchyList->GetEntry(list, kept, &entry) == kNoErr;) {
        AIBoolean expanded = 0;
        RowState state;
        const auto container = takeContainer(entry);
        takeCandidateContainers(entry, state);
        if (container != nullptr && container->kind == UserDataContainer::fontRow &&
            sADMListEntry4->IsExpanded(entry, &expanded) == kNoErr) {
            state.expanded = expanded != 0;
            state.selected = isSelected(entry);
            states[container->info.get()] = std::move(state);
        }
        if (sADMHierarchyList->RemoveEntry(list, kept) != kNoErr) {
            ++kept;
        }
    }
    return states;
}
