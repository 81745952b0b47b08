// SPDX-License-Identifier: MIT
// What is counted while a document is read, and how far it grows by its own declarations.
#include "misc/xml/libxmllimits.h"

#include <libxml/dict.h>
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
constexpr std::size_t smallDocument = 1'000'000; // bytes
/// In bytes. Each part of it is four times as large as the one before: the last has been begun when
/// the others, of more than 1 MB, were full. It could be full itself at 10 MB, which libxml2 does
/// not get over where it takes up defaults.
constexpr std::size_t sizeOfDictionary = 4'000'000;

} // namespace

DocumentLimit::DocumentLimit(std::size_t documentSize)
    : limit_(std::max(allowedFactor * documentSize, allowedAnyway)),
      isSmall_(documentSize <= smallDocument) {}

DocumentLimit& DocumentLimit::of(void* parser) {
    return *static_cast<DocumentLimit*>(static_cast<xmlParserCtxt*>(parser)->_private);
}

/// Stands before one of the parser's own handlers.
template <typename... Arguments, void (*xmlSAXHandler::*handler)(void*, Arguments...)>
struct DocumentLimit::Watched<handler> {
    static void call(void* parser, Arguments... arguments) {
        DocumentLimit& self = of(parser);
        if (self.checkNames(*static_cast<xmlParserCtxt*>(parser)) &&
            self.own_.*handler != nullptr) {
            (self.own_.*handler)(parser, arguments...);
        }
    }
};

template <auto... handlers>
void DocumentLimit::watchNames(xmlSAXHandler& sax) {
    ((sax.*handlers = Watched<handlers>::call), ...);
}

void DocumentLimit::watch(xmlParserCtxt& parser) {
    parser._private = this;
    own_ = *parser.sax;
    watchNames<&xmlSAXHandler::startElementNs, &xmlSAXHandler::processingInstruction,
               &xmlSAXHandler::elementDecl, &xmlSAXHandler::notationDecl,
               &xmlSAXHandler::unparsedEntityDecl, &xmlSAXHandler::reference>(*parser.sax);
    parser.sax->entityDecl = onEntity;
    parser.sax->attributeDecl = onAttribute;
    parser.sax->serror = onError;
}

bool DocumentLimit::checkNames(xmlParserCtxt& parser) {
    if (parser.nsNr > 2 * maximumNamespaces) { // prefixes and URIs in turn
        stop(parser, "more than " + std::to_string(maximumNamespaces) +
                         " declarations of namespaces hold in an element");
    } else if (xmlDictSize(parser.dict) > maximumNames) {
        stop(parser, "more than " + std::to_string(maximumNames) + " different names");
    } else if (xmlDictGetUsage(parser.dict) > sizeOfDictionary) {
        stop(parser, "names and defaults of attributes take more than 1 MB");
    } else if (!excess_.empty()) {
        xmlStopParser(&parser);
    }
    return excess_.empty();
}

void DocumentLimit::watchContent(xmlParserCtxt& parser) {
    if (parser.sax->reference != onReference) {
        start_ = std::exchange(parser.sax->startElementNs, onStart);
        reference_ = std::exchange(parser.sax->reference, onReference);
    }
}

/// Entities are parsed by contexts of their own, which share the handlers and this object: after
/// the inner one the outer one stops at its next event.
void DocumentLimit::stop(xmlParserCtxt& parser, std::string reason) {
    if (excess_.empty()) {
        excess_ = std::move(reason);
    }
    xmlStopParser(&parser);
}

void DocumentLimit::grow(xmlParserCtxt& parser, std::size_t size) {
    growth_ += std::min(size, limit_ + 1);
    if (growth_ > limit_ || !excess_.empty()) {
        growth_ = limit_ + 1;
        stop(parser, "entities or defaults of attributes make the document grow by more than " +
                         std::to_string(limit_) + " bytes");
    }
}

/// With all that it refers to in turn. More than the limit is as good as any more.
std::size_t DocumentLimit::sizeOfEntity(xmlDoc* document, const xmlChar* name, int depth) {
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

std::size_t DocumentLimit::sizeOfReferences(xmlDoc* document, std::string_view text, int depth) {
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

void DocumentLimit::onEntity(void* parser, const xmlChar* name, int type, const xmlChar* publicId,
                             const xmlChar* systemId, xmlChar* content) {
    DocumentLimit& self = of(parser);
    auto& context = *static_cast<xmlParserCtxt*>(parser);
    self.own_.entityDecl(parser, name, type, publicId, systemId, content);
    self.watchContent(context);
    self.checkNames(context);
    // Its tags may stand there in such a way that the text of the document does not show them.
    if (const auto found = findManyAttributes(toView(content))) {
        self.stop(context, "entity " + std::string(toView(name)) + ": " + found->message);
    }
}

void DocumentLimit::onAttribute(void* parser, const xmlChar* element, const xmlChar* name, int type,
                                int kind, const xmlChar* value, xmlEnumeration* values) {
    DocumentLimit& self = of(parser);
    auto& context = *static_cast<xmlParserCtxt*>(parser);
    self.own_.attributeDecl(parser, element, name, type, kind, value, values);
    self.checkNames(context);
    if (value != nullptr) {
        self.watchContent(context);
        if (++self.defaults_[std::string(toView(element))] > maximumAttributes) {
            self.stop(context, "element " + std::string(toView(element)) + " has more than " +
                                   std::to_string(maximumAttributes) + " defaults of attributes");
        }
    }
}

bool DocumentLimit::mustStopAt(const xmlError& error) const {
    return error.level == XML_ERR_FATAL && !isSmall_;
}

void DocumentLimit::onError(void* parser, xmlErrorPtr error) {
    if (of(parser).mustStopAt(*error)) {
        xmlStopParser(static_cast<xmlParserCtxt*>(parser));
    }
}

/// Five pointers for each attribute: its name, prefix, namespace, value and the value's end. Those
/// that stand for defaults come last.
void DocumentLimit::onStart(void* parser, const xmlChar* name, const xmlChar* prefix,
                            const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                            int attributeCount, int defaultedCount, const xmlChar** attributes) {
    DocumentLimit& self = of(parser);
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

void DocumentLimit::onReference(void* parser, const xmlChar* name) {
    DocumentLimit& self = of(parser);
    auto& context = *static_cast<xmlParserCtxt*>(parser);
    self.grow(context, self.sizeOfEntity(context.myDoc, name, 0));
    if (self.reference_ != nullptr && self.excess_.empty()) {
        self.reference_(parser, name);
    }
}

} // namespace Orvil::LibXml
