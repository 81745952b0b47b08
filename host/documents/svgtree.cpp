// SPDX-License-Identifier: MIT
// What selectors and the resolver ask about the elements of a drawing.
#include "host/documents/svgtree.h"

#include "host/documents/xmlsource.h"

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

std::string_view Tree::typeOf(ElementId element) const {
    const std::uint32_t tagStart = elements[element].tagStart;
    if (tagStart == noPlace) {
        return {};
    }
    const std::string_view name = xml::tagName(source, tagStart);
    return name.substr(name.find(':') + 1);
}

std::string_view Tree::idOf(ElementId element) const {
    return valueOf(element, AttributeName::Id);
}

std::string_view Tree::classesOf(ElementId element) const {
    return valueOf(element, AttributeName::Class);
}

bool Tree::attributeOf(ElementId element, std::string_view name, std::string& value) const {
    const std::uint32_t tagStart = elements[element].tagStart;
    if (tagStart == noPlace) {
        return false;
    }
    xml::AttributeCursor cursor(source, tagStart);
    for (xml::AttributePlace place; cursor.next(place);) {
        if (place.name.substr(place.name.find(':') + 1) == name) {
            value = xml::decode(source, place.start, place.end).text;
            return true;
        }
    }
    return false;
}

} // namespace host::svg
