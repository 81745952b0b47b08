// SPDX-License-Identifier: MIT
// Reading without a tree.
#include "tools/protocol/reader.h"

#include "misc/xml/libxmlsupport.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <new>

namespace ProtocolTool {

namespace LibXml = Orvil::LibXml;

LibXml::ParserContext makeReader() {
    LibXml::ParserContext reader(xmlNewParserCtxt());
    if (!reader) {
        throw std::bad_alloc();
    }
    xmlSAXHandler& handler = *reader->sax;
    handler.startElement = nullptr;
    handler.endElement = nullptr;
    handler.startElementNs = nullptr;
    handler.endElementNs = nullptr;
    handler.characters = nullptr;
    handler.ignorableWhitespace = nullptr;
    handler.cdataBlock = nullptr;
    handler.comment = nullptr;
    handler.processingInstruction = nullptr;
    handler.reference = nullptr;
    return reader;
}

void read(xmlParserCtxt& reader, const std::string& xml) {
    const LibXml::Silence silence;
    const LibXml::Document declarations(xmlCtxtReadMemory(
        &reader, xml.data(), static_cast<int>(xml.size()), nullptr, nullptr, LibXml::parseOptions));
}

} // namespace ProtocolTool
