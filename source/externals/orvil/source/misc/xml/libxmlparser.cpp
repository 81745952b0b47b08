// SPDX-License-Identifier: MIT
// Reading, making and writing of documents with libxml2.
#include "misc/xml/libxmlparser.h"

#include "misc/xml/libxmlfile.h"
#include "misc/xml/libxmllimits.h"
#include "misc/xml/libxmlsupport.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>

#include <filesystem>
#include <memory>
#include <new>
#include <system_error>

namespace Orvil {

namespace {

void checkSize(std::uintmax_t size, std::uint32_t line) {
    if (size > IXmlParser::maximumDocumentSize) {
        throw LibXml::tooLarge("document of " + std::to_string(size) + " bytes", line);
    }
}

/// The failure of a document that is refused for another reason than libxml2's.
Exception refused(const LibXml::Excess& excess, std::uint32_t line) {
    return LibXml::failure("LibXml: Document not parsed successfully: line " +
                               std::to_string(excess.line) + ", column " +
                               std::to_string(excess.column) + ": " + excess.message,
                           line);
}

void checkAttributes(const std::string& text) {
    if (const auto found = LibXml::findManyAttributes(text)) {
        throw refused(*found, __LINE__);
    }
}

/// Throws, unless it is empty, the reason why the parser was stopped.
void checkExcess(xmlParserCtxt& parser, const std::string& excess) {
    if (!excess.empty()) {
        throw refused({xmlSAX2GetLineNumber(&parser), xmlSAX2GetColumnNumber(&parser), excess},
                      __LINE__);
    }
}

struct ContextDeleter {
    void operator()(xmlParserCtxt* context) const noexcept { xmlFreeParserCtxt(context); }
};
using ParserContext = std::unique_ptr<xmlParserCtxt, ContextDeleter>;

struct XmlTextDeleter {
    void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};

/// Throws when `read` gives no document.
template <typename Read>
LibXmlDoc readDocument(Read read) {
    const LibXml::Silence silence;
    xmlResetLastError();
    LibXmlDoc document(read());
    const xmlError* const error = xmlGetLastError();
    // libxml2 takes a document for good that it has cut at a text node of more than 10 MB.
    if (!document || (error != nullptr && error->code == XML_ERR_NO_MEMORY)) {
        throw LibXml::notParsed(error, __LINE__);
    }
    return document;
}

LibXmlDoc readWhole(const std::string& text) {
    LibXml::DocumentLimit limit(text.size());
    return readDocument([&] {
        const ParserContext context(xmlNewParserCtxt());
        if (!context) {
            throw std::bad_alloc();
        }
        limit.watch(*context);
        LibXmlDoc document(xmlCtxtReadMemory(context.get(), text.data(),
                                             static_cast<int>(text.size()), nullptr, nullptr,
                                             LibXml::parseOptions));
        checkExcess(*context, limit.excess());
        return document.release();
    });
}

/// What a document in parts is looked through for before.
struct FirstPass : LibXml::DocumentLimit {
    using DocumentLimit::DocumentLimit;
    bool mustBeWhole = false;
};

/// Ends the first pass over a document that has to be whole.
void stopFirstPass(void* parser) {
    auto* const context = static_cast<xmlParserCtxt*>(parser);
    auto* const limit = static_cast<LibXml::DocumentLimit*>(context->_private);
    static_cast<FirstPass*>(limit)->mustBeWhole = true;
    xmlStopParser(context);
}

void onEntity(void* parser, const xmlChar* /*name*/, int /*type*/, const xmlChar* /*publicId*/,
              const xmlChar* /*systemId*/, xmlChar* /*content*/) {
    stopFirstPass(parser);
}

void onAttribute(void* parser, const xmlChar* element, const xmlChar* name, int type, int kind,
                 const xmlChar* value, xmlEnumeration* values) {
    xmlSAX2AttributeDecl(parser, element, name, type, kind, value, values); // takes the values
    stopFirstPass(parser);
}

void onCData(void* parser, const xmlChar* /*text*/, int /*length*/) {
    stopFirstPass(parser);
}

/// Whether libxml2 reads the document in parts as it reads it at once. Without nodes it parses an
/// entity anew for each reference, and its validator drops prefixes that are not declared; by
/// pieces it leaves the carriage returns in CDATA sections, and does not take a zero behind the
/// root for the end. Throws if the text is not well-formed.
bool suitsParts(const std::string& text) {
    if (text.find('\0') != std::string::npos) {
        return false;
    }
    FirstPass pass(text.size());
    readDocument([&]() -> xmlDoc* {
        const ParserContext context(
            xmlCreateMemoryParserCtxt(text.data(), static_cast<int>(text.size())));
        if (!context) {
            return nullptr;
        }
        xmlCtxtUseOptions(context.get(), LibXml::parseOptions);
        LibXml::ignoreContent(*context->sax);
        pass.watch(*context);
        context->sax->entityDecl = onEntity;
        context->sax->attributeDecl = onAttribute;
        if (text.find('\r') != std::string::npos) {
            context->sax->cdataBlock = onCData;
        }
        xmlParseDocument(context.get());
        pass.mustBeWhole = pass.mustBeWhole || context->nsWellFormed == 0;
        LibXmlDoc document(context->myDoc);
        checkExcess(*context, pass.excess());
        return context->wellFormed == 0 && !pass.mustBeWhole ? nullptr : document.release();
    });
    return !pass.mustBeWhole;
}

} // namespace

void LibXmlDocDeleter::operator()(xmlDoc* document) const noexcept {
    xmlFreeDoc(document);
}

LibXmlParser::LibXmlParser() = default;

LibXmlParser::~LibXmlParser() {
    LibXmlParser::cleanup();
}

void LibXmlParser::parse(const std::string& fileName) {
    cleanup();
    std::error_code ignored; // a file that cannot be measured is left to libxml2 to report
    const auto size = std::filesystem::file_size(fileName, ignored);
    checkSize(ignored ? 0 : size, __LINE__);
    const std::string text = LibXml::readFile(fileName);
    checkAttributes(text);
    document_ = readWhole(text);
    createRoot(xmlDocGetRootElement(document_.get()));
}

void LibXmlParser::parseString(const std::string& text) {
    cleanup();
    checkSize(text.size(), __LINE__);
    if (text.empty()) {
        throw LibXml::notParsed(nullptr, __LINE__);
    }
    checkAttributes(text);
    if (partLevel_ > 0 && suitsParts(text)) {
        parts_ = std::make_unique<LibXmlParts>(text, partLevel_);
        createRoot(parts_->root());
        return;
    }
    document_ = readWhole(text);
    createRoot(xmlDocGetRootElement(document_.get()));
}

void LibXmlParser::createRoot(xmlNode* root) {
    if (root == nullptr) {
        cleanup();
        throw LibXml::failure("LibXml: Document empty.", __LINE__);
    }
    rootNode_ = std::make_unique<LibXmlNode>(root, nullptr, this);
}

void LibXmlParser::setPartLevel(int level) {
    partLevel_ = level;
}

IXmlNode* LibXmlParser::getRootNode() const {
    return rootNode_.get();
}

void LibXmlParser::write(const std::string& fileName) const {
    if (parts_ != nullptr || rootNode_ == nullptr || rootNode_->getNode() == nullptr ||
        rootNode_->getNode()->doc == nullptr) {
        return;
    }
    const LibXml::Silence silence;
    xmlChar* bytes = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(rootNode_->getNode()->doc, &bytes, &size, "UTF-8", 1);
    const std::unique_ptr<xmlChar, XmlTextDeleter> owned(bytes);
    if (bytes != nullptr) {
        LibXml::replaceFile(fileName,
                            {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size)});
    }
}

void LibXmlParser::writeString(std::string& /*text*/) const {}

IXmlNode* LibXmlParser::createRootNode(const std::string& name, const std::string& namespaceUri) {
    cleanup();
    createdDocument_.reset(xmlNewDoc(BAD_CAST "1.0"));
    xmlNode* root =
        xmlNewDocNode(createdDocument_.get(), nullptr, BAD_CAST name.c_str(), BAD_CAST "");
    if (!namespaceUri.empty()) {
        xmlSetNs(root, xmlNewNs(root, BAD_CAST namespaceUri.c_str(), nullptr));
    }
    xmlDocSetRootElement(createdDocument_.get(), root);
    rootNode_ = std::make_unique<LibXmlNode>(root, nullptr, this);
    return rootNode_.get();
}

void LibXmlParser::cleanup() {
    // The nodes drop their references on this parser. Theirs may be the only ones, when nobody has
    // taken the parser into a SmartPointer yet: it must not delete itself on the way.
    incRef();
    rootNode_.reset();
    decRefAndKeep();
    nodes_.clear();
    parts_.reset();
    document_.reset();
    createdDocument_.reset();
}

} // namespace Orvil
