// SPDX-License-Identifier: MIT
// What the sources over libxml2 share: their failures, and silence on standard error.
#pragma once

#include "misc/exception.h"
#include "misc/xml/ixmlparser.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <cstdint>
#include <string>

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

/// The failure of a document larger than outside input may be; `what` comes before the limit.
inline Exception tooLarge(const std::string& what, std::uint32_t line) {
    return failure("LibXml: Document not parsed successfully: " + what + " exceeds the limit of " +
                       std::to_string(IXmlParser::maximumDocumentSize) + " bytes",
                   line);
}

/// No other option: in particular entities are not substituted, no DTD is loaded, and libxml2's own
/// limits stay on.
constexpr int parseOptions = XML_PARSE_NONET;

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
