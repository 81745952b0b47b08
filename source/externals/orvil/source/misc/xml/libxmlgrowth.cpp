// SPDX-License-Identifier: MIT
// How far a document grows by its own declarations.
#include "misc/xml/libxmlgrowth.h"

#include <libxml/entities.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>

#include <algorithm>

namespace Orvil::LibXml {

namespace {

std::string_view toView(const xmlChar* text) {
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

constexpr std::size_t allowedFactor = 10;
constexpr std::size_t allowedAnyway = 1'000'000; // bytes
constexpr int maximumDepth = 100;                // of entities; libxml2 allows fewer

} // namespace

GrowthLimit::GrowthLimit(std::size_t documentSize)
    : limit_(std::max(allowedFactor * documentSize, allowedAnyway)) {}

GrowthLimit& GrowthLimit::of(void* parser) {
    return *static_cast<GrowthLimit*>(static_cast<xmlParserCtxt*>(parser)->_private);
}

void GrowthLimit::watch(xmlParserCtxt& parser) {
    parser._private = this;
    own_ = *parser.sax;
    parser.sax->entityDecl = onEntity;
    parser.sax->attributeDecl = onAttribute;
}

void GrowthLimit::watchContent(xmlParserCtxt& parser) {
    parser.sax->startElementNs = onStart;
    parser.sax->reference = onReference;
}

/// False when that is too much. Entities are parsed by contexts of their own, which share the
/// handlers and this object: after the inner one the outer one stops at its next event.
bool GrowthLimit::grow(xmlParserCtxt& parser, std::size_t size) {
    growth_ += std::min(size, limit_ + 1);
    if (growth_ <= limit_ && excess_.empty()) {
        return true;
    }
    growth_ = limit_ + 1;
    excess_ = "entities or defaults of attributes make the document grow by more than " +
              std::to_string(limit_) + " bytes";
    xmlStopParser(&parser);
    return false;
}

/// With all that it refers to in turn. More than the limit is as good as any more.
std::size_t GrowthLimit::sizeOfEntity(xmlDoc* document, const xmlChar* name, int depth) {
    const xmlEntity* const entity = xmlGetDocEntity(document, name);
    if (entity == nullptr || entity->content == nullptr ||
        entity->etype == XML_INTERNAL_PREDEFINED_ENTITY) {
        return 0;
    }
    const std::size_t tooMuch = limit_ + 1;
    if (depth > maximumDepth) {
        return tooMuch;
    }
    const auto [known, isNew] = sizes_.emplace(entity, tooMuch); // which holds for a loop
    if (!isNew) {
        return known->second;
    }
    const std::string_view content = toView(entity->content);
    const std::size_t size =
        std::min(content.size() + sizeOfReferences(document, content, depth + 1), tooMuch);
    sizes_[entity] = size;
    return size;
}

std::size_t GrowthLimit::sizeOfReferences(xmlDoc* document, std::string_view text, int depth) {
    std::size_t size = 0;
    for (std::size_t start = text.find('&'); start != std::string_view::npos && size <= limit_;
         start = text.find('&', start + 1)) {
        const std::size_t end = text.find_first_of("&;", start + 1);
        if (end == std::string_view::npos) {
            break;
        }
        if (text[end] == ';' && text[start + 1] != '#') {
            const std::string name(text.substr(start + 1, end - start - 1));
            size += sizeOfEntity(document, reinterpret_cast<const xmlChar*>(name.c_str()), depth);
        }
    }
    return size;
}

void GrowthLimit::onEntity(void* parser, const xmlChar* name, int type, const xmlChar* publicId,
                           const xmlChar* systemId, xmlChar* content) {
    GrowthLimit& self = of(parser);
    self.own_.entityDecl(parser, name, type, publicId, systemId, content);
    self.watchContent(*static_cast<xmlParserCtxt*>(parser));
}

void GrowthLimit::onAttribute(void* parser, const xmlChar* element, const xmlChar* name, int type,
                              int kind, const xmlChar* value, xmlEnumeration* values) {
    GrowthLimit& self = of(parser);
    self.own_.attributeDecl(parser, element, name, type, kind, value, values);
    if (value != nullptr) {
        self.watchContent(*static_cast<xmlParserCtxt*>(parser));
    }
}

/// Five pointers for each attribute: its name, prefix, namespace, value and the value's end. Those
/// that stand for defaults come last.
void GrowthLimit::onStart(void* parser, const xmlChar* name, const xmlChar* prefix,
                          const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                          int attributeCount, int defaultedCount, const xmlChar** attributes) {
    GrowthLimit& self = of(parser);
    auto& context = *static_cast<xmlParserCtxt*>(parser);
    constexpr std::size_t around = std::string_view(" =''").size();
    std::size_t growth = 0;
    for (int i = 0; i < attributeCount; ++i) {
        const xmlChar* const* const attribute = attributes + std::ptrdiff_t{5} * i;
        const std::string_view value(reinterpret_cast<const char*>(attribute[3]),
                                     static_cast<std::size_t>(attribute[4] - attribute[3]));
        growth += self.sizeOfReferences(context.myDoc, value, 0);
        if (i >= attributeCount - defaultedCount) {
            growth += around + toView(attribute[0]).size() + value.size();
        }
    }
    if (self.grow(context, growth)) {
        self.own_.startElementNs(parser, name, prefix, uri, namespaceCount, namespaces,
                                 attributeCount, defaultedCount, attributes);
    }
}

void GrowthLimit::onReference(void* parser, const xmlChar* name) {
    GrowthLimit& self = of(parser);
    auto& context = *static_cast<xmlParserCtxt*>(parser);
    if (self.grow(context, self.sizeOfEntity(context.myDoc, name, 0))) {
        self.own_.reference(parser, name);
    }
}

} // namespace Orvil::LibXml
