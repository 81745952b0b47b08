// SPDX-License-Identifier: MIT
// Decides between element and span, and keeps the faces of the text beside.
#include "host/documents/svg/pieceedits.h"

#include "host/documents/css/families.h"
#include "host/documents/css/spanrules.h"
#include "host/documents/svg/facedtext.h"

#include <algorithm>

namespace host::svg {

using css::Property;

bool SpanRules::catchSpans() {
    if (!catchSpans_) {
        catchSpans_ = std::any_of(tree_.sheets.begin(), tree_.sheets.end(), [](const Sheet& sheet) {
            return css::hasRulesForSpans(sheet.text);
        });
    }
    return *catchSpans_;
}

void PieceEdits::fail(std::string_view reason) const {
    throw DocumentError(drawing_.parts.name, reason);
}

/// Whether a value is declared below an element, so that it is not inherited through it. What a
/// use shows may inherit from anywhere.
bool PieceEdits::declaredInside(ElementId id, const Origin& origin) const {
    return origin.kind != Origin::Kind::Initial && origin.element > id &&
           origin.element < element(id).subtreeEnd;
}

bool PieceEdits::overrulesImportant(std::size_t piece, const FaceEdits::Values& values) const {
    return std::any_of(values.begin(), values.end(), [&](const auto& item) {
        return styleOf(drawing_, piece).origin(item.first).important;
    });
}

/// Whether all text in an element needs the same values, or does not inherit them through it.
bool PieceEdits::canTake(ElementId id, const FaceEdits::Values& values,
                         const std::vector<FaceEdits::Values>& left) const {
    if (element(id).tagStart == noPlace || shared_[id]) {
        return false;
    }
    for (std::size_t i = element(id).firstPiece; i < element(id).pieceEnd; ++i) {
        const bool takes = std::all_of(values.begin(), values.end(), [&](const auto& item) {
            const auto same = left[i].find(item.first);
            return (same != left[i].end() && same->second == item.second) ||
                   declaredInside(id, styleOf(drawing_, i).origin(item.first));
        });
        if (counts(drawing_, i) && !takes) {
            return false;
        }
    }
    return true;
}

void PieceEdits::edit(std::vector<FaceEdits::Values>& left, std::size_t piece) {
    const ElementId id = drawing_.tree.pieces[piece].element;
    const FaceEdits::Values values = left[piece];
    if (!canTake(id, values, left)) {
        shared_[id] = true; // asked once, lest a long text be walked for each of its pieces
        wrap(piece, values, false);
        return;
    }
    edits_.addToElement(id, values, overrulesImportant(piece, values));
    for (std::size_t i = element(id).firstPiece; i < element(id).pieceEnd; ++i) {
        for (const auto& [property, value] : values) {
            if (!declaredInside(id, styleOf(drawing_, i).origin(property))) {
                left[i].erase(property);
            }
        }
    }
}

void PieceEdits::editCarefully(std::size_t piece) {
    FaceEdits::Values values;
    for (const Property property : faceProperties) {
        if (property != Property::Hint || styleOf(drawing_, piece).value(Property::Hint) != 0) {
            values.emplace(property, valueFor(property, *wanted_[piece]));
        }
    }
    const ElementId id = drawing_.tree.pieces[piece].element;
    if (isReference(drawing_, piece) && element(id).tagStart != noPlace) {
        edits_.addToElement(id, values, true);
    } else {
        wrap(piece, values, true);
    }
}

void PieceEdits::wrap(std::size_t number, const FaceEdits::Values& values, bool important) {
    const Piece& piece = drawing_.tree.pieces[number];
    if (piece.sourceStart == noPlace || piece.sourceEnd == noPlace ||
        element(piece.element).tagStart == noPlace) {
        fail("text that stands in an entity cannot be given another font");
    }
    if (spanRules_.catchSpans()) {
        giveToElement(number, values, important);
    } else {
        edits_.wrap(piece, values, important);
    }
}

/// Gives values to the element of a piece, and the old ones to the elements within it whose text is
/// not replaced.
void PieceEdits::giveToElement(std::size_t number, const FaceEdits::Values& values,
                               bool important) {
    const ElementId id = drawing_.tree.pieces[number].element;
    for (std::size_t i = element(id).firstPiece; i < element(id).pieceEnd; ++i) {
        if (drawing_.tree.pieces[i].element == id && counts(drawing_, i)) {
            if (wanted_[i] == nullptr || *wanted_[i] != *wanted_[number]) {
                fail("text beside other text cannot be given another font: the drawing's style "
                     "sheets have rules that would catch the span around it");
            }
            done_[i] = true;
        }
    }
    edits_.addToElement(id, values, important || overrulesImportant(number, values));
    for (ElementId inner = id + 1; inner < element(id).subtreeEnd;
         inner = element(inner).subtreeEnd) {
        if (keepsFaces(inner)) {
            restore(id, inner, values);
        }
    }
}

/// Whether an element holds text that is not replaced, and none of its own that is.
bool PieceEdits::keepsFaces(ElementId id) const {
    bool keeps = false;
    for (std::size_t i = element(id).firstPiece; i < element(id).pieceEnd; ++i) {
        if (wanted_[i] == nullptr) {
            keeps = keeps || counts(drawing_, i);
        } else if (drawing_.tree.pieces[i].element == id) {
            return false; // which is edited itself
        }
    }
    return keeps;
}

/// Declares in an element what it has inherited through one further out.
void PieceEdits::restore(ElementId outer, ElementId id, const FaceEdits::Values& values) {
    const Style& style = drawing_.styles.elements[id];
    FaceEdits::Values old;
    for (const auto& item : values) {
        const Property property = item.first;
        if (!declaredInside(outer, style.origin(property))) {
            old.emplace(property, oldValue(property, style));
        }
    }
    if (old.empty()) {
        return;
    }
    if (element(id).tagStart == noPlace) {
        fail("text that stands in an entity cannot keep its font");
    }
    edits_.addToElement(id, old, false);
}

NewValue PieceEdits::oldValue(Property property, const Style& style) const {
    if (property != Property::Family && property != Property::Hint) {
        return {{}, false, style.value(property)};
    }
    const auto names = css::readFamilies(drawing_.styles.texts[style.value(property)]);
    if (names.empty()) {
        return {};
    }
    // A hint without quotes looks like a list.
    NewValue value{names.front().name, names.front().generic, 0};
    for (std::size_t i = 1; property == Property::Hint && i < names.size(); ++i) {
        value.family.append(", ").append(names[i].name);
    }
    return value;
}

} // namespace host::svg
