// SPDX-License-Identifier: MIT
#include "manager/view/facelisting.h"

#include <algorithm>
#include <utility>

namespace manager {

void FaceListing::show(std::shared_ptr<const LibraryView> view, ListFilter filter) {
    // A longer text finds nothing that the shorter one did not.
    const bool narrows =
        view == view_ && !filter_.text.empty() && filter.text.starts_with(filter_.text);
    const bool isFoundAnew = view != view_ || filter.found != filter_.found;
    view_ = std::move(view);
    filter_ = std::move(filter);
    if (isFoundAnew) {
        find();
    }
    const FaceTable& table = view_->table;
    named_ = table.find(filter_.text, narrows ? &named_ : nullptr);
    faces_.clear();
    families_.clear();
    if (filter_.isDrawing) {
        showDrawing();
        return;
    }

    const auto& copied = view_->copies.faces();
    for (const FaceRow row : named_) {
        const ListedFace& face = table.faces()[row];
        if ((filter_.state && !view_->states.is(row, *filter_.state)) || !isAmong(face) ||
            (filter_.isCopied && !std::binary_search(copied.begin(), copied.end(), face.id)) ||
            !passes(row)) {
            continue;
        }
        if (families_.empty() || families_.back().family != face.family) {
            families_.push_back({face.family, static_cast<std::uint32_t>(faces_.size()), 0});
        }
        ++families_.back().count;
        faces_.push_back(row);
    }
}

bool FaceListing::isAmong(const ListedFace& face) const {
    if (!filter_.among) {
        return true;
    }
    if (!std::binary_search(filter_.among->begin(), filter_.among->end(), face.container)) {
        return false;
    }
    const auto part = filter_.parts.find(face.container);
    return part == filter_.parts.end() || part->second.contains(face.file);
}

void FaceListing::find() {
    isFound_.clear();
    if (filter_.found == nullptr) {
        return;
    }
    isFound_.resize(view_->table.faces().size());
    for (const FaceId id : *filter_.found) {
        if (const auto row = view_->table.rowOf(id)) {
            isFound_[*row] = true;
        }
    }
}

void FaceListing::showDrawing() {
    choices_.clear();
    const bool isNarrowed = filter_.found != nullptr || filter_.alsoState;
    for (std::uint32_t i = 0; i < view_->drawing.size(); ++i) {
        ShownFamily family{i, static_cast<std::uint32_t>(faces_.size()), 0};
        for (const AskedFont::Choice& choice : view_->drawing[i].choices) {
            const auto row = view_->table.rowOf(choice.face);
            if (row && passes(*row) && std::binary_search(named_.begin(), named_.end(), *row)) {
                faces_.push_back(*row);
                choices_.push_back(&choice);
                ++family.count;
            }
        }
        if (family.count != 0 || (filter_.text.empty() && !isNarrowed)) {
            families_.push_back(family);
        }
    }
}

std::optional<std::uint32_t> FaceListing::placeOf(std::uint32_t family) const {
    const auto place = std::lower_bound(
        families_.begin(), families_.end(), family,
        [](const ShownFamily& shown, std::uint32_t wanted) { return shown.family < wanted; });
    return place != families_.end() && place->family == family
               ? std::optional(static_cast<std::uint32_t>(place - families_.begin()))
               : std::nullopt;
}

} // namespace manager
