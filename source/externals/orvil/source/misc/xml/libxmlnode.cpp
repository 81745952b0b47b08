// SPDX-License-Identifier: MIT
// Nodes over libxml2's tree.
#include "misc/xml/libxmlhandles.h"
#include "misc/xml/libxmlparser.h"

#include <libxml/entities.h>
#include <libxml/tree.h>

#include <new>

namespace Orvil {

namespace {

std::string toText(const xmlChar* text) {
    return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text));
}

const xmlChar* toXml(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

bool isCharacterData(const xmlNode& node) {
    return node.type == XML_TEXT_NODE || node.type == XML_CDATA_SECTION_NODE;
}

} // namespace

LibXmlNode::LibXmlNode(const std::string& name, LibXmlNode* parent,
                       const SmartPointer<LibXmlParser>& parser)
    : LibXmlNode(xmlNewChild(parent->node_, nullptr, toXml(name), BAD_CAST ""), parent, parser) {}

LibXmlNode::LibXmlNode(xmlNode* node, LibXmlNode* parent, const SmartPointer<LibXmlParser>& parser)
    : LibXmlNode(node, parent, *parser) {
    parser_->incRef();
}

LibXmlNode::~LibXmlNode() noexcept {
    parser_->decRef();
}

// Nothing has to be undone for the nodes of the pool: they hold neither memory nor references.
LibXmlNode* LibXmlNode::makeInPool(xmlNode* node, LibXmlNode* parent) const {
    void* const room = parser_->nodes_.allocate(sizeof(LibXmlNode), alignof(LibXmlNode));
    return new (room) LibXmlNode(node, parent, *parser_);
}

/// The children as this layer shows them. libxml2 links an entity reference to the declaration in
/// the DTD and that to its neighbours: a walk must not get there.
xmlNode* LibXmlNode::findChild() const {
    return node_ == nullptr || node_->type == XML_ENTITY_REF_NODE ? nullptr : node_->children;
}

xmlNode* LibXmlNode::findNext() const {
    return node_ == nullptr ? nullptr : node_->next;
}

bool LibXmlNode::hasParent() const {
    return parent_ != nullptr;
}

bool LibXmlNode::hasChildren() const {
    return findChild() != nullptr;
}

bool LibXmlNode::hasNextNode() const {
    return findNext() != nullptr;
}

bool LibXmlNode::isText() const {
    return node_ != nullptr && isCharacterData(*node_);
}

bool LibXmlNode::isComment() const {
    return node_ != nullptr && node_->type == XML_COMMENT_NODE;
}

bool LibXmlNode::isElement() const {
    return node_ != nullptr && node_->type == XML_ELEMENT_NODE;
}

IXmlNode* LibXmlNode::getParent() const {
    return parent_;
}

IXmlNode* LibXmlNode::getFirstChild() const {
    if (firstChild_ == nullptr) {
        if (xmlNode* const child = findChild()) {
            firstChild_ = makeInPool(child, const_cast<LibXmlNode*>(this));
        }
    }
    return firstChild_;
}

IXmlNode* LibXmlNode::getNextNode() const {
    if (next_ == nullptr) {
        if (xmlNode* const next = findNext()) {
            next_ = makeInPool(next, parent_);
        }
    }
    return next_;
}

std::string LibXmlNode::getName() const {
    return node_ == nullptr ? "" : toText(node_->name);
}

std::string LibXmlNode::getAttribute(const std::string& name,
                                     const std::string& defaultValue) const {
    const LibXml::Text value(xmlGetProp(node_, toXml(name)));
    return value ? toText(value.get()) : defaultValue;
}

std::string LibXmlNode::getContent() const {
    if (node_ == nullptr) {
        return {};
    }
    // The two usual shapes need no detour over a copy of libxml2's.
    if (isCharacterData(*node_)) {
        return toText(node_->content);
    }
    const xmlNode* child = node_->type == XML_ELEMENT_NODE ? node_->children : nullptr;
    if (child != nullptr && child->next == nullptr && isCharacterData(*child)) {
        return toText(child->content);
    }
    return toText(LibXml::Text(xmlNodeGetContent(node_)).get());
}

void LibXmlNode::setAttribute(const std::string& name, const std::string& value) {
    xmlNewProp(node_, toXml(name), toXml(value));
}

IXmlNode* LibXmlNode::addChild(const std::string& name) {
    return new LibXmlNode(name, this, SmartPointer<LibXmlParser>(parser_));
}

void LibXmlNode::setContent(const std::string& text) {
    xmlNodeAddContent(node_, toXml(text));
}

void LibXmlNode::setContentCDATA(const std::string& text) {
    const LibXml::Text encoded(xmlEncodeSpecialChars(nullptr, toXml(text)));
    if (encoded) {
        firstChild_ = nullptr; // its node is freed, and so are those of the nodes behind it
        xmlNodeSetContent(node_, encoded.get());
    }
}

void LibXmlNode::setParent(LibXmlNode* parent) {
    parent_ = parent;
}

} // namespace Orvil
