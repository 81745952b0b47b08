// SPDX-License-Identifier: MIT
// Any bytes as a reply document, with the schema in place and without; what is accepted is merged
// into a request that fits, and the request is written.
#include "misc/exception.h"
#include "protocolhandler.h"
#include "protocolschema.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

/// Lets everything through to the codec's own checks.
const std::string lenientSchema = "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                  "<xs:element name='cmd'/></xs:schema>";

void useReply(const Protocol::ReplyContainer& reply) {
    if (reply.fontReply == nullptr) {
        return;
    }
    Protocol::FontRequest request(true, reply.fontReply->fonts, "ART5", "FILC");
    if (request.mergeFontsInReply(*reply.fontReply).size() != request.fonts.size()) {
        std::abort();
    }
    if (Protocol::Handler::createFontRequest(request).empty()) {
        std::abort();
    }
}

void parse(Protocol::Handler& handler, const std::string& xml) {
    try {
        useReply(handler.parseReply(xml));
    } catch (const Orvil::Exception&) {
        // Not XML, or against the rules; nothing else may happen.
    } catch (const std::runtime_error&) {
        // Against the schema.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Protocol::Handler strict(Protocol::schemaText);
    static Protocol::Handler lenient(lenientSchema);
    std::cerr.rdbuf(nullptr); // what the schema has against the input and the merges' warnings
    const std::string xml(reinterpret_cast<const char*>(data), size);
    parse(strict, xml);
    parse(lenient, xml);
    return 0;
}
