// SPDX-License-Identifier: MIT
// Documents and nodes over libxml2.
#pragma once

#include "misc/xml/ixmlparser.h"

#include <memory>
#include <string>

struct _xmlDoc;  // NOLINT: the names are libxml2's
struct _xmlNode; // NOLINT

namespace Orvil {

class LibXmlNode;

/// Frees a libxml2 document.
struct LibXmlDocDeleter {
    void operator()(_xmlDoc* document) const noexcept;
};
using LibXmlDoc = std::unique_ptr<_xmlDoc, LibXmlDocDeleter>;

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
    void createRoot();

    LibXmlDoc document_;                   // the parsed document
    LibXmlDoc createdDocument_;            // the document of createRootNode
    std::unique_ptr<LibXmlNode> rootNode_; // and with it every node but addChild's
};

/// A node of a LibXmlParser's document. It keeps the parser alive; its libxml2 node belongs to the
/// document.
class LibXmlNode : public IXmlNode, public SmartPointable {
public:
    /// Adds an empty element to `parent`'s element.
    LibXmlNode(const std::string& name, LibXmlNode* parent,
               const SmartPointer<LibXmlParser>& parser);
    LibXmlNode(_xmlNode* node, LibXmlNode* parent, const SmartPointer<LibXmlParser>& parser);
    LibXmlNode(const LibXmlNode&) = delete;
    LibXmlNode& operator=(const LibXmlNode&) = delete;
    ~LibXmlNode() noexcept override;

    bool hasParent() const override;
    bool hasChildren() const override;
    bool hasNextNode() const override;
    bool isText() const override;
    bool isComment() const override;
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
    _xmlNode* getNode() const { return node_; }

private:
    SmartPointer<LibXmlParser> parser_;
    LibXmlNode* parent_;                       // not owned
    mutable LibXmlNode* firstChild_ = nullptr; // owned, made when first asked for
    mutable LibXmlNode* next_ = nullptr;       // owned, likewise
    _xmlNode* node_;                           // null if the element could not be made
};

} // namespace Orvil
