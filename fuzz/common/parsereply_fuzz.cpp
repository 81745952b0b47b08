// SPDX-License-Identifier: MIT
// Any bytes as a reply document, with the schema in place and without; what is accepted is merged
// into a request that fits, and the request is written. The schema says of a reply that is read in
// parts what it says of a whole one.
#include "misc/exception.h"
#include "misc/xml/ixmlparser.h"
#include "misc/xml/ixmlvalidator.h"
#include "protocolhandler.h"
#include "protocolschema.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

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

/// What the schema has against the text, if it is parsed and can be told. In a tree it may have the
/// same against each piece of a text that sections, comments or instructions divide: that counts
/// once.
std::vector<std::string> errorsOf(Orvil::IXmlValidator& validator, const std::string& xml,
                                  int partLevel) {
    const Orvil::XmlDocumentHolder document;
    document->setPartLevel(partLevel);
    try {
        document->parseString(xml);
        if (validator.validate(document->getRootNode())) {
            return {};
        }
        std::vector<std::string> errors = validator.getErrors();
        errors.erase(std::unique(errors.begin(), errors.end()), errors.end());
        return errors;
    } catch (const Orvil::Exception&) {
        return {"not told"};
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Protocol::Handler strict(Protocol::schemaText);
    static Protocol::Handler lenient(lenientSchema);
    std::cerr.rdbuf(nullptr); // what the schema has against the input and the merges' warnings
    const std::string xml(reinterpret_cast<const char*>(data), size);
    static const auto validator = [] {
        auto made = Orvil::IXmlValidator::getInstance("LibXmlSchemaValidator");
        made->parseSpecificationString(Protocol::schemaText);
        return made;
    }();
    if (errorsOf(*validator, xml, 3) != errorsOf(*validator, xml, 0)) {
        std::abort();
    }
    parse(strict, xml);
    parse(lenient, xml);
    return 0;
}
