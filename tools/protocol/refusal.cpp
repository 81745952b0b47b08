// SPDX-License-Identifier: MIT
// The place in a valid reply where the codec stops.
#include "misc/exception.h"
#include "misc/xml/ixmlparser.h"
#include "misc/xml/libxmlhandles.h"
#include "protocolelements.h"
#include "protocolhandler.h"
#include "tools/protocol/diagnosis.h"
#include "tools/protocol/reader.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>

namespace ProtocolTool {

namespace {

namespace LibXml = Orvil::LibXml;

constexpr int levelOfKind = 1; // below the root
constexpr int levelOfFonts = 3;

/// An element, by its number among all of its level, from 1.
struct Place {
    int level = levelOfKind;
    int number = 1;
    std::string description; // of a font
};

/// Whether the codec takes the font by itself.
bool isTaken(const std::string& kind, Orvil::IXmlNode* element) {
    try {
        const Protocol::Font font = Protocol::HandlerHelpers::parseFont(element);
        if (kind == "fontRequestReply") {
            Protocol::checkFontReplyFont(font);
        } else if (kind == "showRequestReply") {
            Protocol::checkShowReplyFont(font);
        } else if (kind == "activationRequestReply") {
            Protocol::checkActivationReplyFont(font);
        }
        return true;
    } catch (const Orvil::Exception&) {
        return false;
    }
}

Place findBadFont(const std::string& xml) {
    const Orvil::XmlDocumentHolder parser("LibXmlParser");
    parser->parseString(xml);
    const Orvil::IXmlNode* const kind = Protocol::firstElement(*parser->getRootNode());
    int number = 0;
    for (const Orvil::IXmlNode* list = kind == nullptr ? nullptr : Protocol::firstElement(*kind);
         list != nullptr; list = Protocol::nextElement(*list)) {
        for (Orvil::IXmlNode* font = Protocol::firstElement(*list); font != nullptr;
             font = Protocol::nextElement(*font)) {
            ++number;
            if (!isTaken(kind->getName(), font)) {
                return {levelOfFonts, number,
                        "font " + std::to_string(number) + " (syncID '" +
                            font->getAttribute("syncID", "") + "'): "};
            }
        }
    }
    return {};
}

/// Counts elements up to a place; the parser's _private.
struct Search {
    const Place& place;
    int depth = 0;
    int count = 0;
    Complaint found{};
};

Search& searchOf(void* parser) {
    return *static_cast<Search*>(static_cast<xmlParserCtxt*>(parser)->_private);
}

void onStart(void* parser, const xmlChar* /*name*/, const xmlChar* /*prefix*/,
             const xmlChar* /*uri*/, int /*namespaceCount*/, const xmlChar** /*namespaces*/,
             int /*attributeCount*/, int /*defaultedCount*/, const xmlChar** /*attributes*/) {
    Search& search = searchOf(parser);
    if (search.depth++ == search.place.level && ++search.count == search.place.number) {
        search.found = {xmlSAX2GetLineNumber(parser), xmlSAX2GetColumnNumber(parser),
                        search.place.description};
        xmlStopParser(static_cast<xmlParserCtxt*>(parser));
    }
}

void onEnd(void* parser, const xmlChar* /*name*/, const xmlChar* /*prefix*/,
           const xmlChar* /*uri*/) {
    --searchOf(parser).depth;
}

} // namespace

Complaint findRefusal(const std::string& xml) {
    const Place place = findBadFont(xml);
    const LibXml::ParserContext parser = makeReader();
    Search search{place};
    parser->_private = &search;
    parser->sax->startElementNs = onStart;
    parser->sax->endElementNs = onEnd;
    read(*parser, xml);
    return search.found;
}

} // namespace ProtocolTool
