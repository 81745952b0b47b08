// SPDX-License-Identifier: MIT
// Configurations in XML.
#include "misc/configuration/configurationreader.h"
#include "misc/configuration/readersupport.h"
#include "misc/text/numbers.h"
#include "misc/xml/ixmlparser.h"

#include <utility>

namespace Orvil {

namespace {

constexpr std::string_view nameCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ1234567890_-";

/// Reads elements and what is below them, at most as deep as the XML layer allows.
class ElementReader {
public:
    ElementReader(Configuration& configuration, std::string source)
        : configuration_(configuration), values_(configuration), source_(std::move(source)) {}

    void read(const IXmlNode& node, const std::string& prefix) {
        if (node.isComment() || node.isText()) {
            return;
        }
        const std::string name = node.getName();
        if (name.find_first_not_of(nameCharacters) != name.npos) {
            return;
        }
        const std::string fullName = prefix + name;
        const bool inherit = parse<bool>(node.getAttribute("inherit", ""));
        bool isCategory = false;
        std::string value;
        for (const IXmlNode* child = node.getFirstChild(); child != nullptr;
             child = child->getNextNode()) {
            if (!child->isText()) {
                if (!isCategory && !configuration_.addCategory(fullName, inherit, true)) {
                    return;
                }
                isCategory = true;
                read(*child, fullName + ".");
            } else if (!isCategory) {
                value += child->getContent();
            }
        }
        if (!isCategory) {
            const auto index = parse<unsigned>(node.getAttribute("index", ""));
            values_.setValueAt(fullName, index, std::move(value), source_);
        }
    }

private:
    Configuration& configuration_;
    ConfigurationReading::ValueWriter values_;
    std::string source_;
};

} // namespace

XMLConfigurationReader::XMLConfigurationReader(std::string fileName)
    : fileName_(std::move(fileName)) {}

std::unique_ptr<XMLConfigurationReader>
XMLConfigurationReader::createStringInstance(const std::string& text) {
    auto reader = std::make_unique<XMLConfigurationReader>("");
    reader->text_ = text;
    return reader;
}

void XMLConfigurationReader::read(Configuration& configuration) {
    const XmlDocumentHolder document;
    if (fileName_.empty()) {
        document->parseString(text_);
    } else {
        document->parse(fileName_);
    }
    const IXmlNode* root = document->getRootNode();
    if (root->getName() != "configuration") {
        return;
    }
    ElementReader elements(configuration, fileName_.empty() ? "XML text" : fileName_);
    for (const IXmlNode* child = root->getFirstChild(); child != nullptr;
         child = child->getNextNode()) {
        elements.read(*child, "");
    }
}

} // namespace Orvil
