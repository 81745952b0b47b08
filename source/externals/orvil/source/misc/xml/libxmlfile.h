// SPDX-License-Identifier: MIT
// The files that documents are read from and written to.
#pragma once

#include <string>
#include <string_view>

namespace Orvil::LibXml {

/// What libxml2 would parse for a file name or URL: files may be compressed, and none is read over
/// a network. Throws Exception when it cannot be read or is longer, unpacked, than
/// IXmlParser::maximumDocumentSize; then no more than that has been read.
[[nodiscard]] std::string readFile(const std::string& fileName);

/// Writes a new file beside the old one, flushes it, and puts it in the old one's place, or in that
/// of what a link leads to. A device or a pipe just gets the bytes. False if it cannot be written:
/// then the old file is as it was.
[[nodiscard]] bool replaceFile(const std::string& fileName, std::string_view bytes);

} // namespace Orvil::LibXml
