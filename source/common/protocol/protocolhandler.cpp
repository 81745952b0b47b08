// SPDX-License-Identifier: MIT
// Reading of reply documents.
#include "protocolhandler.h"

#include "misc/xml/ixmlparser.h"
#include "misc/xml/libxmlparser.h"
#include "protocolelements.h"
#include "protocolfailure.h"

#include <boost/make_shared.hpp>
#include <libxml/tree.h>

#include <iostream>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace Protocol {

namespace {

/// The fonts that stand below `node`; none when it is null.
FontList parseFonts(const Orvil::IXmlNode* node) {
    FontList fonts;
    for (Orvil::IXmlNode* child = node == nullptr ? nullptr : firstElement(*node); child != nullptr;
         child = nextElement(*child)) {
        fonts.push_back(HandlerHelpers::parseFont(child));
    }
    return fonts;
}

/// No document of the protocol needs entities. Parsing bounds what they grow to in content, but the
/// validator would expand a large one again for each reference in an attribute.
void refuseEntities(const Orvil::IXmlNode* root) {
    const auto* const node = dynamic_cast<const Orvil::LibXmlNode*>(root);
    const xmlDtd* const dtd = node == nullptr ? nullptr : node->getNode()->doc->intSubset;
    if (dtd != nullptr && (dtd->entities != nullptr || dtd->pentities != nullptr)) {
        throw failure("a reply must not declare entities", __LINE__);
    }
}

void print(std::string_view label, const std::vector<std::string>& messages) {
    for (const std::string& message : messages) {
        std::cerr << label << message << '\n';
    }
}

void validate(Orvil::IXmlValidator& validator, Orvil::IXmlNode* root) {
    if (!validator.validate(root)) {
        print("Error from XSD validation:", validator.getErrors());
        print("Warning from XSD validation:", validator.getWarnings());
        throw std::runtime_error("could not validate XML, TODO: logging");
    }
}

void parseKind(Orvil::IXmlNode* node, ReplyContainer& reply) {
    if (node == nullptr) {
        throw UnknownReplyKind("");
    }
    const std::string name = node->getName();
    if (name == "fontRequestReply") {
        reply.type = ReplyContainer::fontReplyType;
        reply.fontReply = HandlerInternal::parseFontReply(node);
    } else if (name == "showRequestReply") {
        reply.type = ReplyContainer::showReplyType;
        reply.showReply = HandlerInternal::parseShowReply(node);
    } else if (name == "buyRequestReply") {
        reply.type = ReplyContainer::buyReplyType;
        reply.buyReply = HandlerInternal::parseBuyReply(node);
    } else if (name == "activationRequestReply") {
        reply.type = ReplyContainer::activationReplyType;
        reply.activationReply = HandlerInternal::parseActivationReply(node);
    } else {
        throw UnknownReplyKind(name);
    }
}

} // namespace

UnknownReplyKind::UnknownReplyKind(const std::string& kind)
    : Exception(failure("could not parse root node '" + kind + "'", 923)), kind_(kind) {}

HandlerInternal::HandlerInternal(const std::string& schema)
    : validator_(Orvil::IXmlValidator::getInstance("LibXmlSchemaValidator")) {
    validator_->parseSpecificationString(schema);
}

boost::shared_ptr<FontReply> HandlerInternal::parseFontReply(Orvil::IXmlNode* node) {
    constexpr int childrenRead = 2;
    bool showWindow = false;
    FontList fonts;
    const Orvil::IXmlNode* child = firstElement(*node);
    for (int i = 0; i < childrenRead && child != nullptr; ++i, child = nextElement(*child)) {
        const std::string name = child->getName();
        if (name == "showWindow") {
            showWindow = HandlerHelpers::parseBoolean(child->getContent());
        } else if (name == "fonts") {
            fonts.splice(fonts.end(), parseFonts(child));
        }
    }
    return boost::make_shared<FontReply>(showWindow, std::move(fonts));
}

boost::shared_ptr<ShowReply> HandlerInternal::parseShowReply(Orvil::IXmlNode* node) {
    return boost::make_shared<ShowReply>(parseFonts(firstElement(*node)));
}

boost::shared_ptr<BuyReply> HandlerInternal::parseBuyReply(Orvil::IXmlNode* node) {
    const Orvil::IXmlNode* const handled = firstElement(*node);
    Font font;
    font.handled = handled != nullptr && HandlerHelpers::parseBoolean(handled->getContent());
    return boost::make_shared<BuyReply>(font);
}

boost::shared_ptr<ActivationReply> HandlerInternal::parseActivationReply(Orvil::IXmlNode* node) {
    return boost::make_shared<ActivationReply>(parseFonts(firstElement(*node)));
}

Handler::Handler(const std::string& schema)
    : internal_(std::make_unique<HandlerInternal>(schema)) {}

Handler::~Handler() = default;

ReplyContainer Handler::parseReply(const std::string& xml) {
    const Orvil::XmlDocumentHolder parser("LibXmlParser");
    parser->parseString(xml);
    Orvil::IXmlNode* const root = parser->getRootNode();
    if (root == nullptr) {
        throw std::runtime_error("did not find root node in XML!");
    }
    refuseEntities(root);
    validate(internal_->validator(), root);
    ReplyContainer reply;
    parseKind(firstElement(*root), reply);
    return reply;
}

} // namespace Protocol
