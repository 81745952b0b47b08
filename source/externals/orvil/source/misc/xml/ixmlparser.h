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
/// Outside input is bounded: nothing is fetched over a network, no external DTD or entity is read,
/// and the library's limits hold (256 levels of elements; entity references stay nodes of their own
/// without children). Besides, a document has at most `maximumDocumentSize` bytes, unpacked if its
/// file is compressed, 256 attributes per element, 256 declarations of namespaces that hold in one
/// place, and 100,000 different names, of some 1 MB in all. What its entities and its defaults of
/// attributes add, wherever they are used, is at most tenfold its size, or 1 MB for a small one.
/// What exceeds the bounds fails to parse, with the reason in the message. So do a document with
/// too many attributes in what only looks like a start tag, in a comment or a CDATA section, and
/// one of more than 64 KiB in an encoding that is not UTF-8, UTF-16 or known to keep the characters
/// of ASCII. In a document of more than 1 MB, the first fault is told, otherwise libxml2's last
/// one.
///
/// Throws: Exception from parse and parseString. Threads: one at a time per parser.
class IXmlParser : public SmartPointable {
public:
    /// In bytes; far above the largest reply, which takes some 450 bytes per font.
    static constexpr std::size_t maximumDocumentSize = std::size_t{256} << 20U;

    /// A new parser for "LibXmlParser", null for every other name.
    static SmartPointer<IXmlParser> getInstance(const std::string& name);

    /// Lets the present document go and reads another one. Nodes of the old one become invalid.
    virtual void parse(const std::string& fileName) = 0;
    virtual void parseString(const std::string& text) = 0;
    /// Null without a document. Owned by the parser.
    virtual IXmlNode* getRootNode() const = 0;
    /// Writes the document, indented, as UTF-8. The old file is replaced at once and its mode kept.
    /// In a folder that takes no new files, or if the owner of a new one cannot be that of the old,
    /// it is overwritten in place. What a symbolic link leads to is written. A failure is not
    /// reported and leaves the old file, except where it is overwritten: if the file system cannot
    /// reserve the room beforehand, or fails later all the same, it may be left half-written.
    virtual void write(const std::string& fileName) const = 0;
    /// Leaves `text` as it is: serialising to memory is the caller's own business.
    virtual void writeString(std::string& text) const = 0;
    /// Lets the present document go and makes one with an empty root element, in the default
    /// namespace `namespaceUri` unless that is empty. The node is owned by the parser.
    virtual IXmlNode* createRootNode(const std::string& name, const std::string& namespaceUri) = 0;
    /// Lets the document and all its nodes go.
    virtual void cleanup() = 0;
    /// For large documents that are walked once, from front to back: with a level above 0,
    /// parseString keeps its document in parts, and the memory that it takes does not grow with it.
    /// The parts are the nodes `level` levels below the root. Only one of a parent's is there at a
    /// time: getNextNode on it drops it with all below it, and gives the same object, which stands
    /// for the next part then (so getChildren of their parent serves nothing). An element above the
    /// parts that is asked for its content is read to its end and loses none.
    /// The whole text is parsed at once, as ever, and read again as the walk gets on: it must stay
    /// as it is until the document is let go. The document is neither changed nor written, and is
    /// validated from its root. Reading on may throw Exception. 0, as at first, keeps documents
    /// whole; what is there already stays as it is. Always whole are documents that declare
    /// entities or attributes, use prefixes without declaring them, have bytes of zero (as in
    /// UTF-16), or carriage returns as well as CDATA sections.
    virtual void setPartLevel(int level) = 0;
};

/// Owns a parser together with its document and frees both when it goes out of scope. References
/// that others took on the parser stay good, but find it empty then.
class XmlDocumentHolder {
public:
    explicit XmlDocumentHolder(const std::string& parserName = "LibXmlParser")
        : parser_(IXmlParser::getInstance(parserName)) {}
    /// Takes over a parser from getInstance; null is allowed.
    explicit XmlDocumentHolder(const SmartPointer<IXmlParser>& parser) : parser_(parser) {}
    XmlDocumentHolder(const XmlDocumentHolder&) = delete;
    XmlDocumentHolder& operator=(const XmlDocumentHolder&) = delete;
    XmlDocumentHolder(XmlDocumentHolder&& other) noexcept = default;
    XmlDocumentHolder& operator=(XmlDocumentHolder&& other) noexcept;
    ~XmlDocumentHolder();

    IXmlParser* get() const noexcept { return parser_.get(); }
    IXmlParser* operator->() const noexcept { return parser_.get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(parser_); }

private:
    SmartPointer<IXmlParser> parser_;
};

} // namespace Orvil
