// SPDX-License-Identifier: MIT
// What the parser leaves of a drawing: the elements that hold text, their attributes that matter,
// the pieces of text, all with their places in the source. Everything else is let go at once.
#pragma once

#include "host/documents/css/stylesheet.h"
#include "host/documents/documenterror.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace host::svg {

using css::ElementId;
using css::noElement;

inline constexpr std::uint32_t noPlace = 0xFFFFFFFFU;

enum class Tag : std::uint8_t {
    Unknown,
    Svg,
    Group,
    Link,
    Switch,
    Use,
    Text,
    Span,
    TextPath,
    TextReference,
    AlternateGlyph,
    FlowRoot,
    FlowPara,
    FlowSpan,
    FlowRegion,
    Style,
    Definitions, ///< defs, symbol, clipPath, ...: shown only where referenced
    Shape,       ///< path, rect, image, ...
    Ignored      ///< foreignObject, metadata, title, font, ...: their text is none of the drawing's
};

enum class AttributeName : std::uint8_t {
    Id,
    Class,
    Style,
    FontFamily,
    FontStyle,
    FontWeight,
    FontStretch,
    FontSize,
    Visibility,
    Display,
    Space,
    Label,
    GroupMode,
    Layer,
    Extraneous,
    Role,
    Reference,
    Paint, ///< what may hold "url(#...)"
    RequiredExtensions,
    SystemLanguage,
    Media,
    Type
};

struct Attribute {
    AttributeName name;
    std::string_view value;
};

struct Element {
    ElementId parent = noElement;
    ElementId subtreeEnd = 0;         ///< one behind its last descendant
    std::uint32_t tagStart = noPlace; ///< of '<' in the source; noPlace within an entity's text
    std::uint32_t prefix = 0;         ///< bytes of the namespace prefix in the tag, ':' included
    std::uint32_t firstAttribute = 0;
    std::uint16_t attributeCount = 0;
    Tag tag = Tag::Unknown;
    bool topLevel = false;    ///< its parent is the root or only wraps the drawing
    bool transparent = false; ///< the root, or such a wrapper
    bool layer = false;       ///< declared to be a layer
    bool preserve = false;    ///< blanks are kept (xml:space)
    bool passedOver = false;  ///< in another language, or not the one that a switch shows
    std::uint32_t firstPiece = 0;
    std::uint32_t pieceEnd = 0; ///< the pieces of the whole subtree
};

/// Character data between two tags.
struct Piece {
    ElementId element = noElement;
    /// Within its frame, the element around it that begins a line: a paragraph, or a span that is
    /// one.
    ElementId paragraph = noElement;
    std::uint32_t textStart = 0; ///< in Tree::text
    std::uint32_t textEnd = 0;
    std::uint32_t sourceStart = noPlace; ///< noPlace when it is not literally in the source
    std::uint32_t sourceEnd = noPlace;
};

struct Sheet {
    std::string text;
    std::uint32_t sourceStart = noPlace; ///< of the content of the style element
    std::uint32_t sourceEnd = noPlace;
};

struct Tree final : css::SelectorSubject {
    std::string_view source;
    std::vector<Element> elements; ///< in document order, parents first
    std::vector<Attribute> attributes;
    std::vector<Piece> pieces;
    std::string text;
    std::vector<Sheet> sheets;
    std::unordered_set<std::string_view> references;  ///< ids that something shown refers to
    std::unordered_set<std::string> embeddedFamilies; ///< of SVG fonts, folded
    std::vector<css::Siblings> siblings;              ///< by element, if all of them were kept
    std::deque<std::string> values; ///< attribute values that are not literally in the source

    const std::string_view* find(ElementId element, AttributeName name) const;
    std::string_view valueOf(ElementId element, AttributeName name) const;
    bool isFrame(ElementId element) const {
        return elements[element].tag == Tag::Text || elements[element].tag == Tag::FlowRoot;
    }

    ElementId parentOf(ElementId element) const override { return elements[element].parent; }
    std::string_view typeOf(ElementId element) const override;
    std::string_view idOf(ElementId element) const override;
    std::string_view classesOf(ElementId element) const override;
    std::vector<NamedValue> attributesOf(ElementId element) const override;
    /// Of a tree without siblings every element is an only child.
    const css::Siblings& siblingsOf(ElementId element) const override;
};

struct ScanLimits {
    unsigned maximumDepth = 256;
    std::size_t maximumElements = 2'000'000; ///< of the tree
    bool keepAll = false;                    ///< keep elements without text too
    std::string_view language;               ///< of the user, such as "de_DE"
    bool keepSiblings = false; ///< keep all but what is within elements that hold none of the
                               ///< drawing, so that siblings can be counted
};

/// Finds the siblings of a tree that was scanned to keep them.
void countSiblings(Tree& tree);

/// An error at a place in the source, which may be noPlace.
[[nodiscard]] DocumentError errorAt(std::string_view source, std::string_view name,
                                    std::string_view reason, std::size_t place);

/// Parses a drawing. `source` is UTF-8 and outlives the tree. Throws DocumentError with `name`,
/// line and column when it is no drawing.
[[nodiscard]] Tree scan(const std::string& source, std::string_view name, const ScanLimits& limits);

} // namespace host::svg
