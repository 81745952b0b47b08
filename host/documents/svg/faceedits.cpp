// SPDX-License-Identifier: MIT
// Edits values in the source of a drawing.
#include "host/documents/svg/faceedits.h"

#include "host/documents/css/css.h"
#include "host/documents/css/declarations.h"
#include "host/documents/css/families.h"
#include "host/documents/documenterror.h"

#include <algorithm>
#include <utility>

namespace host::svg {
namespace {

using css::Property;

std::string_view spanName(Tag tag) {
    return tag == Tag::FlowRoot || tag == Tag::FlowPara || tag == Tag::FlowSpan ? "flowSpan"
                                                                                : "tspan";
}

/// Of several declarations the last one counts; without any, an empty one is the result.
css::Declaration decidingDeclaration(std::string_view block, Property property,
                                     const Origin& origin) {
    css::Declaration found;
    css::DeclarationCursor cursor(block);
    for (css::Declaration declaration; cursor.next(declaration);) {
        const bool matches = origin.shorthand ? css::equalsIgnoringCase(declaration.name, "font")
                                              : css::propertyNamed(declaration.name) == property;
        if (matches && declaration.important == origin.important) {
            found = declaration;
        }
    }
    return found;
}

} // namespace

bool FaceEdits::changeDeclaration(Property property, const Origin& origin, const NewValue& value) {
    if (origin.kind == Origin::Kind::Rule) {
        return changeInRule(property, origin, value);
    }
    const std::uint32_t tagStart = tree_.elements[origin.element].tagStart;
    const bool isInline = origin.kind == Origin::Kind::Inline;
    xml::AttributePlace attribute;
    if (tagStart == noPlace ||
        !xml::findAttribute(source_, tagStart, isInline ? "style" : propertyName(property),
                            attribute)) {
        return false;
    }
    const TextPlace place{attribute.quote, false, unicode_};
    if (isInline) {
        return changeInBlock(attribute.start, attribute.end, property, origin, value, place);
    }
    const xml::DecodedText decoded = xml::decode(source_, attribute.start, attribute.end);
    if (!decoded.complete) {
        return false;
    }
    std::string blanked;
    const std::string_view text = css::blankComments(decoded.text, blanked);
    if (property != Property::Family || !changeFirstFamily(decoded, 0, text, value, place)) {
        edits_.push_back(
            {attribute.start, attribute.end, place.escape(valueText(property, value, place))});
    }
    return true;
}

bool FaceEdits::changeInRule(Property property, const Origin& origin, const NewValue& value) {
    const css::RuleBlock& block = styles_.sheets.block(origin.block);
    const Sheet& sheet = tree_.sheets[block.sheet];
    if (sheet.sourceStart == noPlace || sheet.sourceEnd == noPlace) {
        return false;
    }
    // The block's place in the sheet leads back to its place in the source only if the sheet is
    // there as it was read.
    auto& known = sheets_[block.sheet];
    if (!known) {
        known = xml::decode(source_, sheet.sourceStart, sheet.sourceEnd);
    }
    const xml::DecodedText& decoded = *known;
    if (!decoded.complete || decoded.text != sheet.text || block.start >= block.end) {
        return false;
    }
    const auto& first = decoded.origins[block.start];
    return changeInBlock(first.start, decoded.origins[block.end - 1].end, property, origin, value,
                         {0, first.cdata, unicode_});
}

bool FaceEdits::changeInBlock(std::size_t start, std::size_t end, Property property,
                              const Origin& origin, const NewValue& value, const TextPlace& place) {
    const xml::DecodedText decoded = xml::decode(source_, start, end);
    if (!decoded.complete) {
        return false;
    }
    std::string blanked;
    const std::string_view block = css::blankComments(decoded.text, blanked);
    const css::Declaration found = decidingDeclaration(block, property, origin);
    if (found.whole.empty()) {
        return false;
    }
    const auto offsetOf = [&](std::string_view part) {
        return static_cast<std::size_t>(part.data() - block.data());
    };
    if (property == Property::Family) {
        const std::size_t skipped =
            origin.shorthand ? css::familiesInShorthand(found.value) : std::size_t{0};
        return skipped != std::string_view::npos &&
               changeFirstFamily(decoded, offsetOf(found.value) + skipped,
                                 found.value.substr(skipped), value, place);
    }
    const std::string text = valueText(property, value, place);
    if (!origin.shorthand) {
        const std::size_t from = offsetOf(found.value);
        replace(decoded, from, from + found.value.size(), place.escape(text));
        return true;
    }
    // What a shorthand says stays; a later declaration overrides it.
    const std::size_t after = decoded.origins[offsetOf(found.whole) + found.whole.size() - 1].end;
    edits_.push_back({after, after,
                      std::string(";")
                          .append(propertyName(property))
                          .append(":")
                          .append(text)
                          .append(origin.important ? " !important" : "")});
    return true;
}

bool FaceEdits::changeFirstFamily(const xml::DecodedText& decoded, std::size_t listStart,
                                  std::string_view list, const NewValue& value,
                                  const TextPlace& place) {
    const auto families = css::readFamilies(list);
    if (families.empty()) {
        return false;
    }
    const css::FamilyName& old = families.front();
    const bool wasQuoted = list[old.start] == '"' || list[old.start] == '\'';
    replace(decoded, listStart + old.start, listStart + old.end,
            place.escape(familyText(value, place, wasQuoted)));
    return true;
}

void FaceEdits::replace(const xml::DecodedText& decoded, std::size_t from, std::size_t to,
                        std::string text) {
    edits_.push_back({decoded.origins[from].start, decoded.origins[to - 1].end, std::move(text)});
}

std::string FaceEdits::declarations(ElementId element, const Values& values, bool important,
                                    const TextPlace& place) const {
    std::string result;
    for (const auto& [property, value] : values) {
        std::string text = valueText(property, value, place);
        if (property == Property::Family) {
            // The old list's further families go on standing in for the first one.
            const std::string_view list =
                styles_.texts[styles_.elements[element].value(Property::Family)];
            const auto families = css::readFamilies(list);
            for (std::size_t i = 1; i < families.size(); ++i) {
                const NewValue fallback{families[i].name, families[i].generic, 0};
                text.append(", ").append(familyText(fallback, place, false));
            }
        }
        result.append(result.empty() ? "" : ";")
            .append(propertyName(property))
            .append(":")
            .append(text);
        result += important ? " !important" : "";
    }
    return place.escape(result);
}

void FaceEdits::addToElement(ElementId element, const Values& values, bool important) {
    const std::uint32_t tagStart = tree_.elements[element].tagStart;
    xml::AttributePlace style;
    if (!xml::findAttribute(source_, tagStart, "style", style)) {
        const std::size_t end = xml::tagEnd(source_, tagStart);
        edits_.push_back(
            {end, end,
             std::string(" style=\"")
                 .append(declarations(element, values, important, {'"', false, unicode_}))
                 .append("\"")});
        return;
    }
    // A ';' too many does no harm, as one that only ends an entity would.
    const xml::DecodedText old = xml::decode(source_, style.start, style.end);
    const bool separated = old.complete && css::endsSeparated(old.text);
    edits_.push_back(
        {style.end, style.end,
         std::string(separated ? "" : ";") +
             declarations(element, values, important, {style.quote, false, unicode_})});
}

void FaceEdits::wrap(const Piece& piece, const Values& values, bool important) {
    const Element& element = tree_.elements[piece.element];
    const std::string_view outer = xml::tagName(source_, element.tagStart);
    // The span's name needs the same prefix as the element around it; npos + 1 is none.
    const std::string name =
        std::string(outer.substr(0, outer.find(':') + 1)).append(spanName(element.tag));
    edits_.push_back({piece.sourceStart, piece.sourceStart,
                      std::string("<").append(name).append(" style=\"") +
                          declarations(piece.element, values, important, {'"', false, unicode_}) +
                          "\">"});
    edits_.push_back(
        {piece.sourceEnd, piece.sourceEnd, std::string("</").append(name).append(">")});
}

std::string FaceEdits::apply(std::string_view name) {
    std::stable_sort(edits_.begin(), edits_.end(),
                     [](const Edit& a, const Edit& b) { return a.start < b.start; });
    std::string result;
    result.reserve(source_.size() + edits_.size() * 40);
    std::size_t position = 0;
    for (const Edit& edit : edits_) {
        if (edit.start < position) {
            throw DocumentError(name, "the new fonts need two changes in one place");
        }
        result.append(source_, position, edit.start - position).append(edit.text);
        position = edit.end;
    }
    edits_.clear();
    return result.append(source_, position);
}

} // namespace host::svg
