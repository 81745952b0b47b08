// SPDX-License-Identifier: MIT
// What of a table is shown: the faces that pass all filters, under their families.
#pragma once

#include "manager/view/drawing.h"
#include "manager/view/facecopies.h"
#include "manager/view/facestates.h"
#include "manager/view/facetable.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace manager {

struct ListFilter {
    std::string text = {};                              ///< as FaceTable::find() takes it
    std::optional<FaceState> state = {};                ///< none: any
    std::optional<std::vector<ContainerId>> among = {}; ///< in order
    /// Of some of these, the names of the files that are meant.
    std::map<ContainerId, std::set<std::string>> parts = {};
    std::optional<FaceState> alsoState = {}; ///< and this one
    std::shared_ptr<const std::vector<FaceId>> found =
        {};                 ///< by the index, in any order; null: any
    bool isCopied = false;  ///< another container has the same file
    bool isDrawing = false; ///< what a drawing asks for, whatever place or state is said
    bool operator==(const ListFilter&) const = default;
};

/// The library at one moment. What the window shows is made of nothing else.
struct LibraryView {
    FaceTable table;
    FaceStates states;
    std::vector<AskedFont> drawing = {}; ///< of the one that asked last
    FaceCopies copies = {};
    unsigned drawingNumber = 0; ///< which of those that have asked it was
};

/// A family's faces that are shown, or a drawing's font with what may be used for it.
struct ShownFamily {
    std::uint32_t family = 0; ///< in the table, or in the drawing
    std::uint32_t first = 0;  ///< its faces in FaceListing::faces()
    std::uint32_t count = 0;
};

/// [one-thread]
class FaceListing {
public:
    /// Filters a view, which it keeps. What only narrows the filter of before on the same view
    /// costs little.
    void show(std::shared_ptr<const LibraryView> view, ListFilter filter);

    [[nodiscard]] const LibraryView& view() const { return *view_; }
    [[nodiscard]] const ListFilter& filter() const { return filter_; }
    [[nodiscard]] const std::vector<ShownFamily>& families() const { return families_; }
    /// Rows of the table, in its order; for a drawing's fonts the best first.
    [[nodiscard]] const std::vector<FaceRow>& faces() const { return faces_; }
    /// Why each of them is there, for a drawing.
    [[nodiscard]] const AskedFont::Choice& choice(std::size_t place) const {
        return *choices_[place];
    }
    /// The place of a family among those shown; nullopt: it is not.
    [[nodiscard]] std::optional<std::uint32_t> placeOf(std::uint32_t family) const;

private:
    void find();
    void showDrawing();
    [[nodiscard]] bool isAmong(const ListedFace& face) const;
    /// Whether it passes what is asked of faces at any place.
    [[nodiscard]] bool passes(FaceRow row) const {
        return (filter_.found == nullptr || isFound_[row]) &&
               (!filter_.alsoState || view_->states.is(row, *filter_.alsoState));
    }

    std::shared_ptr<const LibraryView> view_ = std::make_shared<const LibraryView>();
    ListFilter filter_;
    std::vector<FaceRow> named_; ///< by the filter's text alone
    std::vector<bool> isFound_;  ///< by row, if the index was searched
    std::vector<FaceRow> faces_;
    std::vector<const AskedFont::Choice*> choices_;
    std::vector<ShownFamily> families_;
};

} // namespace manager
