// SPDX-License-Identifier: MIT
// Reading, making and writing of documents with libxml2.
#include "misc/xml/libxmlparser.h"

#include "misc/xml/libxmlfile.h"
#include "misc/xml/libxmlgrowth.h"
#include "misc/xml/libxmlhandles.h"
#include "misc/xml/libxmlsupport.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>

#include <filesystem>
#include <memory>
#include <new>
#include <system_error>
#include <tuple>

namespace Orvil {

namespace {

void checkSize(std::uintmax_t size, std::uint32_t line) {
    if (size > IXmlParser::maximumDocumentSize) {
        throw LibXml::tooLarge("document of " + std::to_string(size) + " bytes", line);
    }
}

/// Throws, unless it is empty, the reason why the parser was stopped.
void checkExcess(xmlParserCtxt& parser, const std::string& excess) {
    if (!excess.empty()) {
        throw LibXml::failure("LibXml: Document not parsed successfully: line " +
                                  std::to_string(xmlSAX2GetLineNumber(&parser)) + ", column " +
                                  std::to_string(xmlSAX2GetColumnNumber(&parser)) + ": " + excess,
                              __LINE__);
    }
}

LibXml::Document readWhole(const std::string& text) {
    const LibXml::Silence silence;
    xmlResetLastError();
    LibXml::GrowthLimit limit(text.size());
    const LibXml::ParserContext context(xmlNewParserCtxt());
    if (!context) {
        throw std::bad_alloc();
    }
    limit.watch(*context);
    LibXml::Document document(xmlCtxtReadMemory(context.get(), text.data(),
                                                static_cast<int>(text.size()), nullptr, nullptr,
                                                LibXml::parseOptions));
    checkExcess(*context, limit.excess());
    const xmlError* const error = xmlGetLastError();
    // libxml2 takes a document for good that it has cut at a text node of more than 10 MB.
    if (!document || (error != nullptr && error->code == XML_ERR_NO_MEMORY)) {
        throw LibXml::notParsed(error, __LINE__);
    }
    return document;
}

} // namespace

LibXmlParser::LibXmlParser() = default;

LibXmlParser::~LibXmlParser() {
    LibXmlParser::cleanup();
}

void LibXmlParser::parse(const std::string& fileName) {
    cleanup();
    std::error_code ignored; // a file that cannot be measured is left to libxml2 to report
    const auto size = std::filesystem::file_size(fileName, ignored);
    checkSize(ignored ? 0 : size, __LINE__);
    document_ = readWhole(LibXml::readFile(fileName));
    createRoot(xmlDocGetRootElement(document_.get()));
}

void LibXmlParser::parseString(const std::string& text) {
    cleanup();
    checkSize(text.size(), __LINE__);
    if (text.empty()) {
        throw LibXml::notParsed(nullptr, __LINE__);
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

IXmlNode* LibXmlParser::getRootNode() const {
    return rootNode_.get();
}

void LibXmlParser::write(const std::string& fileName) const {
    if (rootNode_ == nullptr || rootNode_->getNode() == nullptr ||
        rootNode_->getNode()->doc == nullptr) {
        return;
    }
    const LibXml::Silence silence;
    xmlChar* bytes = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(rootNode_->getNode()->doc, &bytes, &size, "UTF-8", 1);
    const LibXml::Text owned(bytes);
    if (bytes != nullptr) {
        // That it has failed is not reported.
        std::ignore = LibXml::replaceFile(
            fileName, {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size)});
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
    nodes_.release();
    document_.reset();
    createdDocument_.reset();
}

} // namespace Orvil
