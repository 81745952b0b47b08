// SPDX-License-Identifier: MIT
// Compares the text of drawings, face by face.
#include "host/documents/svg/facedtext.h"

#include "host/documents/css/families.h"
#include "host/documents/svg/facevalues.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace host::svg {
namespace {

using css::Property;

std::string_view textOf(const Drawing& drawing, std::size_t number) {
    const Piece& piece = drawing.tree.pieces[number];
    return std::string_view(drawing.tree.text)
        .substr(piece.textStart, piece.textEnd - piece.textStart);
}

} // namespace

const Style& styleOf(const Drawing& drawing, std::size_t piece) {
    return drawing.styles.elements[drawing.tree.pieces[piece].element];
}

bool isReference(const Drawing& drawing, std::size_t piece) {
    return drawing.tree.elements[drawing.tree.pieces[piece].element].tag == Tag::TextReference;
}

bool counts(const Drawing& drawing, std::size_t piece) {
    return drawing.runOfPiece[piece] != noRun &&
           (isReference(drawing, piece) || hasVisibleCharacter(textOf(drawing, piece)));
}

std::string_view FirstFamilies::of(const Drawing& drawing, const Style& style) {
    const auto [place, added] = known_.try_emplace(style.value(Property::Family));
    if (added) {
        auto families = css::readFamilies(drawing.styles.texts[place->first]);
        if (!families.empty()) {
            place->second = std::move(families.front().name);
        }
    }
    return place->second;
}

FacedText::FacedText(const Drawing& drawing, FirstFamilies& families,
                     std::span<const Face* const> wanted) {
    text_.reserve(drawing.tree.text.size());
    parts_.reserve(drawing.tree.pieces.size());
    for (std::size_t i = 0; i < drawing.tree.pieces.size(); ++i) {
        if (!counts(drawing, i)) {
            continue;
        }
        const Face* const face = wanted.empty() ? nullptr : wanted[i];
        const auto text = isReference(drawing, i) ? std::string_view("&") : textOf(drawing, i);
        if (face == nullptr) {
            const Style& style = styleOf(drawing, i);
            add({families.of(drawing, style), style.value(Property::Slant),
                 style.value(Property::Weight), style.value(Property::Stretch)},
                text, i);
        } else {
            add({face->family, valueFor(Property::Slant, *face).number,
                 valueFor(Property::Weight, *face).number,
                 valueFor(Property::Stretch, *face).number},
                text, i);
        }
    }
}

void FacedText::add(const Key& key, std::string_view characters, std::size_t piece) {
    std::copy_if(characters.begin(), characters.end(), std::back_inserter(text_),
                 [](char c) { return static_cast<unsigned char>(c) > 0x20; });
    parts_.push_back({key, text_.size(), piece});
}

std::vector<std::size_t> FacedText::differences(const FacedText& other) const {
    std::vector<std::size_t> result;
    std::size_t theirs = 0;
    std::size_t position = 0;
    for (const Part& part : parts_) {
        bool same = true;
        for (; position < part.end; position = std::min(part.end, other.parts_[theirs].end)) {
            while (other.parts_[theirs].end <= position) {
                ++theirs;
            }
            same = same && other.parts_[theirs].key == part.key;
        }
        if (!same) {
            result.push_back(part.piece);
        }
    }
    return result;
}

} // namespace host::svg
