// SPDX-License-Identifier: MIT
// One node of an XML document, whatever library keeps the document.
#pragma once

#include <string>
#include <vector>

namespace Orvil {

/// Nodes are elements, texts (white space between elements too), comments and whatever else stands
/// in a document. Texts are UTF-8. The nodes that the getters return belong to the document's
/// parser and live until it lets its document go (IXmlParser::cleanup); each is made once, so the
/// same place always gives the same object. addChild alone hands its result to the caller.
/// [one-thread] for each document. Throws std::bad_alloc.
class IXmlNode {
public:
    IXmlNode() = default;
    IXmlNode(const IXmlNode&) = delete;
    IXmlNode& operator=(const IXmlNode&) = delete;
    virtual ~IXmlNode() = default;

    [[nodiscard]] virtual bool hasParent() const = 0;
    [[nodiscard]] virtual bool hasChildren() const = 0;
    [[nodiscard]] virtual bool hasNextNode() const = 0;
    [[nodiscard]] virtual bool isText() const = 0;
    [[nodiscard]] virtual bool isComment() const = 0;

    // Null if there is none, all of these.
    [[nodiscard]] virtual IXmlNode* getParent() const = 0;
    [[nodiscard]] virtual IXmlNode* getFirstChild() const = 0;
    /// The first child that is neither text nor comment.
    [[nodiscard]] virtual IXmlNode* getFirstTagChild() const;
    [[nodiscard]] virtual IXmlNode* getNextNode() const = 0;
    /// The next sibling that is neither text nor comment.
    [[nodiscard]] virtual IXmlNode* getNextTagNode() const;

    [[nodiscard]] virtual std::string getName() const = 0;
    /// `defaultValue` only if the attribute is missing, not if it is empty.
    [[nodiscard]] virtual std::string getAttribute(const std::string& name,
                                                   const std::string& defaultValue) const = 0;
    /// All text below the node, joined.
    [[nodiscard]] virtual std::string getContent() const = 0;

    /// Always adds and never replaces: set each name once per element.
    virtual void setAttribute(const std::string& name, const std::string& value) = 0;
    /// A new last child element. The caller owns the returned object and deletes it (the element
    /// itself stays in the document); it is not the one that getFirstChild or getNextNode give.
    [[nodiscard]] virtual IXmlNode* addChild(const std::string& name) = 0;
    /// Appends to the content.
    virtual void setContent(const std::string& text) = 0;
    /// Replaces the content by the literal text. Makes no CDATA section, despite the name. All
    /// nodes below become invalid, also those that addChild has made: they can only be deleted
    /// then.
    virtual void setContentCDATA(const std::string& text) = 0;

    /// The first child of any kind with exactly this name; null if there is none.
    [[nodiscard]] virtual IXmlNode* getFirstChild(const std::string& name) const;
    /// In document order, of every kind.
    [[nodiscard]] virtual std::vector<IXmlNode*> getChildren() const;
    [[nodiscard]] virtual std::vector<IXmlNode*> getChildren(const std::string& name) const;

    /// False, as for text and comments, for processing instructions and references to entities.
    [[nodiscard]] virtual bool isElement() const;
};

} // namespace Orvil
