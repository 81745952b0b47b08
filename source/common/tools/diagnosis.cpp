// SPDX-License-Identifier: MIT
// A second reading of the document, as a stream: only that knows the columns.
#include "diagnosis.h"

#include <libxml/xmlreader.h>
#include <libxml/xmlschemas.h>

#include <memory>
#include <stdexcept>

namespace ProtocolTool {

namespace {

struct SchemaDeleter {
    void operator()(xmlSchema* schema) const noexcept { xmlSchemaFree(schema); }
};
struct SchemaParserDeleter {
    void operator()(xmlSchemaParserCtxt* context) const noexcept {
        xmlSchemaFreeParserCtxt(context);
    }
};
struct ReaderDeleter {
    void operator()(xmlTextReader* reader) const noexcept { xmlFreeTextReader(reader); }
};

struct Diagnosis {
    xmlTextReader* reader = nullptr;
    std::vector<Complaint> complaints;
};

void onError(void* context, xmlErrorPtr error) {
    auto& diagnosis = *static_cast<Diagnosis*>(context);
    if (diagnosis.complaints.size() >= maximumComplaints) {
        return;
    }
    Complaint complaint;
    complaint.line = error->line;
    // Syntax errors know their column; for the schema's the reader tells how far it has read.
    complaint.column = error->domain == XML_FROM_PARSER || error->domain == XML_FROM_NAMESPACE
                           ? error->int2
                           : xmlTextReaderGetParserColumnNumber(diagnosis.reader);
    complaint.message = error->message == nullptr ? "unknown error" : error->message;
    while (!complaint.message.empty() && complaint.message.back() == '\n') {
        complaint.message.pop_back();
    }
    diagnosis.complaints.push_back(std::move(complaint));
}

/// Of the node that the reader has come to.
bool declaresEntities(xmlTextReader* reader) {
    const xmlNode* const node = xmlTextReaderCurrentNode(reader);
    return node != nullptr && node->type == XML_DTD_NODE &&
           reinterpret_cast<const xmlDtd*>(node)->entities != nullptr;
}

/// What comes up while the whole document is read, with or without a schema.
std::vector<Complaint> readThrough(const std::string& xml, xmlSchema* schema) {
    const std::unique_ptr<xmlTextReader, ReaderDeleter> reader(xmlReaderForMemory(
        xml.data(), static_cast<int>(xml.size()), nullptr, nullptr, XML_PARSE_NONET));
    if (!reader || (schema != nullptr && xmlTextReaderSetSchema(reader.get(), schema) != 0)) {
        return {{0, 0, "the document cannot be read"}};
    }
    Diagnosis diagnosis{reader.get(), {}};
    xmlTextReaderSetStructuredErrorHandler(reader.get(), onError, &diagnosis);
    int status = 1;
    while (status == 1) {
        status = xmlTextReaderRead(reader.get());
        if (status == 1 && declaresEntities(reader.get())) {
            return {{xmlTextReaderGetParserLineNumber(reader.get()),
                     xmlTextReaderGetParserColumnNumber(reader.get()),
                     "entities must not be declared"}};
        }
    }
    const bool isGood =
        status == 0 && (schema == nullptr || xmlTextReaderIsValid(reader.get()) == 1);
    if (!isGood && diagnosis.complaints.empty()) {
        diagnosis.complaints.push_back({xmlTextReaderGetParserLineNumber(reader.get()),
                                        xmlTextReaderGetParserColumnNumber(reader.get()),
                                        "the document cannot be read"});
    }
    return diagnosis.complaints;
}

void ignore(void* /*context*/, xmlErrorPtr /*error*/) {}

} // namespace

std::vector<Complaint> diagnose(const std::string& xml, const std::string& schema) {
    const std::unique_ptr<xmlSchemaParserCtxt, SchemaParserDeleter> context(
        xmlSchemaNewMemParserCtxt(schema.data(), static_cast<int>(schema.size())));
    std::unique_ptr<xmlSchema, SchemaDeleter> compiled;
    if (context) {
        xmlSchemaSetParserStructuredErrors(context.get(), ignore, nullptr);
        compiled.reset(xmlSchemaParse(context.get()));
    }
    if (!compiled) {
        throw std::runtime_error("the schema does not compile");
    }
    // Well-formedness first: libxml2's validating reader must not see what is not well-formed.
    std::vector<Complaint> complaints = readThrough(xml, nullptr);
    return complaints.empty() ? readThrough(xml, compiled.get()) : complaints;
}

} // namespace ProtocolTool
