// SPDX-License-Identifier: MIT
// The files that documents are read from and written to.
#pragma once

#include <string>
#include <string_view>

namespace Orvil::LibXml {

/// What libxml2 would parse for a file name or URL: files may be compressed, and none is read over
/// a network. Throws Exception when it cannot be read or is longer, unpacked, than
/// IXmlParser::maximumDocumentSize; then no more than that has been read.
std::string readFile(const std::string& fileName);

/// Writes a file, or replaces one at once and keeps its mode; a symbolic link stays, and what it
/// leads to is written. In a folder that takes no new file, or for a file of another owner, the old
/// one is overwritten, after the room for that has been reserved where the file system can. False
/// if it cannot be written. Then the old file is as it was, except if overwriting it failed midway:
/// for lack of room that was not reserved, or by an error of the device. A device or a pipe just
/// gets the bytes.
bool replaceFile(const std::string& fileName, std::string_view bytes);

} // namespace Orvil::LibXml
