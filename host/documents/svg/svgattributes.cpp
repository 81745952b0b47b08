// SPDX-License-Identifier: MIT
// What the scanner keeps of attributes, and what they say about their element.
#include "host/documents/svg/svgscanner.h"

#include "host/documents/css/families.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>

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

void Scanner::readAttributes(Element& element, Open& open, Open* outer, AttributeSet present) {
    using Name = AttributeName;
    if (hasAny(present, Name::RequiredExtensions, Name::SystemLanguage)) {
        readConditions(element, open.muted);
    }
    if (outer != nullptr && outer->tag == Tag::Switch) {
        choose(element, *outer, open.muted);
    }
    if (hasAny(present, Name::Space, Name::GroupMode, Name::Layer, Name::Extraneous)) {
        interpretAttributes(element);
    }
    open.scope = scopeOf(element, outer);
    if (!open.muted && hasAny(present, Name::Reference, Name::Paint, Name::Style)) {
        noteReferences(element, open.scope);
    }
}

} // namespace host::svg
