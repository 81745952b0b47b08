// SPDX-License-Identifier: MIT
// Schema validation of a text without a tree of it.
#include "misc/xml/libxmlstreamvalidation.h"

#include "misc/xml/libxmlsupport.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlschemas.h>

#include <memory>
#include <new>
#include <string>

namespace Orvil::LibXml {

namespace {

/// Between the parser, which has it as _private, and the validator. The parser tells a text in
/// pieces, which entities, CDATA sections and comments divide besides, and the validator copies
/// what it has of a text for each: that would take it a time quadratic in the length, so all pieces
/// between two tags are joined here. To the validator, CDATA sections are other than text in that
/// they must not stand between elements even if they are blank; so what has one among its pieces is
/// told as one.
class Forwarder {
public:
    explicit Forwarder(xmlSchemaValidCtxt& context)
        : plug_(xmlSchemaSAXPlug(&context, &handler_, &target_)) {
        if (plug_ == nullptr) {
            throw std::bad_alloc();
        }
    }
    Forwarder(const Forwarder&) = delete;
    Forwarder& operator=(const Forwarder&) = delete;
    ~Forwarder() { xmlSchemaSAXUnplug(plug_); }

    static Forwarder& of(void* parser) {
        return *static_cast<Forwarder*>(static_cast<xmlParserCtxt*>(parser)->_private);
    }

    void add(bool isCData, const xmlChar* text, int length) {
        isPending_ = true;
        hasCData_ = hasCData_ || isCData;
        text_.append(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length));
    }
    /// The validator, for what is no text.
    const xmlSAXHandler& handler() {
        flush();
        return *handler_;
    }
    void* target() const { return target_; }
    void noteReference() { hasReferences_ = true; }
    bool hasReferences() const { return hasReferences_; }

private:
    void flush() {
        if (isPending_) {
            const auto tell = hasCData_ ? handler_->cdataBlock : handler_->characters;
            tell(target_, reinterpret_cast<const xmlChar*>(text_.data()),
                 static_cast<int>(text_.size()));
            isPending_ = false;
            hasCData_ = false;
            text_.clear();
        }
    }

    xmlSAXHandler* handler_ = nullptr; // the plug's
    void* target_ = nullptr;
    xmlSchemaSAXPlugStruct* plug_;
    std::string text_;
    bool isPending_ = false;
    bool hasCData_ = false; // in the pending text
    bool hasReferences_ = false;
};

void onStart(void* parser, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
             int namespaceCount, const xmlChar** namespaces, int attributeCount, int defaultedCount,
             const xmlChar** attributes) {
    Forwarder& forwarder = Forwarder::of(parser);
    forwarder.handler().startElementNs(forwarder.target(), name, prefix, uri, namespaceCount,
                                       namespaces, attributeCount, defaultedCount, attributes);
}

void onEnd(void* parser, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri) {
    Forwarder& forwarder = Forwarder::of(parser);
    forwarder.handler().endElementNs(forwarder.target(), name, prefix, uri);
}

void onText(void* parser, const xmlChar* text, int length) {
    Forwarder::of(parser).add(false, text, length);
}

void onCData(void* parser, const xmlChar* text, int length) {
    Forwarder::of(parser).add(true, text, length);
}

void onReference(void* parser, const xmlChar* /*name*/) {
    Forwarder::of(parser).noteReference();
}

struct ContextDeleter {
    void operator()(xmlParserCtxt* context) const noexcept {
        xmlFreeDoc(context->myDoc); // declarations alone
        xmlFreeParserCtxt(context);
    }
};

} // namespace

int validateText(xmlSchemaValidCtxt& context, std::string_view text, xmlParserCtxt** reader) {
    const std::unique_ptr<xmlParserCtxt, ContextDeleter> parser(
        xmlCreatePushParserCtxt(nullptr, nullptr, nullptr, 0, nullptr));
    if (!parser) {
        return -1;
    }
    if (reader != nullptr) {
        *reader = parser.get();
    }
    Forwarder forwarder(context);
    parser->_private = &forwarder;
    xmlCtxtUseOptions(parser.get(), rereadOptions);
    ignoreContent(*parser->sax);
    parser->sax->startElementNs = onStart;
    parser->sax->endElementNs = onEnd;
    parser->sax->characters = onText;
    parser->sax->ignorableWhitespace = onText;
    parser->sax->cdataBlock = onCData;
    parser->sax->reference = onReference;
    xmlResetLastError();
    while (!text.empty()) {
        const std::string_view piece = takePiece(text, *parser);
        xmlParseChunk(parser.get(), piece.data(), static_cast<int>(piece.size()), 0);
    }
    xmlParseChunk(parser.get(), nullptr, 0, 1);
    if (hasFailed(*parser) || forwarder.hasReferences()) {
        return -1;
    }
    if (xmlSchemaIsValid(&context) == 1) {
        return 0;
    }
    const xmlError* const error = xmlGetLastError();
    return error != nullptr && error->code == XML_SCHEMAV_INTERNAL ? -1 : 1;
}

} // namespace Orvil::LibXml
