// SPDX-License-Identifier: MIT
// What selectors and the resolver ask about the elements of a drawing.
#include "host/documents/svg/svgtree.h"

#include "host/documents/svg/xmlsource.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace host::svg {

const std::string_view* Tree::find(ElementId id, AttributeName name) const {
    const Element& element = elements[id];
    for (std::uint32_t i = 0; i < element.attributeCount; ++i) {
        const Attribute& attribute = attributes[element.firstAttribute + i];
        if (attribute.name == name) {
            return &attribute.value;
        }
    }
    return nullptr;
}

std::string_view Tree::valueOf(ElementId element, AttributeName name) const {
    const std::string_view* value = find(element, name);
    return value == nullptr ? std::string_view() : *value;
}

std::string_view Tree::typeOf(ElementId id) const {
    const Element& element = elements[id];
    return element.tagStart == noPlace ? std::string_view()
                                       : xml::tagName(source, element.tagStart + element.prefix);
}

std::string_view Tree::idOf(ElementId element) const {
    return valueOf(element, AttributeName::Id);
}

std::string_view Tree::classesOf(ElementId element) const {
    return valueOf(element, AttributeName::Class);
}

std::vector<css::SelectorSubject::NamedValue> Tree::attributesOf(ElementId element) const {
    std::vector<NamedValue> result;
    const std::uint32_t tagStart = elements[element].tagStart;
    if (tagStart == noPlace) {
        return result;
    }
    xml::AttributeCursor cursor(source, tagStart);
    for (xml::AttributePlace place; cursor.next(place);) {
        const std::string_view raw = source.substr(place.start, place.end - place.start);
        const std::size_t colon = place.name.find(':');
        result.push_back({place.name.substr(colon == std::string_view::npos ? 0 : colon),
                          raw.find_first_of("&\r") == std::string_view::npos
                              ? std::string(raw)
                              : xml::decode(source, place.start, place.end).text});
    }
    return result;
}

const css::Siblings& Tree::siblingsOf(ElementId element) const {
    static const css::Siblings alone;
    return siblings.empty() ? alone : siblings[element];
}

void countSiblings(Tree& tree) {
    struct Children {
        ElementId last = noElement;
        std::uint32_t count = 0;
        std::unordered_map<std::string_view, std::uint32_t> ofType;
    };
    std::unordered_map<ElementId, Children> childrenOf;
    const auto count = static_cast<ElementId>(tree.elements.size());
    tree.siblings.resize(count);
    for (ElementId id = 0; id < count; ++id) {
        Children& children = childrenOf[tree.elements[id].parent];
        css::Siblings& siblings = tree.siblings[id];
        siblings.before = std::exchange(children.last, id);
        siblings.place = ++children.count;
        siblings.placeOfType = ++children.ofType[tree.typeOf(id)];
    }
    for (ElementId id = 0; id < count; ++id) {
        const Children& children = childrenOf[tree.elements[id].parent];
        css::Siblings& siblings = tree.siblings[id];
        siblings.placeFromEnd = children.count + 1 - siblings.place;
        siblings.placeOfTypeFromEnd =
            children.ofType.at(tree.typeOf(id)) + 1 - siblings.placeOfType;
    }
}

DocumentError errorAt(std::string_view source, std::string_view name, std::string_view reason,
                      std::size_t place) {
    if (place > source.size()) {
        return {name, reason};
    }
    const std::string_view before = source.substr(0, place);
    const auto line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    return {name, reason, line + 1, place - (before.rfind('\n') + 1) + 1};
}

} // namespace host::svg
