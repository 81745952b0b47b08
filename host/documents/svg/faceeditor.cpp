// SPDX-License-Identifier: MIT
// Decides which edits put the replaced faces of a document into its source, and checks the result
// by reading it again: what came out in another face than it should is edited in the careful way
// instead, by a span around each replaced piece.
#include "host/documents/svg/faceeditor.h"

#include "host/documents/svg/facedtext.h"
#include "host/documents/svg/pieceedits.h"
#include "host/documents/svg/svgdrawing.h"

#include <algorithm>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

namespace host::svg {
namespace {

using css::Property;

class FaceEditor {
public:
    FaceEditor(const std::string& source, const Document& document, const SvgOptions& options,
               bool unicode)
        : source_(source), document_(document), options_(options), unicode_(unicode),
          drawing_(readDrawing(source, document.name(), options)),
          wanted_(drawing_.tree.pieces.size()), careful_(wanted_.size()) {
        for (std::size_t i = 0; i < wanted_.size(); ++i) {
            wanted_[i] = wantedFace(i);
        }
    }

    std::string run() {
        const FacedText expected(drawing_, families_, wanted_);
        for (int attempt = 0; attempt < 3; ++attempt) {
            std::string result = edit();
            const Drawing again = readDrawing(result, document_.name(), options_);
            FirstFamilies families;
            const FacedText found(again, families, {});
            if (!found.hasTextOf(expected)) {
                beCareful({}, true);
                continue;
            }
            const std::vector<std::size_t> wrong = expected.differences(found);
            if (wrong.empty()) {
                return result;
            }
            beCareful(wrong, attempt > 0);
        }
        throw DocumentError(document_.name(),
                            "the new fonts cannot be written without a change to other text");
    }

private:
    /// From now on edits in the careful way the pieces that came out wrong; all of them when that
    /// cannot help, since some other text came out wrong.
    void beCareful(const std::vector<std::size_t>& wrong, bool all) {
        all = all || std::any_of(wrong.begin(), wrong.end(),
                                 [this](std::size_t piece) { return wanted_[piece] == nullptr; });
        if (all) {
            careful_.assign(careful_.size(), true);
        }
        for (const std::size_t piece : wrong) {
            careful_[piece] = true;
        }
    }

    /// The new face of a piece, nullptr when it keeps its own.
    const Face* wantedFace(std::size_t piece) const {
        if (!counts(drawing_, piece)) {
            return nullptr;
        }
        const TextRun& run = document_.run(drawing_.runOfPiece[piece]);
        return run.replaced ? &document_.faceOf(run) : nullptr;
    }

    /// What a property of a piece must become, nothing when it may stay.
    std::optional<NewValue> change(std::size_t piece, Property property) {
        const Face* face = wanted_[piece];
        if (face == nullptr || careful_[piece]) {
            return std::nullopt;
        }
        const Style& style = styleOf(drawing_, piece);
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
    using Uses = std::map<DeclarationKey, Use>;

    std::string edit() {
        FaceEdits edits(source_, drawing_.tree, drawing_.styles, unicode_);
        const Uses uses = changeDeclarations(edits);
        std::vector<FaceEdits::Values> left = notChangedBy(uses);
        PieceEdits pieces(drawing_, wanted_, spanRules_, edits);
        for (std::size_t i = 0; i < left.size(); ++i) {
            if (!left[i].empty() && !pieces.isDone(i)) {
                pieces.edit(left, i);
            }
            if (!pieces.isDone(i) && wanted_[i] != nullptr && careful_[i]) {
                pieces.editCarefully(i);
            }
        }
        return edits.apply(document_.name());
    }

    /// Changes the declarations that decide nothing but text that is to change alike.
    Uses changeDeclarations(FaceEdits& edits) {
        Uses uses;
        for (std::size_t i = 0; i < wanted_.size(); ++i) {
            for (const Property property : faceProperties) {
                const Origin& origin = styleOf(drawing_, i).origin(property);
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
        return uses;
    }

    /// By piece, what no declaration could take.
    std::vector<FaceEdits::Values> notChangedBy(const Uses& uses) {
        std::vector<FaceEdits::Values> left(wanted_.size());
        for (std::size_t i = 0; i < wanted_.size(); ++i) {
            for (const Property property : faceProperties) {
                const Origin& origin = styleOf(drawing_, i).origin(property);
                const auto value = change(i, property);
                if (value && (origin.kind == Origin::Kind::Initial ||
                              uses.at(keyOf(property, origin)).kept)) {
                    left[i].emplace(property, *value);
                }
            }
        }
        return left;
    }

    const std::string& source_;
    const Document& document_;
    const SvgOptions& options_;
    bool unicode_;
    Drawing drawing_;
    FirstFamilies families_; ///< of the drawing
    PieceEdits::Wanted wanted_;
    std::vector<bool> careful_; ///< by piece
    SpanRules spanRules_{drawing_.tree};
};

} // namespace

std::string editFaces(const std::string& source, const Document& document,
                      const SvgOptions& options, bool unicode) {
    return FaceEditor(source, document, options, unicode).run();
}

} // namespace host::svg
