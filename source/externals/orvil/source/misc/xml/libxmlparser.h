// SPDX-License-Identifier: MIT
// Documents and nodes over libxml2.
#pragma once

#include "misc/xml/ixmlparser.h"
#include "misc/xml/largepages.h"
#include "misc/xml/libxmlhandles.h"

#include <memory>
#include <memory_resource>
#include <string>

namespace Orvil {

class LibXmlNode;

/// See IXmlParser. All failures name the file
/// "source/externals/orvil/source/misc/xml/libxmlparser".
class LibXmlParser : public IXmlParser {
public:
    LibXmlParser();
    LibXmlParser(const LibXmlParser&) = delete;
    LibXmlParser& operator=(const LibXmlParser&) = delete;
    ~LibXmlParser() override;

    void parse(const std::string& fileName) override;
    void parseString(const std::string& text) override;
    IXmlNode* getRootNode() const override;
    void write(const std::string& fileName) const override;
    void writeString(std::string& text) const override;
    IXmlNode* createRootNode(const std::string& name, const std::string& namespaceUri) override;
    void cleanup() override;

private:
    friend class LibXmlNode;

    void createRoot(xmlNode* root);

    LibXml::Document document_;            // the parsed document
    LibXml::Document createdDocument_;     // the document of createRootNode
    std::unique_ptr<LibXmlNode> rootNode_; // holds a reference to this parser
    // The memory of all other nodes but addChild's: taken from the heap one by one, they would cost
    // a walk more than all else that it does.
    LargePages pages_;
    std::pmr::monotonic_buffer_resource nodes_{&pages_};
};

/// A node of a LibXmlParser's document; its libxml2 node belongs to the document. Nodes that the
/// public constructors make keep the parser alive. Those of getFirstChild and getNextNode live in
/// the parser's pool: they end with the document, without destructors, and count no reference.
class LibXmlNode : public IXmlNode, public SmartPointable {
public:
    /// Adds an empty element to `parent`'s element. `parser` is not null, here and below.
    LibXmlNode(const std::string& name, LibXmlNode* parent,
               const SmartPointer<LibXmlParser>& parser);
    LibXmlNode(xmlNode* node, LibXmlNode* parent, const SmartPointer<LibXmlParser>& parser);
    LibXmlNode(const LibXmlNode&) = delete;
    LibXmlNode& operator=(const LibXmlNode&) = delete;
    ~LibXmlNode() noexcept override;

    bool hasParent() const override;
    bool hasChildren() const override;
    bool hasNextNode() const override;
    bool isText() const override;
    bool isComment() const override;
    bool isElement() const override;
    IXmlNode* getParent() const override;
    IXmlNode* getFirstChild() const override;
    IXmlNode* getNextNode() const override;
    std::string getName() const override;
    std::string getAttribute(const std::string& name,
                             const std::string& defaultValue) const override;
    std::string getContent() const override;
    void setAttribute(const std::string& name, const std::string& value) override;
    IXmlNode* addChild(const std::string& name) override;
    void setContent(const std::string& text) override;
    void setContentCDATA(const std::string& text) override;
    using IXmlNode::getFirstChild;

    virtual void setParent(LibXmlNode* parent);

    /// libxml2's own node, for what this interface does not offer. Belongs to the document.
    [[nodiscard]] xmlNode* getNode() const { return node_; }

private:
    LibXmlNode(xmlNode* node, LibXmlNode* parent, LibXmlParser& parser) noexcept
        : parser_(&parser), parent_(parent), node_(node) {}
    LibXmlNode* makeInPool(xmlNode* node, LibXmlNode* parent) const;
    xmlNode* findChild() const;
    xmlNode* findNext() const;

    LibXmlParser* parser_;                     // counted, but not by nodes of the pool
    LibXmlNode* parent_;                       // not owned
    mutable LibXmlNode* firstChild_ = nullptr; // in the pool, made when first asked for
    mutable LibXmlNode* next_ = nullptr;       // likewise
    xmlNode* node_;                            // null if the element could not be made
};

} // namespace Orvil
