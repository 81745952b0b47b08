// SPDX-License-Identifier: MIT
// Reading without a tree: what passes is for the handlers that one sets.
#pragma once

#include "misc/xml/libxmlhandles.h"

#include <string>

namespace ProtocolTool {

/// A parser that takes up the declarations of its document and nothing else. Throws std::bad_alloc.
[[nodiscard]] Orvil::LibXml::ParserContext makeReader();
/// Reads in the bounds of the XML layer, but those of size and growth.
void read(_xmlParserCtxt& reader, const std::string& xml);

} // namespace ProtocolTool
