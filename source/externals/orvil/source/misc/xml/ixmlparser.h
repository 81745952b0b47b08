// SPDX-License-Identifier: MIT
// An XML document: read from text or file, or made node by node; and its holder.
#pragma once

#include "misc/threads/smartpointer.h"
#include "misc/xml/ixmlnode.h"

#include <string>

namespace Orvil {

/// A document, always held through SmartPointer or XmlDocumentHolder. Texts are UTF-8.
///
/// Letting go: a parser and its nodes hold each other, so dropping the last SmartPointer does not
/// free a parser that holds a document. Call cleanup() first, or hold the parser in an
/// XmlDocumentHolder, which does. A parse that has thrown leaves nothing to clean up.
///
/// Outside input is bounded: a document has at most `maximumDocumentSize` bytes, unpacked if its
/// file is compressed, and 256 levels of elements; nothing is fetched over a network, and no
/// external DTD or entity is read. References to entities stay nodes of their own without children;
/// what entities and defaults of attributes add, wherever they are used, is at most tenfold the
/// document's size, or 1 MB for a small one. libxml2's own limits hold besides, such as 10 MB for a
/// text that references divide. What exceeds the bounds fails to parse, with the reason in the
/// message.
///
/// Not bounded are the numbers of names, namespaces and attributes, and the time: a document that
/// is made for it, 64 MiB of attributes of one element for instance, keeps libxml2 busy for long.
///
/// [one-thread]
class IXmlParser : public SmartPointable {
public:
    /// In bytes; far above the largest reply, which takes some 450 bytes per font.
    static constexpr std::size_t maximumDocumentSize = std::size_t{64} << 20U;

    /// A new parser for "LibXmlParser", null for every other name.
    [[nodiscard]] static SmartPointer<IXmlParser> getInstance(const std::string& name);

    /// Lets the present document go and reads another one. Nodes of the old one become invalid.
    /// Throws Exception when the document is not well-formed, exceeds a bound or cannot be read.
    virtual void parse(const std::string& fileName) = 0;
    virtual void parseString(const std::string& text) = 0;
    /// Null without a document. Owned by the parser.
    [[nodiscard]] virtual IXmlNode* getRootNode() const = 0;
    /// Writes the document, indented, as UTF-8: a new file takes the old one's place, so other hard
    /// links keep the old one. What a symbolic link leads to is written. A failure is
    /// not reported and leaves the old file.
    virtual void write(const std::string& fileName) const = 0;
    /// Leaves `text` as it is: serialising to memory is the caller's own business.
    virtual void writeString(std::string& text) const = 0;
    /// Lets the present document go and makes one with an empty root element, in the default
    /// namespace `namespaceUri` unless that is empty. The node is owned by the parser.
    virtual IXmlNode* createRootNode(const std::string& name, const std::string& namespaceUri) = 0;
    /// Lets the document and all its nodes go.
    virtual void cleanup() = 0;
};

/// Owns a parser together with its document and frees both when it goes out of scope. References
/// to the parser that others hold stay valid, but find it empty.
class XmlDocumentHolder {
public:
    explicit XmlDocumentHolder(const std::string& parserName = "LibXmlParser")
        : parser_(IXmlParser::getInstance(parserName)) {}
    XmlDocumentHolder(const XmlDocumentHolder&) = delete;
    XmlDocumentHolder& operator=(const XmlDocumentHolder&) = delete;
    ~XmlDocumentHolder() {
        if (parser_) {
            parser_->cleanup();
        }
    }

    [[nodiscard]] IXmlParser* get() const noexcept { return parser_.get(); }
    IXmlParser* operator->() const noexcept { return parser_.get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(parser_); }

private:
    SmartPointer<IXmlParser> parser_;
};

} // namespace Orvil
