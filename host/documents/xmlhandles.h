// SPDX-License-Identifier: MIT
// The owners of libxml2's objects, for what in the host calls libxml2.
#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>

namespace host::xml {

struct Deleter {
    void operator()(xmlDoc* document) const noexcept { xmlFreeDoc(document); }
    void operator()(xmlParserCtxt* context) const noexcept {
        xmlFreeDoc(context->myDoc);
        context->myDoc = nullptr;
        xmlFreeParserCtxt(context);
    }
    void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};

using Document = std::unique_ptr<xmlDoc, Deleter>;
/// Owns the document that it makes, too.
using ParserContext = std::unique_ptr<xmlParserCtxt, Deleter>;
using Text = std::unique_ptr<xmlChar, Deleter>;

} // namespace host::xml
