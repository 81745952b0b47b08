// SPDX-License-Identifier: MIT
// Configurations in XML.
#include "misc/configuration/configurationreader.h"
#include "misc/configuration/readersupport.h"
#include "misc/text/numbers.h"
#include "misc/xml/ixmlparser.h"

#include <tuple>
#include <utility>

namespace Orvil {

namespace {

constexpr std::string_view nameCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ1234567890_-";

/// Reads elements and what is below them, at most as deep as the XML layer allows.
class ElementReader {
public:
    explicit ElementReader(Configuration& configuration) : configuration_(configuration) {}

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
            unsigned index = 0; // and stays so without one
            std::ignore = ConfigurationReading::readIndex(node.getAttribute("index", ""), index);
            configuration_.setValueAt(fullName, index, std::move(value));
        }
    }

private:
    Configuration& configuration_;
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
    ElementReader elements(configuration);
    for (const IXmlNode* child = root->getFirstChild(); child != nullptr;
         child = child->getNextNode()) {
        elements.read(*child, "");
    }
}

} // namespace Orvil
