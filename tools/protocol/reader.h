// SPDX-License-Identifier: MIT
// Reading a document without building its tree: callers set the handlers that they need.
#pragma once

#include "misc/xml/libxmlhandles.h"

#include <string>

namespace ProtocolTool {

/// A parser that keeps the declarations of its document and nothing else. Throws std::bad_alloc.
[[nodiscard]] Orvil::LibXml::ParserContext makeReader();
/// Reads within the XML layer's bounds, except those of size and growth.
void read(_xmlParserCtxt& reader, const std::string& xml);

} // namespace ProtocolTool
