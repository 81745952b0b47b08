// SPDX-License-Identifier: MIT
// How far a document grows by its own declarations.
#include "misc/xml/libxmllimits.h"

#include <libxml/entities.h>
#include <libxml/tree.h>

#include <algorithm>
#include <utility>

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
    entity_ = std::exchange(parser.sax->entityDecl, onEntity);
    attribute_ = std::exchange(parser.sax->attributeDecl, onAttribute);
}

void GrowthLimit::watchContent(xmlParserCtxt& parser) {
    if (parser.sax->reference != onReference) {
        start_ = std::exchange(parser.sax->startElementNs, onStart);
        reference_ = std::exchange(parser.sax->reference, onReference);
    }
}

/// Entities are parsed by contexts of their own, which share the handlers and this object: after
/// the inner one the outer one stops at its next event.
void GrowthLimit::stop(xmlParserCtxt& parser, std::string reason) {
    if (excess_.empty()) {
        excess_ = std::move(reason);
    }
    xmlStopParser(&parser);
}

void GrowthLimit::grow(xmlParserCtxt& parser, std::size_t size) {
    growth_ += std::min(size, limit_ + 1);
    if (growth_ > limit_ || !excess_.empty()) {
        growth_ = limit_ + 1;
        stop(parser, "entities or defaults of attributes make the document grow by more than " +
                         std::to_string(limit_) + " bytes");
    }
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
    auto& context = *static_cast<xmlParserCtxt*>(parser);
    self.entity_(parser, name, type, publicId, systemId, content);
    self.watchContent(context);
    // Its tags may stand there in such a way that the text of the document does not show them.
    if (const auto found = findManyAttributes(toView(content))) {
        self.stop(context, "entity " + std::string(toView(name)) + ": " + found->message);
    }
}

void GrowthLimit::onAttribute(void* parser, const xmlChar* element, const xmlChar* name, int type,
                              int kind, const xmlChar* value, xmlEnumeration* values) {
    GrowthLimit& self = of(parser);
    auto& context = *static_cast<xmlParserCtxt*>(parser);
    self.attribute_(parser, element, name, type, kind, value, values);
    if (value != nullptr) {
        self.watchContent(context);
        if (++self.defaults_[std::string(toView(element))] > maximumAttributes) {
            self.stop(context, "element " + std::string(toView(element)) + " has more than " +
                                   std::to_string(maximumAttributes) + " defaults of attributes");
        }
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
    self.grow(context, growth);
    if (self.start_ != nullptr && self.excess_.empty()) {
        self.start_(parser, name, prefix, uri, namespaceCount, namespaces, attributeCount,
                    defaultedCount, attributes);
    }
}

void GrowthLimit::onReference(void* parser, const xmlChar* name) {
    GrowthLimit& self = of(parser);
    auto& context = *static_cast<xmlParserCtxt*>(parser);
    self.grow(context, self.sizeOfEntity(context.myDoc, name, 0));
    if (self.reference_ != nullptr && self.excess_.empty()) {
        self.reference_(parser, name);
    }
}

} // namespace Orvil::LibXml
