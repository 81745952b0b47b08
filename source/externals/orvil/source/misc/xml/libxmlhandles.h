// SPDX-License-Identifier: MIT
// The owners of libxml2's objects, for everyone who calls libxml2 directly.
#pragma once

#include <memory>

// NOLINTBEGIN: the names are libxml2's
struct _xmlDoc;
struct _xmlParserCtxt;
struct _xmlSchema;
struct _xmlSchemaParserCtxt;
struct _xmlSchemaValidCtxt;
// NOLINTEND

namespace Orvil::LibXml {

struct Deleter {
    void operator()(_xmlDoc* document) const noexcept;
    void operator()(_xmlParserCtxt* context) const noexcept;
    void operator()(_xmlSchema* schema) const noexcept;
    void operator()(_xmlSchemaParserCtxt* context) const noexcept;
    void operator()(_xmlSchemaValidCtxt* context) const noexcept;
    void operator()(unsigned char* text) const noexcept;
};

using Document = std::unique_ptr<_xmlDoc, Deleter>;
/// Does not own the document that it makes.
using ParserContext = std::unique_ptr<_xmlParserCtxt, Deleter>;
using Schema = std::unique_ptr<_xmlSchema, Deleter>;
using SchemaParserContext = std::unique_ptr<_xmlSchemaParserCtxt, Deleter>;
using SchemaValidContext = std::unique_ptr<_xmlSchemaValidCtxt, Deleter>;
using Text = std::unique_ptr<unsigned char, Deleter>;

} // namespace Orvil::LibXml
