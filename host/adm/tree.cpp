// SPDX-License-Identifier: MIT
// Rows coming, going, and being chosen.
#include "host/adm/tree.h"

#include <utility>

namespace host {

namespace {

void collectSelected(const RowList& list, std::vector<Row*>& result) {
    for (const std::unique_ptr<Row>& row : list.rows) {
        if (row->selected) {
            result.push_back(row.get());
        }
        if (row->children != nullptr) {
            collectSelected(*row->children, result);
        }
    }
}

bool isWithin(const Row* row, const Row& top) {
    while (row != nullptr && row != &top) {
        row = row->list.parent;
    }
    return row != nullptr;
}

} // namespace

std::size_t RowList::indexOf(const Row& row) {
    if (!numbered) {
        std::size_t place = 0;
        for (const std::unique_ptr<Row>& each : rows) {
            each->place = place++;
        }
        numbered = true;
    }
    return row.place;
}

Row& Tree::insert(RowList& list, std::size_t index) {
    list.numbered = list.numbered && index == list.rows.size();
    const auto at = list.rows.begin() + static_cast<std::ptrdiff_t>(index);
    Row& row = **list.rows.insert(at, std::make_unique<Row>(list));
    row.place = index;
    ++revision_;
    return row;
}

std::unique_ptr<Row> Tree::remove(RowList& list, std::size_t index) {
    list.numbered = list.numbered && index + 1 == list.rows.size();
    const auto at = list.rows.begin() + static_cast<std::ptrdiff_t>(index);
    std::unique_ptr<Row> row = std::move(*at);
    list.rows.erase(at);
    if (isWithin(active_, *row)) {
        active_ = nullptr;
    }
    selectionKnown_ = false;
    ++revision_;
    return row;
}

RowList& Tree::makeChildren(Row& row) {
    if (row.children == nullptr) {
        row.children = std::make_unique<RowList>(*this, &row);
    }
    return *row.children;
}

void Tree::select(std::vector<Row*> rows, Row* active) {
    for (Row* const row : selected()) {
        row->selected = false;
    }
    if (!multiSelect && rows.size() > 1) {
        rows = {rows.back()};
    }
    for (Row* const row : rows) {
        row->selected = true;
    }
    selectionKnown_ = rows.size() < 2; // else they may be in another order than their rows
    selected_ = std::move(rows);
    active_ = active;
}

void Tree::setSelected(Row& row, bool selected) {
    if (selected && !multiSelect) {
        select({&row}, active_);
    }
    row.selected = selected;
    selectionKnown_ = false;
    if (selected && active_ == nullptr) {
        active_ = &row;
    }
}

const std::vector<Row*>& Tree::selected() {
    if (!selectionKnown_) {
        selected_.clear();
        collectSelected(top_, selected_);
        selectionKnown_ = true;
    }
    return selected_;
}

} // namespace host
