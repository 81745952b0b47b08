// SPDX-License-Identifier: MIT
// A reading of the document without a tree of it, which knows the columns.
#include "tools/protocol/diagnosis.h"

#include "misc/xml/libxmllimits.h"
#include "misc/xml/libxmlparser.h"
#include "misc/xml/libxmlstreamvalidation.h"
#include "misc/xml/libxmlsupport.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>
#include <libxml/xmlschemas.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

namespace ProtocolTool {

namespace {

namespace LibXml = Orvil::LibXml;

struct SchemaDeleter {
    void operator()(xmlSchema* schema) const noexcept { xmlSchemaFree(schema); }
};
struct SchemaParserDeleter {
    void operator()(xmlSchemaParserCtxt* context) const noexcept {
        xmlSchemaFreeParserCtxt(context);
    }
};
struct SchemaValidDeleter {
    void operator()(xmlSchemaValidCtxt* context) const noexcept { xmlSchemaFreeValidCtxt(context); }
};
struct ParserDeleter {
    void operator()(xmlParserCtxt* parser) const noexcept { xmlFreeParserCtxt(parser); }
};

/// Of one reading. Stops the parser when there are enough complaints.
struct Diagnosis {
    xmlParserCtxt* parser = nullptr;
    std::vector<Complaint> complaints;

    Complaint here(std::string message) const {
        return {xmlSAX2GetLineNumber(parser), xmlSAX2GetColumnNumber(parser), std::move(message)};
    }
    void add(Complaint complaint) {
        if (complaints.size() < maximumComplaints) {
            complaints.push_back(std::move(complaint));
        }
        if (complaints.size() == maximumComplaints) {
            xmlStopParser(parser);
        }
    }
};

Complaint toComplaint(const xmlError& error, int line, int column) {
    Complaint complaint{line, column, error.message == nullptr ? "unknown error" : error.message};
    while (!complaint.message.empty() && complaint.message.back() == '\n') {
        complaint.message.pop_back();
    }
    return complaint;
}

/// What the parser has as _private while it looks for faults of syntax.
class Reading : public LibXml::DocumentLimit {
public:
    explicit Reading(std::size_t size) : DocumentLimit(size) {}
    static Reading& of(void* parser) {
        auto* const context = static_cast<xmlParserCtxt*>(parser);
        return *static_cast<Reading*>(static_cast<DocumentLimit*>(context->_private));
    }

    Diagnosis diagnosis;
};

void onSyntaxError(void* parser, xmlErrorPtr error) {
    Reading& reading = Reading::of(parser);
    reading.diagnosis.add(toComplaint(*error, error->line, error->int2));
    if (reading.mustStopAt(*error)) {
        xmlStopParser(static_cast<xmlParserCtxt*>(parser));
    }
}

/// The codec takes none.
void onEntity(void* parser, const xmlChar* /*name*/, int /*type*/, const xmlChar* /*publicId*/,
              const xmlChar* /*systemId*/, xmlChar* /*content*/) {
    Diagnosis& diagnosis = Reading::of(parser).diagnosis;
    diagnosis.add(diagnosis.here("entities must not be declared"));
    xmlStopParser(diagnosis.parser);
}

/// The validator does not know where it is, but how far the text has been read.
void onSchemaError(void* context, xmlErrorPtr error) {
    auto& diagnosis = *static_cast<Diagnosis*>(context);
    const Complaint here = diagnosis.here({});
    diagnosis.add(toComplaint(*error, here.line, here.column));
}

std::vector<Complaint> findSyntaxErrors(const std::string& xml) {
    if (xml.size() > Orvil::IXmlParser::maximumDocumentSize) {
        return {{0, 0,
                 "the document exceeds the limit of " +
                     std::to_string(Orvil::IXmlParser::maximumDocumentSize) + " bytes"}};
    }
    if (const auto found = LibXml::findManyAttributes(xml)) {
        return {{found->line, found->column, found->message}};
    }
    const std::unique_ptr<xmlParserCtxt, ParserDeleter> parser(xmlNewParserCtxt());
    if (!parser) {
        throw std::bad_alloc();
    }
    Reading reading(xml.size());
    Diagnosis& diagnosis = reading.diagnosis;
    diagnosis.parser = parser.get();
    LibXml::ignoreContent(*parser->sax);
    reading.watch(*parser);
    parser->sax->entityDecl = onEntity;
    parser->sax->serror = onSyntaxError;
    const Orvil::LibXmlDoc declarations(xmlCtxtReadMemory(parser.get(), xml.data(),
                                                          static_cast<int>(xml.size()), nullptr,
                                                          nullptr, LibXml::parseOptions));
    if (!reading.excess().empty()) {
        diagnosis.add(diagnosis.here(reading.excess()));
    } else if (!declarations && diagnosis.complaints.empty()) {
        diagnosis.add(diagnosis.here("the document cannot be read"));
    }
    return diagnosis.complaints;
}

/// Of a document that is well-formed.
std::vector<Complaint> findSchemaErrors(const std::string& xml, xmlSchema& schema) {
    const std::unique_ptr<xmlSchemaValidCtxt, SchemaValidDeleter> context(
        xmlSchemaNewValidCtxt(&schema));
    if (!context) {
        throw std::bad_alloc();
    }
    const LibXml::Silence silence;
    Diagnosis diagnosis;
    xmlSchemaSetValidStructuredErrors(context.get(), onSchemaError, &diagnosis);
    if (LibXml::validateText(*context, xml, &diagnosis.parser) != 0 &&
        diagnosis.complaints.empty()) {
        return {{0, 0, "the document cannot be read"}};
    }
    return diagnosis.complaints;
}

/// Of a schema; the column is rarely known.
void onFirstError(void* complaint, xmlErrorPtr error) {
    auto& first = *static_cast<Complaint*>(complaint);
    if (first.message.empty()) {
        first = toComplaint(*error, error->line, 0);
    }
}

} // namespace

BadSchema::BadSchema(Complaint first)
    : runtime_error("the schema does not compile"), complaint(std::move(first)) {}

std::vector<Complaint> diagnose(const std::string& xml, const std::string& schema) {
    const std::unique_ptr<xmlSchemaParserCtxt, SchemaParserDeleter> context(
        xmlSchemaNewMemParserCtxt(schema.data(), static_cast<int>(schema.size())));
    std::unique_ptr<xmlSchema, SchemaDeleter> compiled;
    Complaint first;
    if (context) {
        const LibXml::Silence silence;
        xmlSchemaSetParserStructuredErrors(context.get(), onFirstError, &first);
        compiled.reset(xmlSchemaParse(context.get()));
    }
    if (!compiled) {
        const std::vector<Complaint> faults = findSyntaxErrors(schema);
        throw BadSchema(faults.empty() ? first : faults.front());
    }
    std::vector<Complaint> complaints = findSyntaxErrors(xml);
    return complaints.empty() ? findSchemaErrors(xml, *compiled) : complaints;
}

} // namespace ProtocolTool
