// SPDX-License-Identifier: MIT
// Parses a drawing with libxml2's SAX interface; used by scan() alone. The source is parsed where
// it lies, so that the places of tags and values in it are known without a second look.
#pragma once

#include "host/documents/svg/svgnames.h"
#include "host/documents/svg/svgreferences.h"
#include "host/documents/svg/svgtree.h"
#include "host/documents/xmlhandles.h"

#include <libxml/parser.h>

#include <array>
#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace host::svg {

constexpr std::size_t maximumAttributes = 1000;  // of one element
constexpr std::size_t maximumNamespaces = 1024;  // in scope
constexpr std::size_t maximumDefaults = 24;      // of one element, by the document type
constexpr std::size_t maximumDefaultText = 1000; // of one element, in bytes

inline const char* chars(const xmlChar* text) {
    return reinterpret_cast<const char*>(text);
}

class Scanner {
public:
    Scanner(const std::string& source, std::string_view name, const ScanLimits& limits);
    Tree run();

private:
    /// A tag as the parser reports it.
    struct StartTag {
        const xmlChar* name;
        const xmlChar* prefix;
        const xmlChar* uri;
        unsigned namespaceCount;
        unsigned attributeCount;
        const xmlChar** attributes;
    };
    struct Open {
        ElementId element = noElement;
        ElementId paragraph = noElement; ///< as Piece has it
        std::uint32_t namespaces = 0;
        bool keep = false;
        bool takesText = false; ///< its character data is text of the drawing
        bool inFrame = false;
        bool muted = false; ///< nothing in it counts
        Tag tag = Tag::Unknown;
        References::Scope scope = References::shown;
        bool chosen = false; ///< a switch: one of its children is shown
    };

    /// Runs a callback's work. No exception may pass through libxml2: it is told as a failure.
    template <typename Work>
    static void guarded(void* context, Work&& work) {
        auto* parser = static_cast<xmlParserCtxtPtr>(context);
        auto* scanner = static_cast<Scanner*>(parser->_private);
        if (scanner == nullptr || scanner->failed_) {
            stop(parser); // the one around it has failed already
            return;
        }
        try {
            work(*scanner);
        } catch (const std::bad_alloc&) {
            scanner->fail(parser, "too large for the memory that there is");
        } catch (const std::exception& error) {
            scanner->fail(parser, error.what());
        }
    }
    static void startElement(void* context, const xmlChar* name, const xmlChar* prefix,
                             const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                             int attributeCount, int defaultedCount, const xmlChar** attributes);
    static void endElement(void* context, const xmlChar* name, const xmlChar* prefix,
                           const xmlChar* uri);
    static void characters(void* context, const xmlChar* text, int length);
    static void declareEntity(void* context, const xmlChar* name, int type, const xmlChar* publicId,
                              const xmlChar* systemId, xmlChar* content);
    static void declareAttribute(void* context, const xmlChar* element, const xmlChar* name,
                                 int type, int kind, const xmlChar* value, xmlEnumerationPtr tree);
    static xmlEntityPtr getEntity(void* context, const xmlChar* name);
    static void noteError(void* context, xmlErrorPtr error);

    void setHandlers();
    void learnNames();
    void checkLongTags() const;
    std::size_t declarationEnd(std::size_t start) const;
    Tag tagOf(const StartTag& start) const;
    std::string objectionTo(const StartTag& start) const;
    void begin(xmlParserCtxtPtr context, const StartTag& start);
    void passStartTag(xmlParserCtxtPtr context, const StartTag& start, Element& element);
    Open openWithin(const Open* outer, const StartTag& start, Element& element) const;
    void findPlaceInText(Element& element, Open& open, bool line);
    void end(xmlParserCtxtPtr context);
    /// Bits by AttributeName, so that most elements are not asked about most attributes.
    using AttributeSet = std::uint32_t;
    static constexpr AttributeSet bit(AttributeName name) {
        return AttributeSet{1} << static_cast<unsigned>(name);
    }
    static constexpr bool hasAny(AttributeSet present, auto... names) {
        return (present & (bit(names) | ...)) != 0;
    }
    AttributeSet addAttributes(Element& element, unsigned count, const xmlChar** attributes);
    void readAttributes(Element& element, Open& open, Open* outer, AttributeSet present);
    bool speaks(std::string_view languages) const;
    References::Scope scopeOf(const Element& element, const Open* outer);
    void readConditions(Element& element, bool& muted) const;
    static void choose(Element& element, Open& switching, bool muted);
    void interpretAttributes(Element& element);
    bool isLine(const Element& element) const;
    void noteReferences(const Element& element, References::Scope scope);
    void noteUrls(std::string_view text, References::Scope scope, bool copy);
    void noteFontFace(std::string_view local, unsigned count, const xmlChar** attributes);
    void addText(xmlParserCtxtPtr context, std::string_view text);
    void closePiece(std::uint32_t place);
    /// Whether elements of this namespace are SVG's. In a drawing that names none for its root,
    /// as many have been written, those without one are.
    bool isSvg(const xmlChar* uri) const {
        return uri == svgUri_ || (uri == nullptr && rootIsBare_);
    }
    Space spaceOf(const xmlChar* uri) const;
    std::string_view keep(const xmlChar* start, const xmlChar* end);

    /// The place in the source up to which the parser has read; noPlace within an entity.
    std::uint32_t place(xmlParserCtxtPtr context) const {
        return context == context_.get() && context->inputNr == 1
                   ? static_cast<std::uint32_t>(chars(context->input->cur) - source_.data())
                   : noPlace;
    }
    std::uint32_t tagStartBefore(std::uint32_t place) const {
        return place == noPlace
                   ? noPlace
                   : static_cast<std::uint32_t>(source_.rfind('<', place == 0 ? 0 : place - 1));
    }
    void fail(xmlParserCtxtPtr context, std::string reason);
    static void stop(xmlParserCtxtPtr context);
    [[noreturn]] void raise(std::string_view reason, std::size_t place) const;

    struct Defaults {
        std::size_t count = 0;
        std::size_t bytes = 0;
    };

    const std::string& source_;
    std::string_view name_;
    ScanLimits limits_;
    xml::ParserContext context_;
    Tree tree_;
    References references_;
    std::vector<Open> open_;
    std::unordered_map<const xmlChar*, Tag> tags_;
    std::unordered_map<const xmlChar*, std::array<int, 4>> attributeNames_; ///< by Space; -1: none
    std::unordered_map<const xmlChar*, Defaults> defaults_;                 ///< by name of element
    std::unordered_set<std::string_view> keptValues_; ///< the tree's, each once
    const xmlChar* svgUri_ = nullptr;
    bool rootIsBare_ = false;
    const xmlChar* xlinkUri_ = nullptr;
    const xmlChar* xmlUri_ = nullptr;

    std::uint32_t lastTagEnd_ = 0;
    bool pieceOpen_ = false;
    std::uint32_t namespaces_ = 0;
    std::size_t entityText_ = 0;
    std::string sheetText_;
    std::uint32_t sheetStart_ = noPlace;

    bool failed_ = false;
    std::string reason_;
    std::size_t errorLine_ = 0;
    std::size_t errorColumn_ = 0;
};

} // namespace host::svg
