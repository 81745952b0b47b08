// SPDX-License-Identifier: MIT
// What the sources over libxml2 share: their failures, and silence on standard error.
#pragma once

#include "misc/exception.h"
#include "misc/xml/ixmlparser.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Orvil::LibXml {

/// The failure of all XML sources; none has a code snippet.
inline Exception failure(const std::string& message, std::uint32_t line) {
    return {message, "source/externals/orvil/source/misc/xml/libxmlparser", line, ""};
}

/// The failure of reading a document; `error` is libxml2's reason, or null.
inline Exception notParsed(const xmlError* error, std::uint32_t line) {
    const bool hasMessage = error != nullptr && error->message != nullptr;
    return failure(std::string("LibXml: Document not parsed successfully: ") +
                       (hasMessage ? error->message : "unknown error message"),
                   line);
}

/// The failure of a document that outside input may not be; `what` goes before the limit.
inline Exception tooLarge(const std::string& what, std::uint32_t line) {
    return failure("LibXml: Document not parsed successfully: " + what + " exceeds the limit of " +
                       std::to_string(IXmlParser::maximumDocumentSize) + " bytes",
                   line);
}

/// No other option: in particular entities are not substituted, no DTD is loaded, and libxml2's own
/// limits stay on.
constexpr int parseOptions = XML_PARSE_NONET;
/// For a text that has been parsed within the limits: the reader by pieces has narrower ones.
constexpr int rereadOptions = parseOptions | XML_PARSE_HUGE;

/// Whether a parser that is fed by pieces has given up.
inline bool hasFailed(const xmlParserCtxt& context) {
    return context.wellFormed == 0 || context.disableSAX != 0;
}

/// Lets a parser that builds trees take up the declarations of its document and nothing else.
inline void ignoreContent(xmlSAXHandler& handler) {
    handler.startElementNs = nullptr;
    handler.endElementNs = nullptr;
    handler.characters = nullptr;
    handler.ignorableWhitespace = nullptr;
    handler.cdataBlock = nullptr;
    handler.comment = nullptr;
    handler.processingInstruction = nullptr;
    handler.reference = nullptr;
}

/// Takes from the front of `rest` what the push parser `context` gets at once. It looks at a tag
/// that is not complete again with each piece, so a piece is as long as what it has not used yet.
inline std::string_view takePiece(std::string_view& rest, const xmlParserCtxt& context) {
    const xmlParserInput* const input = context.input;
    const std::size_t unused =
        input == nullptr ? 0 : static_cast<std::size_t>(input->end - input->cur);
    const std::string_view piece = rest.substr(0, std::max(unused, std::size_t{64} << 10U));
    rest.remove_prefix(piece.size());
    return piece;
}

/// While it lives, libxml2 prints nothing on this thread; its last error is kept all the same.
/// The handler that stood before (the host's, perhaps) is put back.
class Silence {
public:
    Silence() noexcept : handler_(xmlGenericError), context_(xmlGenericErrorContext) {
        xmlSetGenericErrorFunc(nullptr, discard);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    ~Silence() { xmlSetGenericErrorFunc(context_, handler_); }

private:
    static void discard(void* /*context*/, const char* /*format*/, ...) {}

    xmlGenericErrorFunc handler_;
    void* context_;
};

} // namespace Orvil::LibXml
