// SPDX-License-Identifier: MIT
// What the scanner keeps of the elements and the text that the parser reports.
#include "host/documents/svg/svgscanner.h"

#include "host/documents/css/css.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

namespace host::svg {

Tag Scanner::tagOf(const StartTag& start) const {
    const auto known = isSvg(start.uri) ? tags_.find(start.name) : tags_.end();
    return known == tags_.end() ? Tag::Unknown : known->second;
}

/// Why an element is refused; empty when it is not.
std::string Scanner::objectionTo(const StartTag& start) const {
    if (open_.empty() && tagOf(start) != Tag::Svg) {
        const std::string_view name = chars(start.name);
        return "not an SVG drawing: its root element is '" + std::string(name.substr(0, 60)) + "'" +
               (isSvg(start.uri) ? "" : ", which is not in the namespace of SVG");
    }
    if (open_.size() >= limits_.maximumDepth) {
        return "elements are nested more than " + std::to_string(limits_.maximumDepth) + " deep";
    }
    if (tree_.elements.size() >= limits_.maximumElements) {
        return "more than " + std::to_string(limits_.maximumElements) +
               " elements hold text or are shown as art";
    }
    if (namespaces_ + start.namespaceCount > maximumNamespaces) {
        return "too many namespaces are declared";
    }
    return start.attributeCount > maximumAttributes ? "an element has too many attributes" : "";
}

void Scanner::begin(xmlParserCtxtPtr context, const StartTag& start) {
    if (open_.empty()) {
        rootIsBare_ = start.uri == nullptr;
    }
    if (std::string objection = objectionTo(start); !objection.empty()) {
        fail(context, std::move(objection));
        return;
    }
    namespaces_ += start.namespaceCount;
    Element element;
    element.tag = tagOf(start);
    passStartTag(context, start, element);

    Open* const outer = open_.empty() ? nullptr : &open_.back();
    Open open = openWithin(outer, start, element);
    const AttributeSet present = addAttributes(element, start.attributeCount, start.attributes);
    readAttributes(element, open, outer, present);
    if (element.tag == Tag::Ignored) {
        noteFontFace(chars(start.name), start.attributeCount, start.attributes);
    }
    element.firstPiece = static_cast<std::uint32_t>(tree_.pieces.size());
    findPlaceInText(element, open, hasAny(present, AttributeName::Role) && isLine(element));
    if (element.tag == Tag::Style) {
        sheetText_.clear();
        sheetStart_ = lastTagEnd_;
    }
    open.tag = element.tag;
    open.keep = outer == nullptr || (limits_.keepSiblings && !outer->muted) ||
                (!open.muted &&
                 (limits_.keepAll || open.takesText || element.tag == Tag::FlowRoot ||
                  element.tag == Tag::TextReference || element.layer || element.tag == Tag::Use ||
                  (element.topLevel && element.tag == Tag::Group)));
    open_.push_back(open);
    tree_.elements.push_back(element);
}

/// Notes where a tag stands, and ends the text before it.
void Scanner::passStartTag(xmlParserCtxtPtr context, const StartTag& start, Element& element) {
    const std::uint32_t tagEnd = place(context);
    element.tagStart = tagStartBefore(tagEnd);
    if (start.prefix != nullptr) {
        element.prefix = static_cast<std::uint32_t>(std::strlen(chars(start.prefix)) + 1);
    }
    closePiece(element.tagStart);
    lastTagEnd_ = tagEnd == noPlace ? noPlace : tagEnd + 1;
}

/// What an element has from the one around it.
Scanner::Open Scanner::openWithin(const Open* outer, const StartTag& start,
                                  Element& element) const {
    Open open;
    open.element = static_cast<ElementId>(tree_.elements.size());
    open.namespaces = start.namespaceCount;
    open.muted = element.tag == Tag::Ignored || element.tag == Tag::Style;
    element.transparent = outer == nullptr;
    if (outer != nullptr) {
        const Element& parent = tree_.elements[outer->element];
        element.parent = outer->element;
        element.preserve = parent.preserve;
        element.topLevel = parent.transparent;
        element.transparent = element.topLevel && element.tag == Tag::Switch;
        open.muted = open.muted || outer->muted || !isSvg(start.uri);
        open.inFrame = outer->inFrame;
        open.paragraph = outer->inFrame ? outer->paragraph : noElement;
    }
    return open;
}

/// Whether the characters in an element are text of the drawing, and of which line.
/// `line` when a drawing program says that the element is one.
void Scanner::findPlaceInText(Element& element, Open& open, bool line) {
    if (element.tag == Tag::FlowPara || (open.inFrame && line)) {
        open.paragraph = open.element;
    }
    switch (element.tag) {
    case Tag::Text:
    case Tag::FlowRoot:
        if (open.inFrame) {
            // Programs differ on a text within a text; its words count as the outer one's.
            element.tag = Tag::Span;
        }
        open.inFrame = true;
        open.takesText = element.tag != Tag::FlowRoot;
        break;
    case Tag::Link:
    case Tag::Span:
    case Tag::TextPath:
    case Tag::AlternateGlyph:
    case Tag::FlowPara:
    case Tag::FlowSpan:
        open.takesText = open.inFrame;
        break;
    case Tag::TextReference:
        if (open.inFrame && !open.muted) {
            const auto end = static_cast<std::uint32_t>(tree_.text.size());
            tree_.pieces.push_back({open.element, open.paragraph, end, end, noPlace, noPlace});
        }
        break;
    case Tag::Switch:
        break;
    default:
        open.muted = open.muted || open.inFrame;
        break;
    }
    open.takesText = open.takesText && !open.muted;
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
