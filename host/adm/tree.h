// SPDX-License-Identifier: MIT
// The rows of a list: texts in one column, or a tree of rows with rows below them.
#pragma once

#include "adm/types.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace host {

struct Item;
struct Row;
class Tree;

/// Rows of one level, below one row or at the top.
struct RowList {
    RowList(Tree& owner, Row* above) noexcept : tree(owner), parent(above) {}

    Tree& tree;
    Row* parent; ///< nullptr at the top
    ADMHierarchyListRef handle = nullptr;
    std::int32_t entryWidth = 0;  ///< 0: as wide as the list, as they always are in windows
    std::int32_t entryHeight = 0; ///< 0: as the text needs
    std::int32_t indentation = 0;
    std::deque<std::unique_ptr<Row>> rows;

    /// The place of a row of this list; numbers them all after a change, at the first question.
    std::size_t indexOf(const Row& row);

    bool numbered = true; ///< whether every row's `place` is right
};

/// Its address and its handle stay for its life.
struct Row {
    explicit Row(RowList& of) noexcept : list(of) {}

    RowList& list;
    ADMListEntryRef handle = nullptr;
    std::string text;
    void* userData = nullptr; ///< the plug-in's
    bool expanded = false;
    bool selected = false;
    std::unique_ptr<RowList> children;
    std::size_t place = 0; ///< for RowList::indexOf
};

/// [main-thread] All rows of one list item. Handles are given and taken by whoever owns the tables.
class Tree {
public:
    enum class Kind : std::uint8_t { Flat, Hierarchy };
    Tree(Item& item, Kind kind) noexcept : item_(item), kind_(kind) {}
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    Item& item() const noexcept { return item_; }
    Kind kind() const noexcept { return kind_; }
    RowList& top() noexcept { return top_; }

    /// `index` is at most the number of rows.
    Row& insert(RowList& list, std::size_t index);
    /// Takes a row and all below it out. `index` is that of a row.
    std::unique_ptr<Row> remove(RowList& list, std::size_t index);
    RowList& makeChildren(Row& row);

    /// Selects exactly `rows`, of which all but the last are left out unless several are allowed.
    /// `active` may be nullptr.
    void select(std::vector<Row*> rows, Row* active);
    void setSelected(Row& row, bool selected);
    /// In the order of the rows, those below a closed row included.
    const std::vector<Row*>& selected();
    Row* active() const noexcept { return active_; }

    /// Goes up whenever rows come or go.
    std::uint64_t revision() const noexcept { return revision_; }

    bool multiSelect = false;
    std::uint32_t mask = kADMDefaultTrackingMask;
    ADMListEntryTrackProc track = nullptr; ///< nullptr: the host's
    ADMListEntryDrawProc draw = nullptr;   ///< nullptr: the text

private:
    Item& item_;
    Kind kind_;
    RowList top_{*this, nullptr};
    std::vector<Row*> selected_;
    bool selectionKnown_ = true; ///< whether `selected_` is right
    Row* active_ = nullptr;
    std::uint64_t revision_ = 0;
};

} // namespace host
