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

#include <memory>
#include <span>
#include <string_view>

namespace Protocol {

namespace {

/// The children of a font element, in the order of writing.
struct FontChild {
    std::string name;
    FontField field;
};
using FontChildren = std::span<const FontChild>;

std::string textOf(const Font& font, FontField field) {
    switch (field) {
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
        std::string text;
        parser_->writeString(text);
        const auto* const root = dynamic_cast<const Orvil::LibXmlNode*>(parser_->getRootNode());
        if (!text.empty() || root == nullptr) {
            return text; // of a layer that does serialise
        }
        xmlChar* memory = nullptr;
        int size = 0;
        xmlDocDumpMemoryEnc(root->getNode()->doc, &memory, &size, "UTF-8");
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
        for (const FontChild& child : children) {
            addText(*node, child.name, textOf(font, child.field));
        }
    }

    Orvil::XmlDocumentHolder parser_;
    std::unique_ptr<Orvil::IXmlNode> kind_; // before the parser lets its document go
};

} // namespace

std::string Handler::createFontRequest(const FontRequest& request) {
    static const FontChild children[] = {{"psName", FontField::PsName},
                                         {"type", FontField::Type},
                                         {"familyName", FontField::FamilyName},
                                         {"styleName", FontField::StyleName}};
    RequestDocument document("fontRequest");
    document.flag("mustMatchFontType", request.mustMatchFontType);
    document.optionalElement("targetApp", request.targetApp);
    document.optionalElement("targetClass", request.targetClass);
    document.fonts(request.fonts, children);
    return document.serialise();
}

std::string Handler::createShowRequest(const ShowRequest& request) {
    static const FontChild children[] = {{"containerID", FontField::ContainerID},
                                         {"psName", FontField::PsName},
                                         {"type", FontField::Type}};
    RequestDocument document("showRequest");
    document.flag("mustMatchFontType", request.mustMatchFontType);
    document.fonts(request.fonts, children);
    return document.serialise();
}

std::string Handler::createBuyRequest(const BuyRequest& request) {
    static const FontChild children[] = {{"psName", FontField::PsName}};
    RequestDocument document("buyRequest");
    document.font(request.font, children);
    return document.serialise();
}

std::string Handler::createActivationRequest(const ActivationRequest& request) {
    static const FontChild children[] = {{"containerID", FontField::ContainerID},
                                         {"psName", FontField::PsName}};
    RequestDocument document("activationRequest");
    document.fonts(request.fonts, children);
    return document.serialise();
}

} // namespace Protocol
