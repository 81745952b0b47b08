// SPDX-License-Identifier: MIT
// What the scanner keeps of the elements and the text that the parser reports.
#include "host/documents/svg/svgscanner.h"

#include "host/documents/css/css.h"
#include "host/documents/css/families.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <utility>

namespace host::svg {

Space Scanner::spaceOf(const xmlChar* uri) const {
    return uri == nullptr || uri == svgUri_ ? Space::None
           : uri == xlinkUri_               ? Space::Xlink
           : uri == xmlUri_                 ? Space::Xml
                                            : Space::Foreign;
}

std::string_view Scanner::keep(const xmlChar* start, const xmlChar* end) {
    const std::string_view value(chars(start), static_cast<std::size_t>(end - start));
    const std::less_equal<const char*> notAfter;
    if (notAfter(source_.data(), value.data()) &&
        notAfter(value.data() + value.size(), source_.data() + source_.size())) {
        return value;
    }
    const auto known = keptValues_.find(value);
    return known != keptValues_.end() ? *known
                                      : *keptValues_.insert(tree_.values.emplace_back(value)).first;
}

Scanner::AttributeSet Scanner::addAttributes(Element& element, unsigned count,
                                             const xmlChar** attributes) {
    AttributeSet present = 0;
    element.firstAttribute = static_cast<std::uint32_t>(tree_.attributes.size());
    for (unsigned i = 0; i < count; ++i, attributes += 5) {
        const auto names = attributeNames_.find(attributes[0]);
        if (names == attributeNames_.end()) {
            continue;
        }
        const int name = names->second[static_cast<std::size_t>(spaceOf(attributes[2]))];
        if (name >= 0) {
            present |= bit(static_cast<AttributeName>(name));
            tree_.attributes.push_back(
                {static_cast<AttributeName>(name), keep(attributes[3], attributes[4])});
        }
    }
    element.attributeCount =
        static_cast<std::uint16_t>(tree_.attributes.size() - element.firstAttribute);
    return present;
}

void Scanner::interpretAttributes(Element& element) {
    for (std::size_t i = element.firstAttribute; i < tree_.attributes.size(); ++i) {
        const Attribute& attribute = tree_.attributes[i];
        switch (attribute.name) {
        case AttributeName::Space:
            element.preserve = attribute.value == "preserve";
            break;
        case AttributeName::GroupMode:
            element.layer = element.layer || attribute.value == "layer";
            break;
        case AttributeName::Layer:
            element.layer = element.layer || attribute.value == "yes";
            break;
        case AttributeName::Extraneous:
            element.transparent = element.topLevel && attribute.value == "self";
            break;
        default:
            break;
        }
    }
    element.layer = element.layer && element.tag == Tag::Group;
}

bool Scanner::isLine(const Element& element) const {
    return std::any_of(tree_.attributes.begin() + element.firstAttribute, tree_.attributes.end(),
                       [](const Attribute& attribute) {
                           return attribute.name == AttributeName::Role &&
                                  attribute.value == "line";
                       });
}

/// Text in an SVG font comes with the document, as it does with one that a font-face fetches.
void Scanner::noteFontFace(std::string_view local, unsigned count, const xmlChar** attributes) {
    if (local != "font-face") {
        return;
    }
    for (unsigned i = 0; i < count; ++i, attributes += 5) {
        if (std::strcmp(chars(attributes[0]), "font-family") == 0) {
            const auto families = css::readFamilies(
                {chars(attributes[3]), static_cast<std::size_t>(attributes[4] - attributes[3])});
            if (!families.empty()) {
                tree_.embeddedFamilies.insert(css::foldFamily(families.front().name));
            }
        }
    }
}

void Scanner::begin(xmlParserCtxtPtr context, const xmlChar* name, const xmlChar* prefix,
                    const xmlChar* uri, unsigned namespaceCount, unsigned attributeCount,
                    const xmlChar** attributes) {
    const bool svg = uri == svgUri_;
    const auto known = svg ? tags_.find(name) : tags_.end();
    Element element;
    element.tag = known == tags_.end() ? Tag::Unknown : known->second;
    if (open_.empty() && element.tag != Tag::Svg) {
        fail(context,
             "not an SVG drawing: its root element is '" +
                 std::string(chars(name), std::min<std::size_t>(std::strlen(chars(name)), 60)) +
                 "'" + (svg ? "" : ", which is not in the namespace of SVG"));
        return;
    }
    if (open_.size() >= limits_.maximumDepth) {
        fail(context,
             "elements are nested more than " + std::to_string(limits_.maximumDepth) + " deep");
        return;
    }
    if (tree_.elements.size() >= limits_.maximumElements) {
        fail(context, "more than " + std::to_string(limits_.maximumElements) +
                          " elements hold text or are shown as art");
        return;
    }
    namespaces_ += namespaceCount;
    if (namespaces_ > maximumNamespaces || attributeCount > maximumAttributes) {
        fail(context, namespaces_ > maximumNamespaces ? "too many namespaces are declared"
                                                      : "an element has too many attributes");
        return;
    }

    const std::uint32_t tagEnd = place(context);
    element.tagStart = tagStartBefore(tagEnd);
    if (prefix != nullptr) {
        element.prefix = static_cast<std::uint32_t>(std::strlen(chars(prefix)) + 1);
    }
    closePiece(element.tagStart);
    lastTagEnd_ = tagEnd == noPlace ? noPlace : tagEnd + 1;

    Open* const outer = open_.empty() ? nullptr : &open_.back();
    const auto id = static_cast<ElementId>(tree_.elements.size());
    if (outer != nullptr) {
        const Element& parent = tree_.elements[outer->element];
        element.parent = outer->element;
        element.preserve = parent.preserve;
        element.topLevel = parent.transparent;
    }
    element.transparent = outer == nullptr || (element.topLevel && element.tag == Tag::Switch);
    bool muted = (outer != nullptr && outer->muted) || element.tag == Tag::Ignored ||
                 (!svg && outer != nullptr) || element.tag == Tag::Style;
    const AttributeSet present = addAttributes(element, attributeCount, attributes);
    const auto has = [present](auto... names) { return (present & (bit(names) | ...)) != 0; };
    using Name = AttributeName;
    if (has(Name::RequiredExtensions, Name::SystemLanguage)) {
        readConditions(element, muted);
    }
    if (outer != nullptr && outer->tag == Tag::Switch) {
        choose(element, *outer, muted);
    }
    if (has(Name::Space, Name::GroupMode, Name::Layer, Name::Extraneous)) {
        interpretAttributes(element);
    }
    const References::Scope scope = scopeOf(element, outer);
    if (!muted && has(Name::Reference, Name::Paint, Name::Style)) {
        noteReferences(element, scope);
    }
    if (element.tag == Tag::Ignored) {
        noteFontFace(chars(name), attributeCount, attributes);
    }

    element.firstPiece = static_cast<std::uint32_t>(tree_.pieces.size());
    bool takesText = false;
    bool inFrame = outer != nullptr && outer->inFrame;
    ElementId paragraph = inFrame ? outer->paragraph : noElement;
    if (element.tag == Tag::FlowPara || (inFrame && has(Name::Role) && isLine(element))) {
        paragraph = id;
    }
    switch (element.tag) {
    case Tag::Text:
    case Tag::FlowRoot:
        if (inFrame) {
            // A text within a text is drawn by nobody alike; its words count as the outer one's.
            element.tag = Tag::Span;
        }
        inFrame = true;
        takesText = element.tag != Tag::FlowRoot;
        break;
    case Tag::Link:
    case Tag::Span:
    case Tag::TextPath:
    case Tag::AlternateGlyph:
    case Tag::FlowPara:
    case Tag::FlowSpan:
        takesText = inFrame;
        break;
    case Tag::TextReference:
        if (inFrame && !muted) {
            tree_.pieces.push_back({id, paragraph, static_cast<std::uint32_t>(tree_.text.size()),
                                    static_cast<std::uint32_t>(tree_.text.size()), noPlace,
                                    noPlace});
        }
        break;
    case Tag::Switch:
        break;
    default:
        muted = muted || inFrame;
        break;
    }
    if (element.tag == Tag::Style) {
        sheetText_.clear();
        sheetStart_ = lastTagEnd_;
    }
    const bool keep =
        !muted && (limits_.keepAll || takesText || element.tag == Tag::FlowRoot ||
                   element.tag == Tag::TextReference || element.layer || element.tag == Tag::Use ||
                   (element.topLevel && element.tag == Tag::Group));
    open_.push_back({id, paragraph, namespaceCount, keep || outer == nullptr, takesText && !muted,
                     inFrame, muted, element.tag, scope});
    tree_.elements.push_back(element);
}

void Scanner::end(xmlParserCtxtPtr context) {
    const std::uint32_t tagEnd = place(context);
    const std::uint32_t tagStart = tagStartBefore(tagEnd);
    closePiece(tagStart);
    lastTagEnd_ = tagEnd;

    const Open closing = open_.back();
    open_.pop_back();
    namespaces_ -= closing.namespaces;
    Element& element = tree_.elements[closing.element];
    if (closing.tag == Tag::Style) {
        const std::string_view type = tree_.valueOf(closing.element, AttributeName::Type);
        const std::string_view media = tree_.valueOf(closing.element, AttributeName::Media);
        if ((type.empty() || type.starts_with("text/css")) && css::appliesToScreens(media)) {
            // Which of them applies to anything is not asked: matching is for fonts alone.
            noteUrls(sheetText_, References::shown, true);
            tree_.sheets.push_back({std::move(sheetText_), sheetStart_, tagStart});
        }
    }
    if (!closing.keep) {
        // Nothing of its subtree was kept either, so all of it is at the end of the tables.
        tree_.attributes.resize(element.firstAttribute);
        tree_.elements.resize(closing.element);
        return;
    }
    if (!open_.empty()) {
        open_.back().keep = true;
    }
    element.subtreeEnd = static_cast<ElementId>(tree_.elements.size());
    element.pieceEnd = static_cast<std::uint32_t>(tree_.pieces.size());
}

void Scanner::addText(xmlParserCtxtPtr context, std::string_view text) {
    if (open_.empty()) {
        return;
    }
    const Open& current = open_.back();
    if (current.tag == Tag::Style) {
        sheetText_ += text;
        return;
    }
    if (!current.takesText) {
        return;
    }
    if (!pieceOpen_) {
        const auto start = static_cast<std::uint32_t>(tree_.text.size());
        tree_.pieces.push_back({current.element, current.paragraph, start, start,
                                context == context_.get() ? lastTagEnd_ : noPlace, noPlace});
        pieceOpen_ = true;
    }
    tree_.text += text;
    tree_.pieces.back().textEnd = static_cast<std::uint32_t>(tree_.text.size());
}

void Scanner::closePiece(std::uint32_t place) {
    if (pieceOpen_) {
        Piece& piece = tree_.pieces.back();
        piece.sourceEnd = place;
        if (place == noPlace) {
            piece.sourceStart = noPlace;
        }
        pieceOpen_ = false;
    }
}

} // namespace host::svg
