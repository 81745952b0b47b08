// SPDX-License-Identifier: MIT
// The suites of lists and their entries.
#include "host/adm/admsuites.h"
#include "host/adm/suitebodies.h"

#include <algorithm>

namespace host {

namespace {

template <typename ListRef, typename EntryRef>
SPErr insertEntry(Dialogs& dialogs, ListRef ref, std::int32_t index, EntryRef* entry) {
    return with(dialogs, ref, [&](RowList& list) {
        if (index < 0 || static_cast<std::size_t>(index) > list.rows.size()) {
            return kBadParameterErr;
        }
        const Row& row = dialogs.insertRow(list, static_cast<std::size_t>(index));
        *entry = reinterpret_cast<EntryRef>(row.handle);
        return kNoErr;
    });
}

template <typename ListRef, typename EntryRef>
SPErr getActiveEntry(Dialogs& dialogs, ListRef ref, EntryRef* entry) {
    return with(dialogs, ref, [&](const RowList& list) {
        const Row* const row = list.tree.active();
        *entry = row != nullptr ? reinterpret_cast<EntryRef>(row->handle) : nullptr;
    });
}

template <typename EntryRef>
SPErr setText(Dialogs& dialogs, EntryRef ref, const char* text) {
    return with(dialogs, ref, [&](Row& row) {
        row.text = text;
        dialogs.changed(row.list.tree.item());
    });
}

template <typename EntryRef>
SPErr getText(Dialogs& dialogs, EntryRef ref, char* buffer, std::int32_t size) {
    return with(dialogs, ref, [&](const Row& row) {
        if (size < 1) {
            return kBadParameterErr;
        }
        copyText(row.text, buffer, size);
        return kNoErr;
    });
}

// "ADM Hierarchy List Suite"

/// The host's own: nothing but what it does anyway.
AIBoolean trackEntry(ADMListEntryRef /*entry*/, ADMTrackerRef /*tracker*/) {
    return 0;
}

SPErr getTrackProc(Dialogs& dialogs, ADMHierarchyListRef ref, ADMListEntryTrackProc* track) {
    return with(dialogs, ref, [&](const RowList& list) {
        *track = list.tree.track != nullptr ? list.tree.track : trackEntry;
    });
}

template <auto member, typename Value>
SPErr setOfTree(Dialogs& dialogs, ADMHierarchyListRef ref, Value value) {
    return with(dialogs, ref, [&](RowList& list) { list.tree.*member = value; });
}

SPErr getListBounds(Dialogs& dialogs, ADMHierarchyListRef ref, ADMRect* bounds) {
    return with(dialogs, ref, [&](const RowList& list) { *bounds = list.tree.item().bounds; });
}

template <auto member>
SPErr setExtent(Dialogs& dialogs, ADMHierarchyListRef ref, std::int32_t pixels) {
    return with(dialogs, ref, [&](RowList& list) {
        if (pixels < 1) {
            return kBadParameterErr;
        }
        list.*member = member == &RowList::entryHeight ? std::max(list.*member, pixels) : pixels;
        dialogs.changed(list.tree.item());
        return kNoErr;
    });
}

SPErr setIndentation(Dialogs& dialogs, ADMHierarchyListRef ref, std::int32_t pixels) {
    return with(dialogs, ref, [&](RowList& list) {
        list.indentation = pixels;
        dialogs.changed(list.tree.item());
    });
}

bool isIndex(std::int32_t index, std::size_t size) {
    return index >= 0 && static_cast<std::size_t>(index) < size;
}

SPErr removeEntry(Dialogs& dialogs, ADMHierarchyListRef ref, std::int32_t index) {
    return with(dialogs, ref, [&](RowList& list) {
        if (!isIndex(index, list.rows.size())) {
            return kBadParameterErr;
        }
        dialogs.removeRow(list, static_cast<std::size_t>(index));
        return kNoErr;
    });
}

SPErr numberOfEntries(Dialogs& dialogs, ADMHierarchyListRef ref, std::int32_t* count) {
    return with(dialogs, ref,
                [&](const RowList& list) { *count = static_cast<std::int32_t>(list.rows.size()); });
}

SPErr getEntry(Dialogs& dialogs, ADMHierarchyListRef ref, std::int32_t index,
               ADMListEntryRef* entry) {
    return with(dialogs, ref, [&](const RowList& list) {
        if (!isIndex(index, list.rows.size())) {
            return kBadParameterErr;
        }
        *entry = list.rows[static_cast<std::size_t>(index)]->handle;
        return kNoErr;
    });
}

SPErr numberOfSelectedEntries(Dialogs& dialogs, ADMHierarchyListRef ref, std::int32_t* count) {
    return with(dialogs, ref, [&](RowList& list) {
        *count = static_cast<std::int32_t>(list.tree.selected().size());
    });
}

SPErr getSelectedEntry(Dialogs& dialogs, ADMHierarchyListRef ref, std::int32_t index,
                       ADMListEntryRef* entry) {
    return with(dialogs, ref, [&](RowList& list) {
        const std::vector<Row*>& selected = list.tree.selected();
        if (!isIndex(index, selected.size())) {
            return kBadParameterErr;
        }
        *entry = selected[static_cast<std::size_t>(index)]->handle;
        return kNoErr;
    });
}

// "ADM List Entry Suite"

SPErr getEntryItem(Dialogs& dialogs, ADMListEntryRef ref, ADMItemRef* item) {
    return with(dialogs, ref, [&](const Row& row) { *item = row.list.tree.item().handle; });
}

SPErr getChildList(Dialogs& dialogs, ADMListEntryRef ref, ADMHierarchyListRef* list) {
    return with(dialogs, ref, [&](const Row& row) {
        *list = row.children != nullptr ? row.children->handle : nullptr;
    });
}

SPErr createChildList(Dialogs& dialogs, ADMListEntryRef ref, ADMHierarchyListRef* list) {
    return with(dialogs, ref, [&](Row& row) { *list = dialogs.childrenOf(row).handle; });
}

SPErr expand(Dialogs& dialogs, ADMListEntryRef ref, AIBoolean expanded) {
    return with(dialogs, ref, [&](Row& row) { dialogs.setExpanded(row, expanded != 0); });
}

SPErr select(Dialogs& dialogs, ADMListEntryRef ref, AIBoolean selected) {
    return with(dialogs, ref, [&](Row& row) {
        row.list.tree.setSelected(row, selected != 0);
        dialogs.changed(row.list.tree.item());
    });
}

SPErr getMeasuringDrawer(Dialogs& dialogs, ADMListEntryRef ref, ADMDrawerRef* drawer) {
    return with(dialogs, ref, [&](const Row&) { *drawer = dialogs.measuringDrawer(); });
}

constexpr ADMListSuite listTable{
    Entry<ADMListSuite, "InsertEntry", insertEntry<ADMListRef, ADMEntryRef>>::call,
    Entry<ADMListSuite, "GetActiveEntry", getActiveEntry<ADMListRef, ADMEntryRef>>::call,
};
constexpr ADMEntrySuite entryTable{
    Entry<ADMEntrySuite, "SetText", setText<ADMEntryRef>>::call,
    Entry<ADMEntrySuite, "GetText", getText<ADMEntryRef>>::call,
};

template <CallName name, auto body, Nulls nulls = Nulls::Refused>
constexpr auto inTree = Entry<ADMHierarchyListSuite, name, body, nulls>::call;
template <CallName name, auto body, Nulls nulls = Nulls::Refused>
constexpr auto inEntry = Entry<ADMListEntrySuite4, name, body, nulls>::call;

constexpr ADMHierarchyListSuite hierarchyTable{
    inTree<"GetTrackProc", getTrackProc>,
    inTree<"SetTrackProc", setOfTree<&Tree::track, ADMListEntryTrackProc>, Nulls::Allowed>,
    inTree<"SetMask", setOfTree<&Tree::mask, std::uint32_t>>,
    inTree<"SetDrawProc", setOfTree<&Tree::draw, ADMListEntryDrawProc>, Nulls::Allowed>,
    inTree<"GetBoundsRect", getListBounds>,
    inTree<"SetEntryWidth", setExtent<&RowList::entryWidth>>,
    inTree<"SetEntryHeight", setExtent<&RowList::entryHeight>>,
    inTree<"SetIndentation", setIndentation>,
    inTree<"InsertEntry", insertEntry<ADMHierarchyListRef, ADMListEntryRef>>,
    inTree<"RemoveEntry", removeEntry>,
    inTree<"NumberOfEntries", numberOfEntries>,
    inTree<"GetEntry", getEntry>,
    inTree<"NumberOfSelectedEntries", numberOfSelectedEntries>,
    inTree<"GetSelectedEntry", getSelectedEntry>,
    inTree<"GetActiveEntry", getActiveEntry<ADMHierarchyListRef, ADMListEntryRef>>,
};
constexpr ADMListEntrySuite4 listEntryTable{
    inEntry<"SetText", setText<ADMListEntryRef>>,
    inEntry<"GetText", getText<ADMListEntryRef>>,
    inEntry<"SetUserData", setMember<&Row::userData, ADMListEntryRef, void*>, Nulls::Allowed>,
    inEntry<"GetUserData", getMember<&Row::userData, ADMListEntryRef, void*>>,
    inEntry<"GetItem", getEntryItem>,
    inEntry<"GetChildList", getChildList>,
    inEntry<"CreateChildList", createChildList>,
    inEntry<"Expand", expand>,
    inEntry<"IsExpanded", getMember<&Row::expanded, ADMListEntryRef, AIBoolean>>,
    inEntry<"IsSelected", getMember<&Row::selected, ADMListEntryRef, AIBoolean>>,
    inEntry<"Select", select>,
    inEntry<"GetMeasuringDrawer", getMeasuringDrawer>,
};

} // namespace

void provideListSuites(SuiteRegistry& suites) {
    suites.provide(listTable);
    suites.provide(entryTable);
    suites.provide(hierarchyTable);
    suites.provide(listEntryTable);
}

} // namespace host
