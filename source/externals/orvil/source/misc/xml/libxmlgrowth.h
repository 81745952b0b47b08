// SPDX-License-Identifier: MIT
// How far an outside document may grow by what it declares.
#pragma once

#include <libxml/parser.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Orvil::LibXml {

/// Stops the parser when the document grows too much. It counts what the references to its entities
/// add when they are read in full, and the attributes that it declares defaults for. libxml2
/// itself bounds only what it meets when it looks into each entity for the first time. A document
/// without such declarations is not slowed by that. Must outlive the parsing that it watches.
class GrowthLimit {
public:
    /// The size of the document in bytes. It may grow tenfold, a small one to 1 MB.
    explicit GrowthLimit(std::size_t documentSize);
    GrowthLimit(const GrowthLimit&) = delete;
    GrowthLimit& operator=(const GrowthLimit&) = delete;
    ~GrowthLimit() = default;

    /// Takes the parser's _private, and puts itself before some of its handlers.
    void watch(xmlParserCtxt& parser);
    /// Why the parser was stopped; empty if it was not.
    [[nodiscard]] const std::string& excess() const { return excess_; }

private:
    static GrowthLimit& of(void* parser);
    static void onEntity(void* parser, const xmlChar* name, int type, const xmlChar* publicId,
                         const xmlChar* systemId, xmlChar* content);
    static void onAttribute(void* parser, const xmlChar* element, const xmlChar* name, int type,
                            int kind, const xmlChar* value, xmlEnumeration* values);
    static void onStart(void* parser, const xmlChar* name, const xmlChar* prefix,
                        const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                        int attributeCount, int defaultedCount, const xmlChar** attributes);
    static void onReference(void* parser, const xmlChar* name);

    void watchContent(xmlParserCtxt& parser);
    bool grow(xmlParserCtxt& parser, std::size_t size);
    std::size_t sizeOfEntity(xmlDoc* document, const xmlChar* name, int depth);
    std::size_t sizeOfReferences(xmlDoc* document, std::string_view text, int depth);

    std::size_t limit_;
    std::size_t growth_ = 0;
    std::string excess_;
    std::unordered_map<const xmlEntity*, std::size_t> sizes_; // in full, in bytes
    xmlSAXHandler own_{};                                     // the parser's own handlers
};

} // namespace Orvil::LibXml
