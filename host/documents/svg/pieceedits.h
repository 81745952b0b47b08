// SPDX-License-Identifier: MIT
// Gives pieces of text a new face where no declaration can be changed for them: through the style
// of their element, or a span around them. Where the drawing's own rules would catch a span, the
// element around the piece is changed, and what else it holds is given its old face.
#pragma once

#include "host/documents/svg/faceedits.h"
#include "host/documents/svg/svgdrawing.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace host::svg {

/// Whether a drawing's rules would catch a span that is put around its text; found out once.
class SpanRules {
public:
    /// `tree` outlives this.
    explicit SpanRules(const Tree& tree) : tree_(tree) {}
    [[nodiscard]] bool catchSpans();

private:
    const Tree& tree_;
    std::optional<bool> catchSpans_;
};

/// One way through all pieces, in their order.
class PieceEdits {
public:
    using Wanted = std::vector<const Face*>; ///< by piece; nullptr for one that keeps its face

    /// All outlive this.
    PieceEdits(const Drawing& drawing, const Wanted& wanted, SpanRules& spanRules, FaceEdits& edits)
        : drawing_(drawing), wanted_(wanted), spanRules_(spanRules), edits_(edits),
          shared_(drawing.tree.elements.size()), done_(wanted.size()) {}

    /// Whether a piece has been edited together with its element.
    [[nodiscard]] bool isDone(std::size_t piece) const { return done_[piece]; }

    /// Gives the values of a piece to its element if that changes nothing else, else to a span.
    /// `left` has by piece the values still to be given; those of other pieces that the element
    /// gets too are taken out.
    void edit(std::vector<FaceEdits::Values>& left, std::size_t piece);

    /// Gives a piece all of its new face, marked important.
    void editCarefully(std::size_t piece);

private:
    [[noreturn]] void fail(std::string_view reason) const;
    const Element& element(ElementId id) const { return drawing_.tree.elements[id]; }
    bool declaredInside(ElementId id, const Origin& origin) const;
    bool canTake(ElementId id, const FaceEdits::Values& values,
                 const std::vector<FaceEdits::Values>& left) const;
    bool overrulesImportant(std::size_t piece, const FaceEdits::Values& values) const;
    void wrap(std::size_t piece, const FaceEdits::Values& values, bool important);
    void giveToElement(std::size_t piece, const FaceEdits::Values& values, bool important);
    bool keepsFaces(ElementId id) const;
    void restore(ElementId outer, ElementId id, const FaceEdits::Values& values);
    NewValue oldValue(css::Property property, const Style& style) const;

    const Drawing& drawing_;
    const Wanted& wanted_;
    SpanRules& spanRules_;
    FaceEdits& edits_;
    std::vector<bool> shared_; ///< by element: holds text that must keep its face
    std::vector<bool> done_;   ///< by piece
};

} // namespace host::svg
