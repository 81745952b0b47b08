// SPDX-License-Identifier: MIT
// A reading of the document without a tree of it, which knows the columns.
#include "tools/protocol/diagnosis.h"

#include "misc/exception.h"
#include "misc/xml/ixmlparser.h"
#include "misc/xml/libxmlhandles.h"
#include "misc/xml/libxmlsupport.h"
#include "tools/protocol/reader.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>
#include <libxml/xmlschemas.h>

#include <new>
#include <stdexcept>
#include <utility>

namespace ProtocolTool {

namespace {

namespace LibXml = Orvil::LibXml;

/// Of one reading, which has it as _private. Stops the parser when there are enough complaints.
struct Diagnosis {
    explicit Diagnosis(xmlParserCtxt& reader) : parser(&reader) { reader._private = this; }

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

    xmlParserCtxt* parser;
    std::vector<Complaint> complaints;
};

Diagnosis& diagnosisOf(void* parser) {
    return *static_cast<Diagnosis*>(static_cast<xmlParserCtxt*>(parser)->_private);
}

Complaint toComplaint(const xmlError& error, int line, int column) {
    Complaint complaint{line, column, error.message == nullptr ? "unknown error" : error.message};
    while (!complaint.message.empty() && complaint.message.back() == '\n') {
        complaint.message.pop_back();
    }
    return complaint;
}

void onSyntaxError(void* parser, xmlErrorPtr error) {
    diagnosisOf(parser).add(toComplaint(*error, error->line, error->int2));
}

/// The codec takes none.
void onEntity(void* parser, const xmlChar* /*name*/, int /*type*/, const xmlChar* /*publicId*/,
              const xmlChar* /*systemId*/, xmlChar* /*content*/) {
    Diagnosis& diagnosis = diagnosisOf(parser);
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
    const LibXml::ParserContext parser = makeReader();
    Diagnosis diagnosis(*parser);
    parser->sax->entityDecl = onEntity;
    parser->sax->serror = onSyntaxError;
    read(*parser, xml);
    if (parser->wellFormed == 0 && diagnosis.complaints.empty()) {
        diagnosis.add(diagnosis.here("the document cannot be read"));
    }
    return diagnosis.complaints;
}

/// Of a document that is well-formed.
std::vector<Complaint> findSchemaErrors(const std::string& xml, xmlSchema& schema) {
    const LibXml::SchemaValidContext context(xmlSchemaNewValidCtxt(&schema));
    if (!context) {
        throw std::bad_alloc();
    }
    const LibXml::ParserContext parser = makeReader();
    Diagnosis diagnosis(*parser);
    xmlSchemaSetValidStructuredErrors(context.get(), onSchemaError, &diagnosis);
    xmlSchemaSAXPlugStruct* const plug =
        xmlSchemaSAXPlug(context.get(), &parser->sax, &parser->userData);
    if (plug == nullptr) {
        throw std::bad_alloc();
    }
    read(*parser, xml);
    xmlSchemaSAXUnplug(plug);
    if (xmlSchemaIsValid(context.get()) != 1 && diagnosis.complaints.empty()) {
        return {{0, 0, "the document cannot be read"}};
    }
    return diagnosis.complaints;
}

/// What shows only when the XML layer builds the document: how much it grows by the defaults that
/// it declares, and how long a text is that references divide.
std::vector<Complaint> findExcess(const std::string& xml) {
    try {
        const Orvil::XmlDocumentHolder document;
        document->parseString(xml);
        return {};
    } catch (const Orvil::Exception& failure) {
        const xmlError* const error = xmlGetLastError(); // null: the message names the line
        return {{error == nullptr ? 0 : error->line, 0, failure.message()}};
    }
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
    const LibXml::SchemaParserContext context(
        xmlSchemaNewMemParserCtxt(schema.data(), static_cast<int>(schema.size())));
    LibXml::Schema compiled;
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
    if (complaints.empty()) {
        complaints = findSchemaErrors(xml, *compiled);
    }
    return complaints.empty() ? findExcess(xml) : complaints;
}

} // namespace ProtocolTool
