// SPDX-License-Identifier: MIT
// The protocol's messages as XML documents, and back. The event exchanges write their commands by
// hand and use only the helpers; the codec stands apart.
#pragma once

#include "misc/exception.h"
#include "misc/threads/smartpointer.h"
#include "misc/xml/ixmlnode.h"
#include "misc/xml/ixmlvalidator.h"
#include "protocol.h"

#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>

namespace Protocol {

/// Reads a number as a stream does: leading white space is skipped, and what follows the digits is
/// ignored. `ok` is false without digits, when the result is 0, and out of range, when it is the
/// limit.
template <typename T>
[[nodiscard]] T safeParse(const std::string& text, bool& ok) = delete;
template <>
[[nodiscard]] unsigned safeParse<unsigned>(const std::string& text, bool& ok);

/// [one-thread] for each document. Reads the small parts of a reply.
class HandlerHelpers {
public:
    HandlerHelpers() = delete;

    /// Reads a font element: the attribute syncID and the element children in any order; of
    /// several of one name the last counts, but the entries of all fontInfos are taken. Throws
    /// Orvil::Exception for an unknown child, a type or a number that cannot be read.
    [[nodiscard]] static Font parseFont(Orvil::IXmlNode* node);
    /// Reads an entry of the font infos: its first two element children, whatever they are called.
    /// Throws Orvil::Exception when there are fewer.
    [[nodiscard]] static Font::Info parseFontInfo(Orvil::IXmlNode* node);
    /// True for exactly "true" and "1".
    [[nodiscard]] static bool parseBoolean(const std::string& text);
};

/// The namespace of all documents. addChild puts children into their parent's namespace, so every
/// element of a document is in it, and the schema says so too.
constexpr const char* protocolNamespace = "http://glyphora.org/schema/GlyPluginCommunication_1.0";

/// Reads the four kinds of replies, and holds the schema that they are checked against.
class HandlerInternal {
public:
    /// `schema` is the text of an XML Schema. Throws Orvil::Exception when it does not compile.
    explicit HandlerInternal(const std::string& schema);

    [[nodiscard]] Orvil::IXmlValidator& validator() { return *validator_; }

    /// Each reads the element of its kind. Throws Orvil::Exception for a font that cannot be read
    /// or breaks the message's rule.
    [[nodiscard]] static boost::shared_ptr<FontReply> parseFontReply(Orvil::IXmlNode* node);
    [[nodiscard]] static boost::shared_ptr<ShowReply> parseShowReply(Orvil::IXmlNode* node);
    [[nodiscard]] static boost::shared_ptr<BuyReply> parseBuyReply(Orvil::IXmlNode* node);
    [[nodiscard]] static boost::shared_ptr<ActivationReply>
    parseActivationReply(Orvil::IXmlNode* node);

private:
    Orvil::SmartPointer<Orvil::IXmlValidator> validator_;
};

/// Thrown for a document that is not a reply.
class UnknownReplyKind : public Orvil::Exception {
public:
    explicit UnknownReplyKind(const std::string& kind);
    /// The name of the element; empty if there is none.
    [[nodiscard]] const std::string& kind() const noexcept { return kind_; }

private:
    std::string kind_;
};

/// The codec. Every call has a document of its own, and none outlives its call.
/// The builders are [any-thread]; parseReply is [one-thread], as it uses the handler's validator.
class Handler {
public:
    /// `schema` is the text of an XML Schema, not a file name. Throws Orvil::Exception when it does
    /// not compile.
    explicit Handler(const std::string& schema);
    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;
    ~Handler();

    /// The request as a document in UTF-8. Throws Orvil::SerializationException when a text is not
    /// UTF-8 or holds characters that no XML document can.
    [[nodiscard]] static std::string createFontRequest(const FontRequest& request);
    [[nodiscard]] static std::string createShowRequest(const ShowRequest& request);
    [[nodiscard]] static std::string createBuyRequest(const BuyRequest& request);
    [[nodiscard]] static std::string createActivationRequest(const ActivationRequest& request);

    /// Reads a reply document of any kind. The root's own name does not matter beyond the schema.
    /// Throws Orvil::Exception when the text is not XML, declares entities, holds something unknown
    /// or breaks a message's rule; std::runtime_error when the schema rejects it, after the reasons
    /// have been written to standard error. The handler stays usable.
    [[nodiscard]] ReplyContainer parseReply(const std::string& xml);

private:
    std::unique_ptr<HandlerInternal> internal_;
};

} // namespace Protocol
