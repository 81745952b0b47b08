// SPDX-License-Identifier: MIT
// Makes the document model of a parsed drawing: layers, art, frames, runs.
#include "host/documents/svg/svgdrawing.h"

#include "faces/namekey.h"

#include <algorithm>
#include <map>
#include <utility>

namespace host::svg {
namespace {

constexpr std::uint32_t noLayer = 0xFFFFFFFFU;
/// Text that references may repeat, beyond the size of the drawing.
constexpr std::size_t referenceAllowance = std::size_t{1} << 20;

class Builder {
public:
    Builder(const std::string& source, std::string_view name, const SvgOptions& options)
        : name_(name), options_(options), allowance_(source.size() + referenceAllowance) {
        readTree(source, false);
        if (drawing_.styles.sheets.asksForSiblings()) {
            // Few sheets do, and what they count is more than what is kept for the others.
            readTree(source, true);
        }
    }

    Drawing run() {
        drawing_.parts.name = name_;
        for (const auto* const families :
             {&tree().embeddedFamilies, &drawing_.styles.sheets.embeddedFamilies()}) {
            for (const std::string& family : *families) {
                drawing_.parts.embeddedFamilies.insert(faces::nameKey(family));
            }
        }
        drawing_.runOfPiece.assign(tree().pieces.size(), noRun);
        declaredLayers_ = std::any_of(tree().elements.begin(), tree().elements.end(),
                                      [](const Element& element) { return element.layer; });
        layerOf_.assign(tree().elements.size(), noLayer);
        groupOf_.assign(tree().elements.size(), noArt);
        // The layer for what stands outside all layers comes last, so its art is added late.
        std::vector<ElementId> outside;
        for (ElementId id = 0; id < tree().elements.size();) {
            id = visit(id, outside);
        }
        for (const ElementId id : outside) {
            looseLayer_ = looseLayer_ == noLayer ? addLayer("") : looseLayer_;
            addFrame(id, drawing_.parts.layers[looseLayer_].topGroup);
        }
        if (drawing_.parts.layers.empty()) {
            addLayer("");
        }
        return std::move(drawing_);
    }

private:
    void readTree(const std::string& source, bool keepSiblings) {
        drawing_.tree = scan(source, name_,
                             {options_.maximumDepth, options_.maximumElements, options_.keepGroups,
                              options_.language, keepSiblings});
        if (keepSiblings) {
            countSiblings(drawing_.tree);
        }
        drawing_.styles = resolveStyles(drawing_.tree, name_, options_.maximumMatching);
    }

    const Tree& tree() const { return drawing_.tree; }
    const Style& style(ElementId id) const { return drawing_.styles.elements[id]; }

    bool isLayer(const Element& element) const {
        return declaredLayers_
                   ? element.layer
                   : element.tag == Tag::Group && element.topLevel && !element.transparent;
    }

    /// Adds what an element is, and gives the element to visit next.
    ElementId visit(ElementId id, std::vector<ElementId>& outside) {
        const Element& element = tree().elements[id];
        const bool root = element.parent == noElement;
        layerOf_[id] = root ? noLayer : layerOf_[element.parent];
        groupOf_[id] = root ? noArt : groupOf_[element.parent];
        if (isLayer(element)) {
            layerOf_[id] = addLayer(layerName(id));
            groupOf_[id] = drawing_.parts.layers[layerOf_[id]].topGroup;
            return id + 1;
        }
        if (tree().isFrame(id)) {
            if (layerOf_[id] == noLayer) {
                outside.push_back(id);
            } else {
                addFrame(id, groupOf_[id]);
            }
            return element.subtreeEnd;
        }
        if (options_.keepGroups && layerOf_[id] != noLayer && !style(id).unrendered) {
            switch (element.tag) {
            case Tag::Svg:
            case Tag::Group:
            case Tag::Link:
            case Tag::Switch:
                groupOf_[id] = addArt(ArtKind::Group, groupOf_[id]);
                break;
            case Tag::Shape:
            case Tag::Use:
                addArt(ArtKind::Other, groupOf_[id]);
                break;
            default:
                break;
            }
        }
        return id + 1;
    }

    std::string layerName(ElementId id) const {
        const std::string_view label = tree().valueOf(id, AttributeName::Label);
        return std::string(label.empty() ? tree().valueOf(id, AttributeName::Id) : label);
    }

    std::uint32_t addLayer(std::string name) {
        const ArtId top = addArt(ArtKind::Group, noArt);
        drawing_.parts.layers.push_back({std::move(name), top});
        return static_cast<std::uint32_t>(drawing_.parts.layers.size() - 1);
    }

    ArtId addArt(ArtKind kind, ArtId parent) {
        const auto id = static_cast<ArtId>(drawing_.parts.arts.size());
        Art art;
        art.kind = kind;
        art.parent = parent;
        drawing_.parts.arts.push_back(art);
        lastChild_.push_back(noArt);
        if (parent != noArt) {
            ArtId& last = lastChild_[parent];
            (last == noArt ? drawing_.parts.arts[parent].firstChild
                           : drawing_.parts.arts[last].nextSibling) = id;
            last = id;
        }
        return id;
    }

    void addFrame(ElementId id, ArtId parent) {
        const ArtId art = addArt(ArtKind::TextFrame, parent);
        const Element& frame = tree().elements[id];
        const auto firstRun = static_cast<RunId>(drawing_.parts.runs.size());
        frameStart_ = drawing_.parts.text.size();
        endsInBlank_ = false;
        lastParagraph_ = noElement;
        for (std::uint32_t piece = frame.firstPiece; piece < frame.pieceEnd; ++piece) {
            addPiece(piece, firstRun);
        }
        dropLastBlank(firstRun);
        Art& node = drawing_.parts.arts[art];
        const std::string_view name = tree().valueOf(id, AttributeName::Id);
        node.idStart = static_cast<std::uint32_t>(drawing_.parts.ids.size());
        node.idLength = static_cast<std::uint32_t>(name.size());
        drawing_.parts.ids += name;
        node.firstRun = firstRun;
        node.runCount = static_cast<std::uint32_t>(drawing_.parts.runs.size()) - firstRun;
    }

    void addPiece(std::uint32_t number, RunId firstRun) {
        const Piece& piece = tree().pieces[number];
        std::string_view characters =
            std::string_view(tree().text).substr(piece.textStart, piece.textEnd - piece.textStart);
        if (tree().elements[piece.element].tag == Tag::TextReference) {
            characters = referencedText(piece.element);
        }
        std::string& text = drawing_.parts.text;
        std::size_t start = text.size();
        if (piece.paragraph != noElement) {
            if (lastParagraph_ != noElement && lastParagraph_ != piece.paragraph &&
                start != frameStart_) {
                dropLastBlank(firstRun);
                start = text.size();
                text += '\n';
            }
            lastParagraph_ = piece.paragraph;
        }
        appendCollapsed(characters, tree().elements[piece.element].preserve);
        if (text.size() == start) {
            return;
        }
        const Style& look = style(piece.element);
        const bool visible =
            look.showsText() && hasVisibleCharacter(std::string_view(text).substr(start));
        const FaceId face = faceOf(look);
        auto& runs = drawing_.parts.runs;
        if (runs.size() > firstRun && runs.back().face == face) {
            runs.back().visible = runs.back().visible || visible;
        } else {
            TextRun run;
            run.textStart = static_cast<std::uint32_t>(start);
            run.face = face;
            run.visible = visible;
            runs.push_back(run);
        }
        runs.back().textLength = static_cast<std::uint32_t>(text.size()) - runs.back().textStart;
        drawing_.runOfPiece[number] = static_cast<RunId>(runs.size() - 1);
        lastPiece_ = number;
    }

    /// Blanks between characters become one, those at the ends of lines none.
    void appendCollapsed(std::string_view characters, bool preserve) {
        std::string& text = drawing_.parts.text;
        for (const char c : characters) {
            const bool blank = c == ' ' || c == '\n' || c == '\t' || c == '\r';
            if (!blank) {
                text += c;
            } else if (preserve ||
                       (text.size() != frameStart_ && text.back() != ' ' && text.back() != '\n')) {
                text += ' ';
            }
        }
        if (text.size() != frameStart_) {
            endsInBlank_ = !preserve && text.back() == ' ';
        }
    }

    /// Takes back the blank that turned out to be the last character of a line.
    void dropLastBlank(RunId firstRun) {
        if (!endsInBlank_) {
            return;
        }
        endsInBlank_ = false;
        drawing_.parts.text.pop_back();
        auto& runs = drawing_.parts.runs;
        if (runs.size() > firstRun && --runs.back().textLength == 0) {
            drawing_.runOfPiece[lastPiece_] = noRun;
            runs.pop_back();
        }
    }

    /// The characters of the element that a tref names.
    std::string_view referencedText(ElementId id) {
        const std::string_view target = tree().valueOf(id, AttributeName::Reference);
        if (!target.starts_with('#')) {
            return {};
        }
        if (!std::exchange(idsKnown_, true)) {
            for (ElementId element = 0; element < tree().elements.size(); ++element) {
                if (const auto* name = tree().find(element, AttributeName::Id)) {
                    elementOfId_.emplace(*name, element);
                }
            }
        }
        const auto found = elementOfId_.find(target.substr(1));
        if (found == elementOfId_.end()) {
            return {};
        }
        const Element& element = tree().elements[found->second];
        if (element.firstPiece == element.pieceEnd) {
            return {};
        }
        const std::uint32_t start = tree().pieces[element.firstPiece].textStart;
        const std::size_t length = tree().pieces[element.pieceEnd - 1].textEnd - start;
        if (length > allowance_) {
            throw errorAt(tree().source, name_, "text references repeat too much text",
                          tree().elements[id].tagStart);
        }
        allowance_ -= length;
        return std::string_view(tree().text).substr(start, length);
    }

    FaceId faceOf(const Style& look) {
        const std::array<std::uint32_t, 4> key{look.values[0], look.values[1], look.values[2],
                                               look.values[3]};
        if (key == lastKey_) {
            return lastFace_;
        }
        const auto [place, added] =
            faces_.try_emplace(key, static_cast<FaceId>(drawing_.parts.faces.size()));
        if (added) {
            const auto [family, unknown] = families_.try_emplace(key.front());
            if (unknown) {
                family->second = {faceOfFamilies(tree(), drawing_.styles, key.front()),
                                  static_cast<std::uint32_t>(drawing_.parts.laterFamilies.size())};
                drawing_.parts.laterFamilies.push_back(
                    laterFamilies(drawing_.styles.texts[key.front()]));
            }
            Face face = styledFace(family->second.face, look);
            // Different family lists may begin with the same family.
            const auto [same, newFace] = distinctFaces_.try_emplace(face, place->second);
            place->second = same->second;
            if (newFace) {
                drawing_.parts.faces.push_back(std::move(face));
                drawing_.parts.listOfFace.push_back(family->second.list);
            }
        }
        lastKey_ = key;
        return lastFace_ = place->second;
    }

    std::string name_;
    SvgOptions options_;
    Drawing drawing_;
    bool declaredLayers_ = false;
    std::uint32_t looseLayer_ = noLayer;
    std::vector<std::uint32_t> layerOf_; ///< by element
    std::vector<ArtId> groupOf_;         ///< by element: where its art goes
    std::vector<ArtId> lastChild_;       ///< by art
    std::size_t frameStart_ = 0;
    bool endsInBlank_ = false;
    std::uint32_t lastPiece_ = 0; ///< that added to the last run
    ElementId lastParagraph_ = noElement;
    std::size_t allowance_;
    bool idsKnown_ = false;
    std::unordered_map<std::string_view, ElementId> elementOfId_;
    struct FirstFamily {
        Face face;
        std::uint32_t list = 0; ///< in DocumentParts::laterFamilies
    };
    std::unordered_map<std::uint32_t, FirstFamily> families_; ///< by number of the family list
    std::map<std::array<std::uint32_t, 4>, FaceId> faces_;
    std::unordered_map<Face, FaceId, FaceHash> distinctFaces_;
    std::array<std::uint32_t, 4> lastKey_{noElement, 0, 0, 0};
    FaceId lastFace_ = 0;
};

} // namespace

Drawing readDrawing(const std::string& source, std::string_view name, const SvgOptions& options) {
    return Builder(source, name, options).run();
}

} // namespace host::svg
