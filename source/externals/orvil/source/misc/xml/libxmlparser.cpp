// SPDX-License-Identifier: MIT
// Reading, making and writing of documents with libxml2.
#include "misc/xml/libxmlparser.h"

#include "misc/xml/libxmlsupport.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Orvil {

namespace {

// xmlReadFile and xmlReadMemory heed the options from the start; their relatives for an existing
// context open the file before. No other option: in particular entities are not substituted, no DTD
// is loaded, and libxml2's own limits stay on.
constexpr int parseOptions = XML_PARSE_NONET;

const std::string notParsed = "LibXml: Document not parsed successfully: ";

void checkSize(std::uintmax_t size, std::uint32_t line) {
    if (size > IXmlParser::maximumDocumentSize) {
        throw LibXml::failure(notParsed + "document of " + std::to_string(size) +
                                  " bytes exceeds the limit of " +
                                  std::to_string(IXmlParser::maximumDocumentSize) + " bytes",
                              line);
    }
}

/// Throws when `read` gives no document.
template <typename Read>
LibXmlDoc readDocument(Read read) {
    const LibXml::Silence silence;
    xmlResetLastError();
    LibXmlDoc document(read());
    if (!document) {
        const xmlError* error = xmlGetLastError();
        const bool hasMessage = error != nullptr && error->message != nullptr;
        throw LibXml::failure(notParsed + (hasMessage ? error->message : "unknown error message"),
                              __LINE__);
    }
    return document;
}

/// Flushes a closed file to the disk.
bool syncFile(const std::string& fileName) {
    const int file = open(fileName.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    const bool synced = fsync(file) == 0;
    close(file);
    return synced;
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
    document_ = readDocument([&] { return xmlReadFile(fileName.c_str(), nullptr, parseOptions); });
    createRoot();
}

void LibXmlParser::parseString(const std::string& text) {
    cleanup();
    checkSize(text.size(), __LINE__);
    document_ = readDocument([&] {
        return xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                             parseOptions);
    });
    createRoot();
}

void LibXmlParser::createRoot() {
    xmlNode* root = xmlDocGetRootElement(document_.get());
    if (root == nullptr) {
        document_.reset();
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
    xmlDoc* document = rootNode_->getNode()->doc;
    struct stat status {};
    if (stat(fileName.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        xmlSaveFormatFileEnc(fileName.c_str(), document, "UTF-8", 1);
        return;
    }
    const std::string beside = fileName + ".part";
    const bool written = xmlSaveFormatFileEnc(beside.c_str(), document, "UTF-8", 1) >= 0 &&
                         syncFile(beside) && std::rename(beside.c_str(), fileName.c_str()) == 0;
    if (!written) {
        std::remove(beside.c_str());
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
    document_.reset();
    createdDocument_.reset();
}

} // namespace Orvil
