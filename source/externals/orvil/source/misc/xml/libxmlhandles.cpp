// SPDX-License-Identifier: MIT
// Frees libxml2's objects.
#include "misc/xml/libxmlhandles.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlschemas.h>

namespace Orvil::LibXml {

void Deleter::operator()(xmlDoc* document) const noexcept {
    xmlFreeDoc(document);
}

void Deleter::operator()(xmlParserCtxt* context) const noexcept {
    xmlFreeParserCtxt(context);
}

void Deleter::operator()(xmlSchema* schema) const noexcept {
    xmlSchemaFree(schema);
}

void Deleter::operator()(xmlSchemaParserCtxt* context) const noexcept {
    xmlSchemaFreeParserCtxt(context);
}

void Deleter::operator()(xmlSchemaValidCtxt* context) const noexcept {
    xmlSchemaFreeValidCtxt(context);
}

void Deleter::operator()(xmlChar* text) const noexcept {
    xmlFree(text);
}

} // namespace Orvil::LibXml
