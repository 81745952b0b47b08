// SPDX-License-Identifier: MIT
// Documents and nodes: reading, walking, making and letting go.
#include "misc/xml/libxmlparser.h"
#include "tests/support/repeated.h"
#include "xmldocument.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>

using namespace Orvil;
using OrvilTests::AnXmlDocument;
using testing::ElementsAre;
using testing::StartsWith;

TEST_F(AnXmlDocument, IsReadByAParserThatIsKnownByName) {
    EXPECT_TRUE(IXmlParser::getInstance("Other") == nullptr);
    EXPECT_FALSE(static_cast<bool>(XmlDocumentHolder("Other")));
    EXPECT_EQ(document->getRootNode(), nullptr);
    document->parse(file("a.xml", "<a>file</a>"));
    EXPECT_EQ(document->getRootNode()->getContent(), "file");
    EXPECT_EQ(read("<a>text</a>")->getContent(), "text");
}

TEST_F(AnXmlDocument, IsWalkedInItsOrder) {
    IXmlNode* root =
        read("<r a='1' e=''> <!-- c --><font>A</font>\n<x/><font>B</font>tail</r><!--z-->");
    EXPECT_FALSE(root->hasParent());
    EXPECT_TRUE(root->hasNextNode());
    EXPECT_TRUE(root->getNextNode()->isComment());
    EXPECT_EQ(root->getNextTagNode(), nullptr);
    std::string names;
    for (const IXmlNode* child : root->getChildren()) {
        names += child->getName() + " ";
    }
    EXPECT_EQ(names, "text comment font text x font text ");
    EXPECT_TRUE(root->getChildren()[0]->isText());
    EXPECT_TRUE(root->getChildren()[1]->isComment());
    EXPECT_FALSE(root->getChildren()[1]->isText());
    const std::vector<IXmlNode*> fonts = root->getChildren("font");
    ASSERT_EQ(fonts.size(), 2U);
    EXPECT_EQ(fonts[0], root->getFirstTagChild());
    EXPECT_EQ(fonts[0], root->getFirstChild("font"));
    EXPECT_EQ(fonts[0]->getNextTagNode()->getName(), "x");
    EXPECT_EQ(fonts[1]->getContent(), "B");
    EXPECT_EQ(fonts[1]->getParent(), root);
    EXPECT_EQ(fonts[1]->getNextTagNode(), nullptr);
    EXPECT_EQ(root->getFirstChild("none"), nullptr);
    EXPECT_FALSE(root->getFirstChild("x")->hasChildren());
    EXPECT_EQ(root->getFirstChild(), root->getFirstChild());
    EXPECT_EQ(root->getContent(), " A\nBtail");
    EXPECT_EQ(root->getAttribute("a", "x"), "1");
    EXPECT_EQ(root->getAttribute("e", "x"), "");
    EXPECT_EQ(root->getAttribute("missing", "x"), "x");
    EXPECT_EQ(read("<a> <!-- c --> </a>")->getFirstTagChild(), nullptr);
    EXPECT_EQ(read("<a><![CDATA[<&]]></a>")->getContent(), "<&");
    EXPECT_TRUE(document->getRootNode()->getFirstChild()->isText());
}

TEST_F(AnXmlDocument, IsMadeNodeByNode) {
    IXmlNode* root = document->createRootNode("cmd", "urn:x");
    const std::unique_ptr<IXmlNode> child(root->addChild("font"));
    child->setAttribute("id", "<1>");
    child->setContent("a&");
    child->setContent("<b");
    EXPECT_EQ(child->getContent(), "a&<b");
    child->setContentCDATA("c &amp; <d>");
    EXPECT_EQ(child->getContent(), "c &amp; <d>");
    EXPECT_EQ(child->getParent(), root);
    EXPECT_EQ(child->getAttribute("id", ""), "<1>");
    EXPECT_NE(root->getFirstChild(), child.get());
    EXPECT_EQ(root->getFirstChild()->getContent(), "c &amp; <d>");
    EXPECT_EQ(written(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<cmd xmlns=\"urn:x\">\n"
                         "  <font id=\"&lt;1&gt;\">c &amp;amp; &lt;d&gt;</font>\n</cmd>\n");
    EXPECT_THAT(entries(), ElementsAre("written.xml"));
    document->createRootNode("plain", "");
    EXPECT_EQ(written(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plain/>\n");
    std::string text = "unchanged";
    document->writeString(text);
    EXPECT_EQ(text, "unchanged");
}

TEST_F(AnXmlDocument, SaysWhyItIsNotParsed) {
    const std::string prefix = "LibXml: Document not parsed successfully: ";
    EXPECT_EQ(parseFailure("<a>"), prefix + "Premature end of data in tag a line 1\n");
    EXPECT_EQ(parseFailure(""), prefix + "unknown error message")
        << "the error of an earlier document is not told again";
    EXPECT_EQ(parseFailure("<!-- only a comment -->"),
              prefix + "Start tag expected, '<' not found\n");
    EXPECT_EQ(parseFailure("<a>\xFF</a>").substr(0, prefix.size() + 9), prefix + "Input is ");
    EXPECT_THAT(failureOf([&] { document->parse((folder / "none.xml").string()); }),
                StartsWith(prefix + "failed to load external entity"));
    read("<a/>");
    EXPECT_THAT(failureOf([&] { document->parse(file("bad.xml", "<a></b>")); }),
                StartsWith(prefix + "Opening and ending tag mismatch"));
    EXPECT_EQ(document->getRootNode(), nullptr);
}

TEST_F(AnXmlDocument, IsLetGoByItsHolder) {
    SmartPointer<IXmlParser> parser;
    {
        const XmlDocumentHolder holder;
        parser = holder.get();
        holder->parseString("<a><b/>text</a>");
        EXPECT_EQ(parser->getRootNode()->getChildren().size(), 2U);
    }
    EXPECT_EQ(parser->getRootNode(), nullptr);
}

TEST_F(AnXmlDocument, CanBeLetGoWithoutEverBeingShared) {
    LibXmlParser parser;
    parser.parseString("<a><b/></a>");
    EXPECT_TRUE(parser.getRootNode()->getFirstChild()->hasParent());
    parser.cleanup();
    EXPECT_EQ(parser.getRootNode(), nullptr);
    parser.createRootNode("x", "");
}

TEST_F(AnXmlDocument, GivesNothingOfReplacedContent) {
    IXmlNode* const root = read("<a>old<b>text</b><c/></a>");
    EXPECT_EQ(root->getChildren().size(), 3U);
    EXPECT_EQ(root->getFirstChild("b")->getFirstChild()->getContent(), "text");
    const std::unique_ptr<IXmlNode> added(root->addChild("added"));
    EXPECT_EQ(added->getFirstChild(), nullptr);
    root->setContentCDATA("new");
    ASSERT_EQ(root->getChildren().size(), 1U);
    EXPECT_EQ(root->getFirstChild()->getContent(), "new");
    EXPECT_EQ(root->getFirstChild()->getParent(), root);
    root->setContentCDATA("");
    EXPECT_EQ(root->getFirstChild(), nullptr);
}

TEST_F(AnXmlDocument, MayBeOutlivedByAnAddedNode) {
    auto holder = std::make_unique<XmlDocumentHolder>();
    const std::unique_ptr<IXmlNode> added((*holder)->createRootNode("cmd", "")->addChild("a"));
    const std::unique_ptr<IXmlNode> below(added->addChild("b"));
    EXPECT_EQ(added->getFirstChild()->getName(), "b");
    EXPECT_EQ(added->getFirstChild()->getParent(), added.get());
    EXPECT_NE(added->getFirstChild(), below.get());
    holder.reset(); // the nodes still hold the parser, and let go of it below
    EXPECT_EQ(below->getParent(), added.get());
}

TEST_F(AnXmlDocument, FreesAMillionSiblingsAndADeepTreeWithoutDeepCalls) {
    EXPECT_EQ(read("<a>" + repeated("<b/>", 1000000) + "</a>")->getChildren().size(), 1000000U);
    document->cleanup();
    EXPECT_EQ(document->getRootNode(), nullptr);

    document->createRootNode("a", "");
    auto* node = dynamic_cast<LibXmlNode*>(document->getRootNode())->getNode();
    for (int i = 0; i < 300000; ++i) {
        node = xmlNewChild(node, nullptr, BAD_CAST "a", nullptr);
    }
    const IXmlNode* deepest = document->getRootNode();
    int depth = 0;
    for (; deepest->hasChildren(); ++depth) {
        deepest = deepest->getFirstChild();
    }
    EXPECT_EQ(depth, 300000);
}
