// SPDX-License-Identifier: MIT
// The XML layer: any bytes either fail with a message or give a tree that can be walked to its end,
// read in every way and let go.
#include "fuzz/require.h"
#include "misc/exception.h"
#include "misc/xml/ixmlparser.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>

namespace {

/// Visits the node and all below it; elements are bounded in depth by the parser.
std::size_t visit(Orvil::IXmlNode& node) {
    std::size_t count = 1;
    std::ignore = node.getAttribute("a", "default");
    REQUIRE(!(node.isText() && node.isComment()));
    REQUIRE(node.hasChildren() == (node.getFirstChild() != nullptr));
    for (Orvil::IXmlNode* child = node.getFirstChild(); child != nullptr;
         child = child->getNextNode()) {
        REQUIRE(child->getParent() == &node);
        count += visit(*child);
    }
    REQUIRE(node.getFirstTagChild() == nullptr || !node.getFirstTagChild()->isText());
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Orvil::XmlDocumentHolder document;
    const std::string text(reinterpret_cast<const char*>(data), size);
    try {
        document->parseString(text);
    } catch (const Orvil::Exception& failure) {
        REQUIRE(std::string(failure.what()).find("LibXml: ") != std::string::npos);
        REQUIRE(document->getRootNode() == nullptr);
        return 0;
    }
    Orvil::IXmlNode* root = document->getRootNode();
    REQUIRE(root->getContent().size() <= size + std::max(10 * size, std::size_t{1'000'000}));
    REQUIRE(visit(*root) <= size);
    const std::unique_ptr<Orvil::IXmlNode> child(root->addChild("added"));
    child->setContentCDATA("<&>");
    REQUIRE(child->getContent() == "<&>");
    return 0;
}
