// SPDX-License-Identifier: MIT
// Documents that are kept in parts: what a walk sees is what it sees of a whole one.
#include "misc/exception.h"
#include "misc/xml/ixmlparser.h"
#include "misc/xml/ixmlvalidator.h"
#include "misc/xml/libxmlparser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/tree.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

using namespace Orvil;
using testing::HasSubstr;

namespace {

constexpr std::size_t pieceSize = 65536; // of what libxml2 is fed

void record(const IXmlNode& node, std::string& out) {
    out += node.isText() ? "T" : node.isComment() ? "C" : "N";
    out += "(" + node.getName() + "," + node.getAttribute("a", "none") + ",";
    if (node.hasChildren()) {
        for (const IXmlNode* child = node.getFirstChild(); child != nullptr;) {
            record(*child, out);
            const bool hasNext = child->hasNextNode();
            child = child->getNextNode();
            EXPECT_EQ(hasNext, child != nullptr);
        }
    } else {
        out += node.getContent();
    }
    out += ")";
}

/// Everything that a walk from front to back comes by, or why the text is not parsed.
std::string walk(const std::string& text, int level) {
    const XmlDocumentHolder document;
    document->setPartLevel(level);
    std::string out;
    try {
        document->parseString(text);
        for (const IXmlNode* node = document->getRootNode(); node != nullptr;
             node = node->getNextNode()) {
            record(*node, out);
        }
    } catch (const Exception& failure) {
        return failure.descriptionMessage();
    }
    return out;
}

std::string utf16(const std::string& ascii) {
    std::string text = "\xFF\xFE";
    for (const char byte : ascii) {
        text += byte;
        text += '\0';
    }
    return text;
}

const std::string font = "<font a='&lt;1&#228;'>\n  <name>\xC3\xA4&amp;<![CDATA[<b>]]>c</name>"
                         "<!-- c --><?p i?>text<x/>\n</font>";

std::string repeated(const std::string& text, std::size_t least) {
    std::string result;
    while (result.size() < least) {
        result += text;
    }
    return result;
}

class ADocumentInParts : public testing::Test {
protected:
    IXmlNode* read(const std::string& text, int level) {
        document->cleanup();
        text_ = text;
        document->setPartLevel(level);
        document->parseString(text_);
        return document->getRootNode();
    }

    XmlDocumentHolder document;

private:
    std::string text_; // lives as long as the document
};

} // namespace

TEST_F(ADocumentInParts, IsWalkedLikeAWholeOne) {
    const std::string fonts = "<cmd><kind><window>1</window><fonts>" + font + "<!-- between -->\n" +
                              font + "</fonts><fonts>" + font + "</fonts></kind></cmd>";
    const std::string declared = "<!DOCTYPE cmd [<!ENTITY e 'entity'><!ATTLIST font a CDATA 'd'>]>";
    for (const std::string& text : std::vector<std::string>{
             "<a/>", "<a>text</a><!-- end -->", fonts,
             "<?xml version='1.0'?><!-- c --><!DOCTYPE cmd>\n" + fonts + "\n<!-- end --><?p i?>\n",
             "<?xml version='1.0' encoding='ISO-8859-1'?><a><b>\xE4</b>\xF6<b a='\xFC'/></a>",
             std::string("<a><b/></a>\0\0", 13), utf16("<a><b>text</b> <b a='1'/><!-- c --></a>"),
             declared + fonts, declared + "<cmd><font>&e;</font>&e;<font/></cmd>",
             "<a>1\r2\r\n<b a='\r'><![CDATA[\r\n3\r]]></b><![CDATA[\n]]></a>",
             "<!DOCTYPE a SYSTEM 'none'><a><b>&unknown;</b>x&unknown;</a>",
             "<a><b>" + std::string(3 * pieceSize, 'x') + "&amp;y</b><b a='" +
                 std::string(2 * pieceSize, 'z') + "'/></a>"}) {
        const std::string whole = walk(text, 0);
        EXPECT_THAT(whole, testing::StartsWith("N("));
        for (int level = 1; level < 6; ++level) {
            EXPECT_EQ(walk(text, level), whole) << text.substr(0, 300) << level;
        }
    }
}

TEST_F(ADocumentInParts, IsTheSameWhereverItsTextIsDivided) {
    const std::string end = repeated(font, font.size() * 3) + "</fonts></cmd>";
    for (std::size_t shift = 0; shift < font.size() + 5; ++shift) {
        const std::string start = "<cmd>" + std::string(shift, ' ') + "<fonts>";
        const std::string text =
            start + repeated(font, pieceSize - start.size() - font.size()) + end;
        ASSERT_EQ(walk(text, 2), walk(text, 0)) << shift;
    }
}

TEST_F(ADocumentInParts, HoldsOnlyThePartThatIsThere) {
    constexpr int count = 20000;
    std::string text = "<cmd><fonts>";
    for (int i = 0; i < count; ++i) {
        text += "<font a='" + std::to_string(i) + "'><name>n</name></font>";
    }
    IXmlNode* const fonts = read(text + "</fonts></cmd>", 2)->getFirstTagChild();
    IXmlNode* const first = fonts->getFirstTagChild();
    int number = 0;
    for (const IXmlNode* part = first; part != nullptr; part = part->getNextTagNode(), ++number) {
        ASSERT_EQ(part, first);
        ASSERT_EQ(part->getAttribute("a", ""), std::to_string(number));
        ASSERT_EQ(part->getParent(), fonts);
        ASSERT_EQ(part->getFirstChild()->getParent(), part);
        ASSERT_EQ(part->getFirstChild()->getContent(), "n");
        ASSERT_EQ(part->getFirstChild(), part->getFirstChild());
    }
    EXPECT_EQ(number, count);
    // The last one remains.
    EXPECT_EQ(fonts->getFirstChild()->getAttribute("a", ""), std::to_string(count - 1));
    const xmlNode* const node = dynamic_cast<LibXmlNode*>(fonts)->getNode();
    EXPECT_EQ(node->children, node->last);
}

TEST_F(ADocumentInParts, GivesTheWholeContentOfWhatStandsAbove) {
    const std::string text = std::string(2 * pieceSize, 'x');
    IXmlNode* const window =
        read("<cmd><window>" + text + "<b>1</b>" + text + "</window><n/></cmd>", 3)
            ->getFirstChild();
    EXPECT_EQ(window->getContent(), text + "1" + text);
    EXPECT_EQ(window->getFirstChild()->getContent(), text);
    EXPECT_EQ(window->getNextNode()->getName(), "n");
    EXPECT_EQ(document->getRootNode()->getContent(), text + "1" + text);
}

TEST_F(ADocumentInParts, IsRefusedLikeAWholeOne) {
    for (const std::string& text : std::vector<std::string>{
             "", "<a>", "<a></b>", "<a/>x", "<a>&e;</a>", "<!-- c -->", "<a>\xFF</a>",
             "<a b='1' b='2'/>", "<a>]]></a>", "<a>\x01</a>", repeated("<a>", 3000),
             "<a><b>" + std::string(pieceSize, 'x') + "</c></a>"}) {
        const std::string failure = walk(text, 0);
        EXPECT_THAT(failure, HasSubstr("LibXml: Document not parsed successfully: "));
        EXPECT_EQ(walk(text, 3), failure) << text.substr(0, 100);
        EXPECT_EQ(document->getRootNode(), nullptr);
    }
}

TEST_F(ADocumentInParts, IsWholeWhenItCouldNotBeReadAlike) {
    for (const std::string text :
         {"<!DOCTYPE a [<!ENTITY % e 'x'>]><a><b/><b/></a>", "<a><b/><b p:c='1'/></a>",
          "<a><b/><b><![CDATA[1]]></b></a>\r\n"}) {
        const IXmlNode* const root = read(text, 1);
        EXPECT_NE(root->getChildren()[0], root->getChildren()[1]);
    }
}

TEST_F(ADocumentInParts, IsNotWritten) {
    read("<a><b/></a>", 1);
    const std::string path =
        (std::filesystem::temp_directory_path() / "orvil-xmlparts-none.xml").string();
    document->write(path);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(ADocumentInParts, IsValidatedLikeAWholeOne) {
    const SmartPointer<IXmlValidator> validator =
        IXmlValidator::getInstance("LibXmlSchemaValidator");
    validator->parseSpecificationString(
        "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='a'>"
        "<xs:complexType><xs:sequence><xs:element name='n' type='xs:int' minOccurs='0' "
        "maxOccurs='unbounded'/><xs:element name='t' minOccurs='0'><xs:simpleType><xs:restriction "
        "base='xs:string'><xs:maxLength value='2000000'/></xs:restriction></xs:simpleType>"
        "</xs:element></xs:sequence><xs:attribute name='k' type='xs:token'/></xs:complexType>"
        "</xs:element></xs:schema>");
    const std::string numbers = repeated("<n>1</n> <n><!-- c -->2<![CDATA[3]]></n>\n", pieceSize);
    for (const auto& [text, isValid] : std::vector<std::pair<std::string, bool>>{
             {"<a/>", true},
             {"<a k='a&amp;b'>" + numbers + numbers + "</a>", true},
             {"<a>" + numbers + "<n>x</n>" + numbers + "<m/></a>", false},
             {"<a>" + numbers + "text</a>", false},
             {"<a><![CDATA[ ]]></a>", false},
             {"<a><n/></a>", false},
             {"<a k='1' j='2'/>", false},
             {"<a p:k='1'/>", false},
             {"<p:a/>", false},
             {"<b/>", false},
             {"<a xmlns='urn:x'/>", false},
             {"<a><t>" + repeated("&amp;.", 1999996) + "</t></a>", true},
             {"<a><t>" + std::string(2000001, 'x') + "</t></a>", false}}) {
        for (int level = 0; level < 3; ++level) {
            EXPECT_EQ(validator->validate(read(text, level)), isValid) << text.substr(0, 100);
            const std::vector<std::string> errors = validator->getErrors();
            EXPECT_EQ(errors.empty(), isValid);
            validator->validate(read(text, 0));
            EXPECT_EQ(errors, validator->getErrors());
        }
    }
    // Other nodes are read to their ends for that.
    EXPECT_TRUE(validator->validate(read("<r><a>" + numbers + "</a></r>", 2)->getFirstChild()));
    EXPECT_FALSE(validator->validate(read("<r><a>" + numbers + "x</a></r>", 2)->getFirstChild()));
    for (int level = 0; level < 2; ++level) {
        IXmlNode* const root = read("<!DOCTYPE a SYSTEM 'none'><a>&unknown;</a>", level);
        EXPECT_THROW(validator->validate(root), Exception) << level;
    }
}

TEST_F(ADocumentInParts, MayHoldTextsThatAWholeOneMayNot) {
    // libxml2 cuts such a text in a tree that it reads at once, and calls the document good.
    const std::string text = "<a><b>" + repeated(std::string(1000, 'x') + "&lt;", 12'000'000);
    EXPECT_THAT(walk(text + "</b></a>", 0), HasSubstr("huge text node"));
    EXPECT_EQ(read(text + "</b></a>", 1)->getFirstChild()->getContent().size(),
              (text.size() - 6) / 1004 * 1001);
}
