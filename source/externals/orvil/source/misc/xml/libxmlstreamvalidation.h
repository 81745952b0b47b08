// SPDX-License-Identifier: MIT
// Schema validation of a text without a tree of it.
#pragma once

#include <string_view>

struct _xmlParserCtxt;      // NOLINT: the names are libxml2's
struct _xmlSchemaValidCtxt; // NOLINT

namespace Orvil::LibXml {

/// Validates a well-formed document. The result is that of xmlSchemaValidateOneElement for its
/// root: 0 if it is valid, positive if not, negative if it cannot be told (also for entity
/// references, which libxml2's validator does not know). Messages go to the context's callbacks;
/// while these run, `*reader` is what reads the text, to tell the place or to stop it.
int validateText(_xmlSchemaValidCtxt& context, std::string_view text,
                 _xmlParserCtxt** reader = nullptr);

} // namespace Orvil::LibXml
