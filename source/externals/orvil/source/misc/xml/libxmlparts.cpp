// SPDX-License-Identifier: MIT
// A document that is read while it is walked, and dropped behind the walk.
#include "misc/xml/libxmlparts.h"

#include "misc/xml/libxmlsupport.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <new>

namespace Orvil {

void LibXmlParts::ContextDeleter::operator()(xmlParserCtxt* context) const noexcept {
    xmlDoc* const document = context->myDoc;
    xmlFreeParserCtxt(context);
    xmlFreeDoc(document);
}

LibXmlParts::LibXmlParts(std::string_view text, int level)
    : text_(text), rest_(text), level_(level),
      context_(xmlCreatePushParserCtxt(nullptr, nullptr, nullptr, 0, nullptr)) {
    if (!context_) {
        throw std::bad_alloc();
    }
    xmlCtxtUseOptions(context_.get(), LibXml::rereadOptions | XML_PARSE_COMPACT);
    while (root() == nullptr && readOn()) {
    }
}

LibXmlParts::~LibXmlParts() = default;

xmlNode* LibXmlParts::root() const {
    return context_->myDoc == nullptr ? nullptr : xmlDocGetRootElement(context_->myDoc);
}

void LibXmlParts::readChild(const xmlNode* node) {
    while (node != nullptr && node->children == nullptr && isOpen(node) && readOn()) {
    }
}

void LibXmlParts::readNext(const xmlNode* node) {
    while (node != nullptr && node->next == nullptr && isOpen(node->parent) && readOn()) {
    }
}

void LibXmlParts::readWhole(const xmlNode* node) {
    if (node != nullptr && node->type == XML_TEXT_NODE) {
        readNext(node); // a text goes on until something else comes
    }
    while (node != nullptr && isOpen(node) && readOn()) {
    }
}

void LibXmlParts::drop(xmlNode* part) {
    nodesBelow_.clear();
    xmlUnlinkNode(part);
    xmlFreeNode(part);
}

bool LibXmlParts::readOn() {
    if (isAtEnd_) {
        return false;
    }
    const LibXml::Silence silence;
    isAtEnd_ = rest_.empty();
    const std::string_view piece = LibXml::takePiece(rest_, *context_);
    xmlParseChunk(context_.get(), piece.data(), static_cast<int>(piece.size()), isAtEnd_ ? 1 : 0);
    if (LibXml::hasFailed(*context_)) {
        isAtEnd_ = true;
        throw LibXml::notParsed(xmlCtxtGetLastError(context_.get()), __LINE__);
    }
    return true;
}

/// Whether more can come below the node. libxml2 keeps the open elements on a stack.
bool LibXmlParts::isOpen(const xmlNode* node) const {
    if (isAtEnd_) {
        return false;
    }
    for (int i = 0; i < context_->nodeNr; ++i) {
        if (context_->nodeTab[i] == node) {
            return true;
        }
    }
    return node->type == XML_DOCUMENT_NODE;
}

/// 0 for the root and what stands beside it.
int LibXmlParts::depthOf(const xmlNode* node) {
    int depth = 0;
    for (; node->parent != nullptr && node->parent->type == XML_ELEMENT_NODE; node = node->parent) {
        ++depth;
    }
    return depth;
}

} // namespace Orvil
