// SPDX-License-Identifier: MIT
// Decides which edits put the replaced faces of a document into its source, and checks the result
// by reading it again: what came out in another face than it should is edited in the careful way
// instead, by a span around each replaced piece. Where the drawing's own rules would catch a span,
// the element around the piece is changed, and what else it holds is given its old face.
#include "host/documents/svg/faceeditor.h"

#include "host/documents/css/spanrules.h"
#include "host/documents/svg/facedtext.h"
#include "host/documents/svg/faceedits.h"
#include "host/documents/svg/svgdrawing.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

namespace host::svg {
namespace {

using css::Property;

constexpr std::array<Property, css::facePropertyCount> faceProperties{
    Property::Family, Property::Slant, Property::Weight, Property::Stretch, Property::Hint};

std::uint32_t stretchNumber(const Face& face) {
    return static_cast<std::uint32_t>(std::lround(face.stretch * 1000));
}

class FaceEditor {
public:
    FaceEditor(const std::string& source, const Document& document, const SvgOptions& options,
               bool unicode)
        : source_(source), document_(document), options_(options), unicode_(unicode),
          drawing_(readDrawing(source, document.name(), options)) {
        shared_.resize(drawing_.tree.elements.size());
        wanted_.resize(drawing_.tree.pieces.size());
        careful_.resize(wanted_.size());
        for (std::size_t i = 0; i < wanted_.size(); ++i) {
            wanted_[i] = wantedFace(i);
        }
    }

    std::string run() {
        const FacedText expected = facedText(drawing_, families_, true);
        for (int attempt = 0; attempt < 3; ++attempt) {
            std::string result = edit();
            const Drawing again = readDrawing(result, document_.name(), options_);
            FirstFamilies families;
            const FacedText found = facedText(again, families, false);
            if (found.text != expected.text) {
                beCareful({}, true);
                continue;
            }
            const std::vector<std::size_t> wrong = expected.differences(found);
            if (wrong.empty()) {
                return result;
            }
            beCareful(wrong, attempt > 0);
        }
        fail("the new fonts cannot be written without a change to other text");
    }

private:
    [[noreturn]] void fail(std::string_view reason) const {
        throw DocumentError(document_.name(), reason);
    }

    const Style& styleOf(std::size_t piece) const {
        return drawing_.styles.elements[drawing_.tree.pieces[piece].element];
    }

    static std::string_view textOf(const Drawing& drawing, std::size_t number) {
        const Piece& piece = drawing.tree.pieces[number];
        return std::string_view(drawing.tree.text)
            .substr(piece.textStart, piece.textEnd - piece.textStart);
    }

    static bool isReference(const Drawing& drawing, std::size_t piece) {
        return drawing.tree.elements[drawing.tree.pieces[piece].element].tag == Tag::TextReference;
    }

    /// Whether the face of a piece matters to anyone.
    static bool counts(const Drawing& drawing, std::size_t piece) {
        return drawing.runOfPiece[piece] != noRun &&
               (isReference(drawing, piece) || hasVisibleCharacter(textOf(drawing, piece)));
    }

    /// From now on edits in the careful way the pieces that came out wrong; all of them when that
    /// cannot help, since some other text came out wrong.
    void beCareful(const std::vector<std::size_t>& wrong, bool all) {
        all = all || spansAreCaught() ||
              std::any_of(wrong.begin(), wrong.end(),
                          [this](std::size_t piece) { return wanted_[piece] == nullptr; });
        if (all) {
            careful_.assign(careful_.size(), true);
        }
        for (const std::size_t piece : wrong) {
            careful_[piece] = true;
        }
        shared_.assign(shared_.size(), false);
    }

    /// The new face of a piece, nullptr when it keeps its own.
    const Face* wantedFace(std::size_t piece) const {
        if (!counts(drawing_, piece)) {
            return nullptr;
        }
        const TextRun& run = document_.run(drawing_.runOfPiece[piece]);
        return run.replaced ? &document_.faceOf(run) : nullptr;
    }

    FacedText facedText(const Drawing& drawing, FirstFamilies& families,
                        bool withWantedFaces) const {
        FacedText result;
        result.text.reserve(drawing.tree.text.size());
        result.parts.reserve(drawing.tree.pieces.size());
        for (std::size_t i = 0; i < drawing.tree.pieces.size(); ++i) {
            if (!counts(drawing, i)) {
                continue;
            }
            const Style& style = drawing.styles.elements[drawing.tree.pieces[i].element];
            const Face* face = withWantedFaces ? wanted_[i] : nullptr;
            const auto text = isReference(drawing, i) ? std::string_view("&") : textOf(drawing, i);
            if (face == nullptr) {
                result.add({families.of(drawing, style), style.value(Property::Slant),
                            style.value(Property::Weight), style.value(Property::Stretch)},
                           text, i);
            } else {
                result.add({face->family, static_cast<std::uint32_t>(face->slant),
                            static_cast<std::uint32_t>(face->weight), stretchNumber(*face)},
                           text, i);
            }
        }
        return result;
    }

    static NewValue valueFor(Property property, const Face& face) {
        switch (property) {
        case Property::Family:
            return {face.family, face.origin == FaceOrigin::Generic, 0};
        case Property::Hint:
            // Drawing programs call the plain style by this name here.
            return {face.family + ", " + (face.style == "Regular" ? "Normal" : face.style), false,
                    0};
        case Property::Slant:
            return {{}, false, static_cast<std::uint32_t>(face.slant)};
        case Property::Weight:
            return {{}, false, static_cast<std::uint32_t>(face.weight)};
        default:
            return {{}, false, stretchNumber(face)};
        }
    }

    /// What a property of a piece must become, nothing when it may stay.
    std::optional<NewValue> change(std::size_t piece, Property property) {
        const Face* face = wanted_[piece];
        if (face == nullptr || careful_[piece]) {
            return std::nullopt;
        }
        const Style& style = styleOf(piece);
        NewValue value = valueFor(property, *face);
        const bool same = property == Property::Family
                              ? families_.of(drawing_, style) == face->family
                          : property == Property::Hint ? style.value(Property::Hint) == 0
                                                       : style.value(property) == value.number;
        return same ? std::nullopt : std::optional(std::move(value));
    }

    /// A declaration by its place: attribute or style attribute of an element, or block of rules.
    using DeclarationKey = std::tuple<Property, Origin::Kind, std::uint32_t, bool>;
    static DeclarationKey keyOf(Property property, const Origin& origin) {
        const bool rule = origin.kind == Origin::Kind::Rule;
        return {property, origin.kind, rule ? origin.block : origin.element, origin.important};
    }

    struct Use {
        bool kept = false; ///< it decides text that is not replaced, or not all in the same way
        Origin origin;
        std::optional<NewValue> value;
    };

    std::string edit() {
        FaceEdits edits(source_, drawing_.tree, drawing_.styles, unicode_);
        done_.assign(wanted_.size(), false);
        std::map<DeclarationKey, Use> uses;
        for (std::size_t i = 0; i < wanted_.size(); ++i) {
            for (const Property property : faceProperties) {
                const Origin& origin = styleOf(i).origin(property);
                if (origin.kind == Origin::Kind::Initial || !counts(drawing_, i)) {
                    continue;
                }
                Use& use = uses[keyOf(property, origin)];
                use.origin = origin;
                const auto value = change(i, property);
                use.kept = use.kept || !value || (use.value && *use.value != *value);
                use.value = value;
            }
        }
        for (auto& [key, use] : uses) {
            use.kept = use.kept ||
                       !edits.changeDeclaration(std::get<Property>(key), use.origin, *use.value);
        }
        // What no declaration could take goes to the elements.
        std::vector<FaceEdits::Values> left(wanted_.size());
        for (std::size_t i = 0; i < wanted_.size(); ++i) {
            for (const Property property : faceProperties) {
                const Origin& origin = styleOf(i).origin(property);
                const auto value = change(i, property);
                if (value && (origin.kind == Origin::Kind::Initial ||
                              uses.at(keyOf(property, origin)).kept)) {
                    left[i].emplace(property, *value);
                }
            }
        }
        for (std::size_t i = 0; i < left.size(); ++i) {
            if (!left[i].empty() && !done_[i]) {
                editElement(edits, left, i);
            }
            if (!done_[i] && wanted_[i] != nullptr && careful_[i]) {
                editCarefully(edits, i);
            }
        }
        return edits.apply();
    }

    /// Gives the values of a piece to its element if that changes nothing else, else to a span.
    void editElement(FaceEdits& edits, std::vector<FaceEdits::Values>& left, std::size_t piece) {
        const ElementId id = drawing_.tree.pieces[piece].element;
        const Element& element = drawing_.tree.elements[id];
        const FaceEdits::Values values = left[piece];
        bool alone = element.tagStart != noPlace && !shared_[id];
        for (std::size_t i = element.firstPiece; alone && i < element.pieceEnd; ++i) {
            if (!counts(drawing_, i)) {
                continue;
            }
            alone = std::all_of(values.begin(), values.end(), [&](const auto& item) {
                const auto same = left[i].find(item.first);
                const Origin& origin = styleOf(i).origin(item.first);
                return (same != left[i].end() && same->second == item.second) ||
                       declaredInside(id, origin);
            });
        }
        if (!alone) {
            shared_[id] = true; // asked once, lest a long text be walked for each of its pieces
            wrap(edits, piece, values, false);
            return;
        }
        const bool important = std::any_of(values.begin(), values.end(), [&](const auto& item) {
            return styleOf(piece).origin(item.first).important;
        });
        edits.addToElement(id, values, important);
        for (std::size_t i = element.firstPiece; i < element.pieceEnd; ++i) {
            for (const auto& [property, value] : values) {
                if (!declaredInside(id, styleOf(i).origin(property))) {
                    left[i].erase(property);
                }
            }
        }
    }

    /// Whether a value is declared below an element, so that it is not inherited through it. What
    /// a use shows may inherit from anywhere.
    bool declaredInside(ElementId element, const Origin& origin) const {
        return origin.kind != Origin::Kind::Initial && origin.element > element &&
               origin.element < drawing_.tree.elements[element].subtreeEnd;
    }

    void wrap(FaceEdits& edits, std::size_t number, const FaceEdits::Values& values,
              bool important) {
        const Piece& piece = drawing_.tree.pieces[number];
        if (piece.sourceStart == noPlace || piece.sourceEnd == noPlace ||
            drawing_.tree.elements[piece.element].tagStart == noPlace) {
            fail("text that stands in an entity cannot be given another font");
        }
        if (spansAreCaught()) {
            giveToElement(edits, number, values, important);
        } else {
            edits.wrap(piece, values, important);
        }
    }

    bool spansAreCaught() {
        if (!spansAreCaught_) {
            spansAreCaught_ =
                std::any_of(drawing_.tree.sheets.begin(), drawing_.tree.sheets.end(),
                            [](const Sheet& sheet) { return css::hasRulesForSpans(sheet.text); });
        }
        return *spansAreCaught_;
    }

    /// Gives values to the element of a piece, and the old ones to the elements within it whose
    /// text is not replaced.
    void giveToElement(FaceEdits& edits, std::size_t number, const FaceEdits::Values& values,
                       bool important) {
        const ElementId id = drawing_.tree.pieces[number].element;
        const Element& element = drawing_.tree.elements[id];
        for (std::size_t i = element.firstPiece; i < element.pieceEnd; ++i) {
            if (drawing_.tree.pieces[i].element == id && counts(drawing_, i)) {
                if (wanted_[i] == nullptr || *wanted_[i] != *wanted_[number]) {
                    fail("text beside other text cannot be given another font: the drawing's style "
                         "sheets have rules that would catch the span around it");
                }
                done_[i] = true;
            }
        }
        important = important || std::any_of(values.begin(), values.end(), [&](const auto& item) {
                        return styleOf(number).origin(item.first).important;
                    });
        edits.addToElement(id, values, important);
        for (ElementId inner = id + 1; inner < element.subtreeEnd;
             inner = drawing_.tree.elements[inner].subtreeEnd) {
            if (keepsFaces(inner)) {
                restore(edits, id, inner, values);
            }
        }
    }

    /// Whether an element holds text that is not replaced, and none of its own that is.
    bool keepsFaces(ElementId id) const {
        const Element& element = drawing_.tree.elements[id];
        bool keeps = false;
        for (std::size_t i = element.firstPiece; i < element.pieceEnd; ++i) {
            if (wanted_[i] == nullptr) {
                keeps = keeps || counts(drawing_, i);
            } else if (drawing_.tree.pieces[i].element == id) {
                return false; // which is edited itself
            }
        }
        return keeps;
    }

    /// Declares in an element what it has inherited through one further out.
    void restore(FaceEdits& edits, ElementId outer, ElementId id, const FaceEdits::Values& values) {
        const Style& style = drawing_.styles.elements[id];
        FaceEdits::Values old;
        for (const auto& item : values) {
            const Property property = item.first;
            if (!declaredInside(outer, style.origin(property))) {
                old.emplace(property, oldValue(property, style));
            }
        }
        if (!old.empty() && drawing_.tree.elements[id].tagStart == noPlace) {
            fail("text that stands in an entity cannot keep its font");
        }
        if (!old.empty()) {
            edits.addToElement(id, old, false);
        }
    }

    NewValue oldValue(Property property, const Style& style) const {
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

    void editCarefully(FaceEdits& edits, std::size_t number) {
        FaceEdits::Values values;
        for (const Property property : faceProperties) {
            if (property != Property::Hint || styleOf(number).value(Property::Hint) != 0) {
                values.emplace(property, valueFor(property, *wanted_[number]));
            }
        }
        const Piece& piece = drawing_.tree.pieces[number];
        if (isReference(drawing_, number) &&
            drawing_.tree.elements[piece.element].tagStart != noPlace) {
            edits.addToElement(piece.element, values, true);
        } else {
            wrap(edits, number, values, true);
        }
    }

    const std::string& source_;
    const Document& document_;
    const SvgOptions& options_;
    bool unicode_;
    Drawing drawing_;
    FirstFamilies families_;          ///< of the drawing
    std::vector<const Face*> wanted_; ///< by piece
    std::vector<bool> careful_;       ///< by piece
    std::vector<bool> shared_;        ///< by element: holds text that must keep its face
    std::vector<bool> done_;          ///< by piece: edited with its element
    std::optional<bool> spansAreCaught_;
};

} // namespace

std::string editFaces(const std::string& source, const Document& document,
                      const SvgOptions& options, bool unicode) {
    return FaceEditor(source, document, options, unicode).run();
}

} // namespace host::svg
