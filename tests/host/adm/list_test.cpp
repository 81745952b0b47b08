// SPDX-License-Identifier: MIT
// Lists of dialogs: rows coming and going, chosen, clicked, and found again by their handles.
#include "dialogfixture.h"

#include <array>
#include <numeric>

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AList : public DialogFixture {
protected:
    AList() {
        trackerSuite = suite<ADMTrackerSuite>();
        clicks.clear();
        ADMItemRef item = nullptr;
        EXPECT_EQ(suite<ADMDialogSuite>()->GetItem(ref, 7, &item), kNoErr);
        EXPECT_EQ(items->GetHierarchyList(item, &top), kNoErr);
        EXPECT_EQ(items->SetItemStyle(item, kADMMultiSelectListStyle), kNoErr);
        EXPECT_EQ(suite<ADMDialogSuite>()->GetItem(ref, 4, &item), kNoErr);
        EXPECT_EQ(items->GetList(item, &flat), kNoErr);
    }
    ADMListEntryRef insert(ADMHierarchyListRef list, std::int32_t index, const char* text) {
        ADMListEntryRef entry = nullptr;
        EXPECT_EQ(lists->InsertEntry(list, index, &entry), kNoErr);
        EXPECT_EQ(entries->SetText(entry, text), kNoErr);
        return entry;
    }
    ADMHierarchyListRef below(ADMListEntryRef entry) {
        ADMHierarchyListRef list = nullptr;
        EXPECT_EQ(entries->CreateChildList(entry, &list), kNoErr);
        return list;
    }
    std::string text(ADMListEntryRef entry) {
        std::array<char, 16> buffer{};
        EXPECT_EQ(entries->GetText(entry, buffer.data(), buffer.size()), kNoErr);
        return buffer.data();
    }
    std::vector<std::string> texts() {
        std::int32_t count = 0;
        std::vector<std::string> result;
        lists->NumberOfEntries(top, &count);
        for (std::int32_t i = 0; i < count; ++i) {
            ADMListEntryRef entry = nullptr;
            EXPECT_EQ(lists->GetEntry(top, i, &entry), kNoErr);
            result.push_back(text(entry));
        }
        return result;
    }
    std::vector<std::string> selected() {
        std::int32_t count = 0;
        std::vector<std::string> result;
        lists->NumberOfSelectedEntries(top, &count);
        for (std::int32_t i = 0; i < count; ++i) {
            ADMListEntryRef entry = nullptr;
            EXPECT_EQ(lists->GetSelectedEntry(top, i, &entry), kNoErr);
            AIBoolean isSelected = 0;
            entries->IsSelected(entry, &isSelected);
            EXPECT_EQ(isSelected, 1);
            result.push_back(text(entry));
        }
        return result;
    }
    std::string active() {
        ADMListEntryRef entry = nullptr;
        EXPECT_EQ(lists->GetActiveEntry(top, &entry), kNoErr);
        return entry != nullptr ? text(entry) : "";
    }
    Row* row(ADMListEntryRef entry) { return dialogs.find(entry); }

    static inline const ADMTrackerSuite* trackerSuite = nullptr;
    static inline std::vector<std::uint32_t> clicks;
    const ADMItemSuite* items = suite<ADMItemSuite>();
    const ADMHierarchyListSuite* lists = suite<ADMHierarchyListSuite>();
    const ADMListEntrySuite4* entries = suite<ADMListEntrySuite4>();
    ADMDialogRef ref = create();
    ADMHierarchyListRef top = nullptr;
    ADMListRef flat = nullptr;
};

TEST_F(AList, KeepsItsEntriesInOrder) {
    insert(top, 0, "c");
    insert(top, 0, "a");
    insert(top, 1, "b");
    EXPECT_THAT(texts(), ElementsAre("a", "b", "c"));
    ADMListEntryRef entry = nullptr;
    for (const std::int32_t index : {-1, 4}) {
        EXPECT_EQ(lists->InsertEntry(top, index, &entry), kBadParameterErr);
    }
    for (const std::int32_t index : {-1, 3}) {
        EXPECT_EQ(lists->GetEntry(top, index, &entry), kBadParameterErr);
        EXPECT_EQ(lists->RemoveEntry(top, index), kBadParameterErr);
    }
    EXPECT_EQ(lists->RemoveEntry(top, 1), kNoErr);
    EXPECT_THAT(texts(), ElementsAre("a", "c"));
}

TEST_F(AList, KnowsThePlaceOfARowAfterEveryChange) {
    Tree& tree = *dialogs.find(ref)->item(7)->tree;
    const auto places = [&] {
        std::vector<std::size_t> result;
        for (const std::unique_ptr<Row>& each : tree.top().rows) {
            result.push_back(tree.top().indexOf(*each));
        }
        return result;
    };
    for (const std::int32_t index : {0, 1, 0, 1}) {
        insert(top, index, "x");
        std::vector<std::size_t> expected(tree.top().rows.size());
        std::iota(expected.begin(), expected.end(), std::size_t{0});
        EXPECT_EQ(places(), expected);
    }
    const std::uint64_t before = tree.revision();
    lists->RemoveEntry(top, 1);
    EXPECT_THAT(places(), ElementsAre(0, 1, 2));
    EXPECT_GT(tree.revision(), before);
}

TEST_F(AList, TakesAnEntryAwayWithAllBelowIt) {
    const ADMListEntryRef parent = insert(top, 0, "parent");
    ADMHierarchyListRef children = nullptr;
    entries->GetChildList(parent, &children);
    EXPECT_EQ(children, nullptr);
    children = below(parent);
    EXPECT_EQ(below(parent), children);
    const ADMListEntryRef child = insert(children, 0, "child");
    run(ref, [&](Dialog& dialog) {
        dialogs.select(*dialog.item(7)->tree, {row(child)}, row(child));
        EXPECT_EQ(active(), "child");
        lists->RemoveEntry(top, 0);
        EXPECT_EQ(active(), "");
        EXPECT_THAT(selected(), IsEmpty());
    });
    std::int32_t count = 0;
    EXPECT_EQ(entries->SetText(child, "x"), kBadParameterErr);
    EXPECT_EQ(entries->SetText(parent, "x"), kBadParameterErr);
    EXPECT_EQ(lists->NumberOfEntries(children, &count), kBadParameterErr);
}

TEST_F(AList, TellsWhatIsSelectedInTheOrderOfItsRows) {
    const ADMListEntryRef a = insert(top, 0, "a");
    const ADMListEntryRef b = insert(top, 1, "b");
    const ADMListEntryRef below1 = insert(below(a), 0, "a1");
    run(ref, [&](Dialog& dialog) {
        Tree& tree = *dialog.item(7)->tree;
        dialogs.select(tree, {row(b), row(below1), row(a)}, row(b));
        EXPECT_THAT(selected(), ElementsAre("a", "a1", "b"));
        EXPECT_EQ(active(), "b");
        insert(top, 0, "0");
        EXPECT_THAT(selected(), ElementsAre("a", "a1", "b"));
        lists->RemoveEntry(top, 2);
        EXPECT_THAT(selected(), ElementsAre("a", "a1"));
        EXPECT_EQ(active(), "");
        dialogs.select(tree, {row(below1)}, row(below1));
        EXPECT_THAT(selected(), ElementsAre("a1"));
        tree.multiSelect = false;
        dialogs.select(tree, {row(below1), row(a)}, row(a));
        EXPECT_THAT(selected(), ElementsAre("a"));
        ADMListEntryRef entry = nullptr;
        EXPECT_EQ(lists->GetSelectedEntry(top, 1, &entry), kBadParameterErr);
    });
    dialogs.select(*dialogs.find(ref)->item(7)->tree, {}, nullptr);
    EXPECT_THAT(selected(), ElementsAre("a")) << "nobody can choose while it does not run";
}

TEST_F(AList, OpensAndClosesEntries) {
    const ADMListEntryRef entry = insert(top, 0, "a");
    const auto isExpanded = [&] {
        AIBoolean expanded = 2;
        EXPECT_EQ(entries->IsExpanded(entry, &expanded), kNoErr);
        return expanded;
    };
    EXPECT_EQ(isExpanded(), 0);
    entries->Expand(entry, 1);
    EXPECT_EQ(isExpanded(), 1);
    dialogs.setExpanded(*row(entry), false);
    EXPECT_EQ(isExpanded(), 0);
}

TEST_F(AList, CallsItsTrackRoutineForTheMouseAsItsMaskSays) {
    const ADMListEntryRef entry = insert(top, 0, "a");
    ADMListEntryTrackProc hosts = nullptr;
    EXPECT_EQ(lists->GetTrackProc(top, &hosts), kNoErr);
    EXPECT_NE(hosts, nullptr);
    lists->SetTrackProc(top, [](ADMListEntryRef, ADMTrackerRef tracker) {
        std::uint32_t modifiers = 1;
        trackerSuite->GetModifiers(tracker, &modifiers);
        clicks.push_back(modifiers);
        return AIBoolean{0};
    });
    run(ref, [&](Dialog& dialog) {
        dialogs.click(*row(entry), false);
        EXPECT_THAT(clicks, IsEmpty());
        lists->SetMask(top, kADMButtonMask | kADMDefaultTrackingMask);
        dialogs.click(*row(entry), false);
        dialogs.click(*row(entry), true);
        EXPECT_THAT(clicks, ElementsAre(0, kADMDoubleClickModifier));
        dialog.item(7)->enabled = false;
        dialogs.click(*row(entry), true);
        EXPECT_EQ(clicks.size(), 2U);
    });
}

TEST_F(AList, OfOneColumnIsAnotherThanATree) {
    const ADMListSuite* const flats = suite<ADMListSuite>();
    const ADMEntrySuite* const flatEntries = suite<ADMEntrySuite>();
    ADMEntryRef entry = nullptr;
    EXPECT_EQ(flats->InsertEntry(flat, 0, &entry), kNoErr);
    EXPECT_EQ(flatEntries->SetText(entry, "Grün und lang"), kNoErr);
    std::array<char, 4> buffer{};
    EXPECT_EQ(flatEntries->GetText(entry, buffer.data(), buffer.size()), kNoErr);
    EXPECT_STREQ(buffer.data(), "Gr") << "a character is not cut";
    EXPECT_EQ(flatEntries->GetText(entry, buffer.data(), 0), kBadParameterErr);
    // Handles of one kind mean nothing to the other's suites.
    std::int32_t count = 0;
    EXPECT_EQ(lists->NumberOfEntries(reinterpret_cast<ADMHierarchyListRef>(flat), &count),
              kBadParameterErr);
    EXPECT_EQ(entries->SetText(reinterpret_cast<ADMListEntryRef>(entry), "x"), kBadParameterErr);
    EXPECT_EQ(flats->InsertEntry(reinterpret_cast<ADMListRef>(top), 0, &entry), kBadParameterErr);
    ADMEntryRef none = entry;
    EXPECT_EQ(flats->GetActiveEntry(flat, &none), kNoErr);
    EXPECT_EQ(none, nullptr);
    run(ref, [&](Dialog& dialog) {
        Tree& tree = *dialog.item(4)->tree;
        dialogs.select(tree, {tree.top().rows.front().get()}, tree.top().rows.front().get());
        ADMEntryRef chosen = nullptr;
        flats->GetActiveEntry(flat, &chosen);
        EXPECT_EQ(chosen, entry);
    });
}

TEST_F(AList, TakesSizesOfAtLeastAPixel) {
    EXPECT_EQ(lists->SetEntryHeight(top, 0), kBadParameterErr);
    EXPECT_EQ(lists->SetEntryWidth(top, -1), kBadParameterErr);
    EXPECT_EQ(lists->SetEntryHeight(top, 19), kNoErr);
    EXPECT_EQ(lists->SetEntryWidth(top, 700), kNoErr);
    EXPECT_EQ(lists->SetIndentation(top, -50), kNoErr);
    ADMRect bounds{};
    EXPECT_EQ(lists->GetBoundsRect(top, &bounds), kNoErr);
    EXPECT_EQ(bounds.right - bounds.left, 282) << "the dialog's width without its margins";
    const RowList& list = *dialogs.find(top);
    EXPECT_EQ(list.entryHeight, 19);
    EXPECT_EQ(list.entryWidth, 700);
    EXPECT_EQ(list.indentation, -50);
}

} // namespace
} // namespace host::test
