// SPDX-License-Identifier: MIT
// Bounds for outside documents that libxml2 has none for.
#pragma once

#include <libxml/parser.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Orvil::LibXml {

/// As many as the levels of elements that libxml2 allows. It compares each attribute of an element
/// with each other.
constexpr int maximumAttributes = 256;
/// Declarations of namespaces that hold in one place. libxml2 looks through all of them for each
/// element.
constexpr int maximumNamespaces = 256;
/// Different names in a document, of elements and attributes above all. libxml2 has so few lists of
/// them that it takes a time quadratic in their number.
constexpr int maximumNames = 100'000;

/// What is wrong and where; lines and columns begin at 1, columns are counted in bytes.
struct Excess {
    int line = 0;
    int column = 0;
    std::string message;
};

/// Finds the first start tag with more than `maximumAttributes` attributes, before libxml2 sees it.
/// What looks like one in a comment or a CDATA section counts as well. In encodings other than
/// UTF-8, UTF-16 and those that have ASCII's characters at ASCII's places, tags cannot be told; a
/// text in such a one is itself an excess if it is large enough to take libxml2 long.
std::optional<Excess> findManyAttributes(std::string_view text);

/// Stops the parser when the document has more names (or names and defaults of attributes of more
/// than 1 MB in all) or more declarations of namespaces than the maximum, and when it grows too
/// much. Counted is what it grows by when the references to its entities, and the attributes that
/// it declares defaults for, are read in full; libxml2 itself bounds only what it comes by when it
/// looks into each entity for the first time. A document without such declarations is not slowed by
/// that. Must outlive the parsing that it watches.
class DocumentLimit {
public:
    /// The size of the document in bytes. It may grow tenfold; a small one may grow to some size.
    explicit DocumentLimit(std::size_t documentSize);
    DocumentLimit(const DocumentLimit&) = delete;
    DocumentLimit& operator=(const DocumentLimit&) = delete;
    ~DocumentLimit() = default;

    /// Takes the parser's _private, and puts itself before some of its handlers.
    void watch(xmlParserCtxt& parser);
    /// Why the parser was stopped; empty if it was not.
    const std::string& excess() const { return excess_; }
    /// Behind a fault libxml2 reads on without handlers, and nothing is counted: only in a small
    /// document it may. A parser with an error handler of its own is stopped by that.
    bool mustStopAt(const xmlError& error) const;

private:
    static DocumentLimit& of(void* parser);
    static void onEntity(void* parser, const xmlChar* name, int type, const xmlChar* publicId,
                         const xmlChar* systemId, xmlChar* content);
    static void onAttribute(void* parser, const xmlChar* element, const xmlChar* name, int type,
                            int kind, const xmlChar* value, xmlEnumeration* values);
    template <auto handler>
    struct Watched;
    static void onStart(void* parser, const xmlChar* name, const xmlChar* prefix,
                        const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                        int attributeCount, int defaultedCount, const xmlChar** attributes);
    static void onReference(void* parser, const xmlChar* name);
    static void onError(void* parser, xmlErrorPtr error);

    template <auto... handlers>
    void watchNames(xmlSAXHandler& sax);
    void watchContent(xmlParserCtxt& parser);
    bool checkNames(xmlParserCtxt& parser);
    void grow(xmlParserCtxt& parser, std::size_t size);
    void stop(xmlParserCtxt& parser, std::string reason);
    std::size_t sizeOfEntity(xmlDoc* document, const xmlChar* name, int depth);
    std::size_t sizeOfReferences(xmlDoc* document, std::string_view text, int depth);

    std::size_t limit_;
    bool isSmall_;
    std::size_t growth_ = 0;
    std::string excess_;
    std::unordered_map<const xmlEntity*, std::size_t> sizes_; // in full, in bytes
    std::unordered_map<std::string, int> defaults_;           // counts, by elements
    xmlSAXHandler own_{};                                     // the parser's own handlers
    startElementNsSAX2Func start_ = nullptr; // what onStart and onReference stand before
    referenceSAXFunc reference_ = nullptr;
};

} // namespace Orvil::LibXml
