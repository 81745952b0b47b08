// SPDX-License-Identifier: MIT
// Writing of request documents.
//
// The XML layer's writeString leaves its text alone, so the document is serialised here.
#include "misc/exception.h"
#include "misc/xml/ixmlparser.h"
#include "misc/xml/libxmlhandles.h"
#include "misc/xml/libxmlparser.h"
#include "protocolfields.h"
#include "protocolhandler.h"
#include "xmltext.h"

#include <libxml/tree.h>

#include <initializer_list>
#include <memory>

namespace Protocol {

namespace {

/// The names of a font element's children, in the order of writing.
using FontChildren = std::initializer_list<const char*>;

std::string textOf(const Font& font, const char* child) {
    switch (findFontField(child)) {
    case FontField::Type:
        return Font::typeToString(font.type);
    case FontField::PsName:
        return font.psName;
    case FontField::FamilyName:
        return font.familyName;
    case FontField::StyleName:
        return font.styleName;
    default:
        return font.containerID;
    }
}

void checkText(const std::string& name, const std::string& text) {
    if (!isXmlText(text)) {
        throw Orvil::SerializationException("text of '" + name + "' cannot be written as XML: '" +
                                                text + "'",
                                            "source/common/protocol", __LINE__, "");
    }
}

/// One request document while it is written.
class RequestDocument {
public:
    explicit RequestDocument(const std::string& kind)
        : parser_("LibXmlParser"),
          kind_(parser_->createRootNode("cmd", protocolNamespace)->addChild(kind)) {}

    void element(const std::string& name, const std::string& text) { addText(*kind_, name, text); }
    void flag(const std::string& name, bool value) { element(name, value ? "true" : "false"); }
    void optionalElement(const std::string& name, const std::string& text) {
        if (!text.empty()) {
            element(name, text);
        }
    }
    void fonts(const FontList& fonts, FontChildren children) {
        const std::unique_ptr<Orvil::IXmlNode> parent(kind_->addChild("fonts"));
        for (const Font& each : fonts) {
            addFont(*parent, each, children);
        }
    }
    void font(const Font& font, FontChildren children) { addFont(*kind_, font, children); }

    std::string serialise() const {
        const auto& root = dynamic_cast<const Orvil::LibXmlNode&>(*parser_->getRootNode());
        xmlChar* memory = nullptr;
        int size = 0;
        xmlDocDumpMemoryEnc(root.getNode()->doc, &memory, &size, "UTF-8");
        const Orvil::LibXml::Text owner(memory);
        if (!owner) {
            throw Orvil::SerializationException("document could not be written",
                                                "source/common/protocol", __LINE__, "");
        }
        return {reinterpret_cast<const char*>(memory), static_cast<std::size_t>(size)};
    }

private:
    static void addText(Orvil::IXmlNode& parent, const std::string& name, const std::string& text) {
        const std::unique_ptr<Orvil::IXmlNode> node(parent.addChild(name));
        if (!text.empty()) {
            checkText(name, text);
            node->setContent(text);
        }
    }
    static void addFont(Orvil::IXmlNode& parent, const Font& font, FontChildren children) {
        const std::unique_ptr<Orvil::IXmlNode> node(parent.addChild("font"));
        checkText("syncID", font.syncID);
        node->setAttribute("syncID", font.syncID);
        for (const char* const child : children) {
            addText(*node, child, textOf(font, child));
        }
    }

    Orvil::XmlDocumentHolder parser_;
    std::unique_ptr<Orvil::IXmlNode> kind_; // before the parser lets its document go
};

} // namespace

std::string Handler::createFontRequest(const FontRequest& request) {
    RequestDocument document("fontRequest");
    document.flag("mustMatchFontType", request.mustMatchFontType);
    document.optionalElement("targetApp", request.targetApp);
    document.optionalElement("targetClass", request.targetClass);
    document.fonts(request.fonts, {"psName", "type", "familyName", "styleName"});
    return document.serialise();
}

std::string Handler::createShowRequest(const ShowRequest& request) {
    RequestDocument document("showRequest");
    document.flag("mustMatchFontType", request.mustMatchFontType);
    document.fonts(request.fonts, {"containerID", "psName", "type"});
    return document.serialise();
}

std::string Handler::createBuyRequest(const BuyRequest& request) {
    RequestDocument document("buyRequest");
    document.font(request.font, {"psName"});
    return document.serialise();
}

std::string Handler::createActivationRequest(const ActivationRequest& request) {
    RequestDocument document("activationRequest");
    document.fonts(request.fonts, {"containerID", "psName"});
    return document.serialise();
}

} // namespace Protocol
