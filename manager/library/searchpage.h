// SPDX-License-Identifier: MIT
// The part of a search's result that was asked for.
#pragma once

#include "manager/library/database.h"
#include "manager/library/facequery.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace manager {

/// The page of a query, of faces that come one after the other. Those that are called and look
/// alike stand together by their places.
class SearchPage {
public:
    SearchPage(Database& database, const FaceQuery& query);

    /// A row is the face's number, and what it is called and looks like: the key of its family,
    /// weight, width and slant.
    void add(const Statement& row);
    /// To be called once.
    [[nodiscard]] std::vector<std::int64_t> end() {
        endGroup();
        return std::move(ids_);
    }
    [[nodiscard]] std::size_t count() const { return count_; }

private:
    void endGroup();
    void sortGroup();

    Statement place_;
    bool isSorted_;
    std::size_t from_;
    std::size_t to_;
    std::size_t count_ = 0;
    std::string family_;
    double weight_ = 0;
    double width_ = 0;
    std::int64_t slant_ = 0;
    std::vector<std::int64_t> group_;
    std::vector<std::int64_t> ids_;
};

} // namespace manager
