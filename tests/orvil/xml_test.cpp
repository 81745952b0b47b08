// SPDX-License-Identifier: MIT
// Documents and nodes: reading, walking, making, letting go, and what outside input may not do.
#include "misc/exception.h"
#include "misc/text/strings.h"
#include "misc/xml/ixmlparser.h"
#include "misc/xml/libxmlparser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

using namespace Orvil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr std::size_t prefixLength = std::string_view("\n    User Message : ").size();

class AnXmlDocument : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "orvil-xml-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::string file(const std::string& name, const std::string& content) const {
        std::string path = (folder / name).string();
        std::ofstream(path) << content;
        return path;
    }
    IXmlNode* read(const std::string& text) {
        document->parseString(text);
        return document->getRootNode();
    }
    /// The failure's message, which must carry nothing else, nor be printed.
    template <typename Action>
    static std::string failureOf(Action action) {
        testing::internal::CaptureStderr();
        std::string message = "nothing thrown";
        try {
            action();
        } catch (const Exception& failure) {
            EXPECT_THAT(failure.descriptionHeader(),
                        StartsWith("Exception in file "
                                   "'source/externals/orvil/source/misc/xml/libxmlparser' at "));
            EXPECT_EQ(failure.descriptionCode(), "");
            message = failure.descriptionMessage().substr(prefixLength);
        }
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        return message;
    }
    std::string parseFailure(const std::string& text) {
        std::string message = failureOf([&] { document->parseString(text); });
        EXPECT_EQ(document->getRootNode(), nullptr);
        return message;
    }
    std::string written() const {
        const std::string path = (folder / "written.xml").string();
        document->write(path);
        std::ifstream stream(path);
        return streamToString(stream);
    }

    std::filesystem::path folder;
    XmlDocumentHolder document;
};

std::vector<std::string> namesOf(const std::vector<IXmlNode*>& nodes) {
    std::vector<std::string> names;
    names.reserve(nodes.size());
    for (const IXmlNode* node : nodes) {
        names.push_back(node->getName());
    }
    return names;
}

} // namespace

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
    EXPECT_THAT(namesOf(root->getChildren()),
                ElementsAre("text", "comment", "font", "text", "x", "font", "text"));
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
    EXPECT_THAT(std::filesystem::directory_iterator(folder)->path().filename().string(),
                "written.xml");
    document->createRootNode("plain", "");
    EXPECT_EQ(written(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plain/>\n");
    std::string text = "unchanged";
    document->writeString(text);
    EXPECT_EQ(text, "unchanged");
}

TEST_F(AnXmlDocument, LeavesTheOldFileWhenItCannotBeWritten) {
    const std::string path = file("kept.xml", "old");
    document->write(path);
    std::ifstream empty(path);
    EXPECT_EQ(streamToString(empty), "old") << "there is no document yet";
    document->createRootNode("new", "");
    std::filesystem::create_directory(path + ".part");
    testing::internal::CaptureStderr();
    document->write(path);
    document->write((folder / "missing" / "a.xml").string());
    document->write("/dev/full");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    std::ifstream stream(path);
    EXPECT_EQ(streamToString(stream), "old");
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

TEST_F(AnXmlDocument, StaysWithinTheBoundsForOutsideInput) {
    std::string deep;
    for (int i = 0; i < 100000; ++i) {
        deep += "<a>";
    }
    EXPECT_THAT(parseFailure(deep), HasSubstr("Excessive depth in document: 256"));

    std::string laughs = "<!DOCTYPE a [<!ENTITY e0 'lollollollollollol'>";
    for (int i = 1; i < 10; ++i) {
        laughs += "<!ENTITY e" + std::to_string(i) + " '";
        for (int k = 0; k < 10; ++k) {
            laughs += "&e" + std::to_string(i - 1) + ";";
        }
        laughs += "'>";
    }
    EXPECT_THAT(parseFailure(laughs + "]><a>&e9;</a>"), HasSubstr("entity reference loop"));
    EXPECT_THAT(parseFailure(laughs + "]><a x='&e9;'/>"), HasSubstr("entity reference loop"));

    const std::string huge(IXmlParser::maximumDocumentSize + 1, ' ');
    EXPECT_EQ(parseFailure(huge), "LibXml: Document not parsed successfully: document of 268435457 "
                                  "bytes exceeds the limit of 268435456 bytes");
    const std::string path = file("huge.xml", "");
    std::filesystem::resize_file(path, IXmlParser::maximumDocumentSize + 1);
    EXPECT_THAT(failureOf([&] { document->parse(path); }), HasSubstr("exceeds the limit"));
    EXPECT_THAT(failureOf([&] { document->parse("http://127.0.0.1:9/a.xml"); }),
                HasSubstr("Attempt to load network entity"));
}

TEST_F(AnXmlDocument, ReadsNothingBesideItself) {
    const std::string secret = file("secret", "secret text");
    const std::string dtd = file("outside.dtd", "<!ATTLIST a x CDATA 'from outside'>");
    const IXmlNode* root = read("<!DOCTYPE a SYSTEM '" + dtd + "' [<!ENTITY s SYSTEM '" + secret +
                                "'><!ENTITY i 'inside'>]><a>&s;|&i;</a>");
    EXPECT_EQ(root->getAttribute("x", "none"), "none");
    EXPECT_EQ(root->getContent(), "|inside");
    // A reference is a node of its own; the walk does not stray into the declarations.
    ASSERT_EQ(root->getChildren().size(), 3U);
    for (const IXmlNode* child : root->getChildren()) {
        EXPECT_FALSE(child->hasChildren());
        EXPECT_EQ(child->getFirstChild(), nullptr);
    }
}

TEST_F(AnXmlDocument, IsLetGoByItsHolder) {
    const SmartPointer<IXmlParser> parser = IXmlParser::getInstance("LibXmlParser");
    {
        const XmlDocumentHolder holder(parser);
        holder->parseString("<a><b/>text</a>");
        EXPECT_EQ(parser->getRootNode()->getChildren().size(), 2U);
    }
    EXPECT_EQ(parser->getRootNode(), nullptr);
    XmlDocumentHolder first;
    first->parseString("<first/>");
    XmlDocumentHolder second(std::move(first));
    EXPECT_EQ(second->getRootNode()->getName(), "first");
    XmlDocumentHolder third;
    third->parseString("<third/>");
    third = std::move(second);
    EXPECT_EQ(third->getRootNode()->getName(), "first");
    EXPECT_EQ(second.get(), nullptr); // NOLINT(bugprone-use-after-move): empty by contract
}

TEST_F(AnXmlDocument, CanBeLetGoWithoutEverBeingShared) {
    LibXmlParser parser;
    parser.parseString("<a><b/></a>");
    EXPECT_TRUE(parser.getRootNode()->getFirstChild()->hasParent());
    parser.cleanup();
    EXPECT_EQ(parser.getRootNode(), nullptr);
    parser.createRootNode("x", "");
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
    std::string text = "<a>";
    for (int i = 0; i < 1000000; ++i) {
        text += "<b/>";
    }
    EXPECT_EQ(read(text + "</a>")->getChildren().size(), 1000000U);
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
