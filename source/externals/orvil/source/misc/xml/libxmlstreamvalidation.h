// SPDX-License-Identifier: MIT
// Schema validation of a text without a tree of it.
#pragma once

#include <string_view>

struct _xmlSchemaValidCtxt; // NOLINT: the name is libxml2's

namespace Orvil::LibXml {

/// Validates a well-formed document. The result is that of xmlSchemaValidateOneElement for its
/// root: 0 if it is valid, positive if not, negative if it cannot be told (also for entity
/// references, which libxml2's validator does not know). Messages go to the context's callbacks.
int validateText(_xmlSchemaValidCtxt& context, std::string_view text);

} // namespace Orvil::LibXml
