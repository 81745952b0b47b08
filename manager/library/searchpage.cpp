// SPDX-License-Identifier: MIT
#include "manager/library/searchpage.h"

#include <algorithm>
#include <tuple>

namespace manager {

SearchPage::SearchPage(Database& database, const FaceQuery& query)
    : place_(database, "SELECT directory.path, file.name, face.number FROM face "
                       "JOIN file ON file.id = face.file "
                       "JOIN directory ON directory.id = file.directory WHERE face.id = ?"),
      isSorted_(query.order == FaceOrder::ByFolder), from_(query.offset),
      to_(query.limit < SIZE_MAX - query.offset ? query.offset + query.limit : SIZE_MAX) {}

void SearchPage::add(const Statement& row) {
    const bool isLike = !isSorted_ && count_ != 0 && row.view(1) == family_ &&
                        row.real(2) == weight_ && row.real(3) == width_ && row.number(4) == slant_;
    if (!isLike) {
        endGroup();
        family_ = row.view(1);
        weight_ = row.real(2);
        width_ = row.real(3);
        slant_ = row.number(4);
    }
    if (count_ - group_.size() < to_) {
        group_.push_back(row.number(0));
    }
    ++count_;
}

void SearchPage::endGroup() {
    const std::size_t begin = count_ - group_.size();
    if (group_.size() > 1 && begin < to_ && count_ > from_) {
        sortGroup();
    }
    for (std::size_t i = 0; i < group_.size(); ++i) {
        if (begin + i >= from_ && begin + i < to_) {
            ids_.push_back(group_[i]);
        }
    }
    group_.clear();
}

void SearchPage::sortGroup() {
    using Place = std::tuple<std::string, std::string, std::int64_t, std::int64_t>;
    std::vector<Place> places;
    places.reserve(group_.size());
    for (const std::int64_t id : group_) {
        const StatementUse use(place_);
        place_.bind(1, id).step();
        places.emplace_back(place_.text(0), place_.text(1), place_.number(2), id);
    }
    std::sort(places.begin(), places.end());
    std::transform(places.begin(), places.end(), group_.begin(),
                   [](const Place& place) { return std::get<3>(place); });
}

} // namespace manager
