// SPDX-License-Identifier: MIT
// The owners of libxml2's objects, for everyone who calls libxml2 directly.
#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlschemas.h>

#include <memory>

namespace Orvil::LibXml {

struct Deleter {
    void operator()(xmlDoc* document) const noexcept { xmlFreeDoc(document); }
    void operator()(xmlParserCtxt* context) const noexcept { xmlFreeParserCtxt(context); }
    void operator()(xmlSchema* schema) const noexcept { xmlSchemaFree(schema); }
    void operator()(xmlSchemaParserCtxt* context) const noexcept {
        xmlSchemaFreeParserCtxt(context);
    }
    void operator()(xmlSchemaValidCtxt* context) const noexcept { xmlSchemaFreeValidCtxt(context); }
    void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};

using Document = std::unique_ptr<xmlDoc, Deleter>;
/// Does not own the document that it makes.
using ParserContext = std::unique_ptr<xmlParserCtxt, Deleter>;
using Schema = std::unique_ptr<xmlSchema, Deleter>;
using SchemaParserContext = std::unique_ptr<xmlSchemaParserCtxt, Deleter>;
using SchemaValidContext = std::unique_ptr<xmlSchemaValidCtxt, Deleter>;
using Text = std::unique_ptr<xmlChar, Deleter>;

} // namespace Orvil::LibXml
