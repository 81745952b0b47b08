// SPDX-License-Identifier: MIT
// What documents from outside may not do.
#include "xmldocument.h"

#include <tuple>

using namespace Orvil;
using testing::HasSubstr;

namespace {

class AnXmlDocumentFromOutside : public OrvilTests::AnXmlDocument {};

} // namespace

TEST_F(AnXmlDocumentFromOutside, StaysWithinTheBoundsForOutsideInput) {
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
    EXPECT_EQ(parseFailure(huge), "LibXml: Document not parsed successfully: document of 67108865 "
                                  "bytes exceeds the limit of 67108864 bytes");
    const std::string path = file("huge.xml", "");
    std::filesystem::resize_file(path, IXmlParser::maximumDocumentSize + 1);
    EXPECT_THAT(failureOf([&] { document->parse(path); }), HasSubstr("exceeds the limit"));
    EXPECT_THAT(failureOf([&] { document->parse("http://127.0.0.1:9/a.xml"); }),
                HasSubstr("Attempt to load network entity"));
}

TEST_F(AnXmlDocumentFromOutside, GrowsInBoundsByWhatItDeclares) {
    const std::string longText(20'000, 'x');
    const std::string entity = "<!DOCTYPE a [<!ENTITY e '" + longText + "'>";
    const std::string nested = entity + "<!ENTITY f '&e;&e;&e;&e;&e;'>]><a>";
    const std::string defaulted = "<!DOCTYPE a [<!ATTLIST b x CDATA '" + longText + "'>]><a>";
    // What stands before as many units as fit (one more does not), and what behind them.
    const std::tuple<std::string, std::string, int, std::string> cases[] = {
        {entity + "]><a>", "&e;", 50, "</a>"},
        {entity + "]><a><b x='", "&e;", 50, "'/></a>"},
        {entity + "]><a>", "<b x='&e;'/>", 50, "</a>"},
        {entity + "]><a><b x='&e;'/>", "&e;", 49, "</a>"},
        {nested, "&f;", 8, "</a>"}, // looking into each for the first time counts as well
        {defaulted, "<b/>", 49, "</a>"}};
    for (const auto& [start, unit, fits, end] : cases) {
        std::string text = start;
        for (int i = 0; i < fits; ++i) {
            text += unit;
        }
        EXPECT_LE(read(text + end)->getContent().size(), 1'000'000U);
        text += unit + end;
        EXPECT_THAT(parseFailure(text), HasSubstr("grow by more than 1000000 bytes"));
        EXPECT_THAT(failureOf([&] { document->parse(file("grows.xml", text)); }),
                    HasSubstr("grow by more than 1000000 bytes"));
    }
    // Where the document itself is large, tenfold is meant.
    std::string large = entity + "]><a><!--" + std::string(500'000, ' ') + "-->";
    for (int i = 0; i < 260; ++i) {
        large += "&e;";
    }
    EXPECT_EQ(read(large + "</a>")->getContent().size(), 5'200'000U);
    EXPECT_THAT(parseFailure(large + "&e;</a>"), HasSubstr("grow by more than 520"));
}

TEST_F(AnXmlDocumentFromOutside, IsNotBoundedInWhatIsWellFormed) {
    const auto repeat = [](const std::string& before, int count, const std::string& behind) {
        std::string text;
        for (int i = 0; i < count; ++i) {
            text += before + std::to_string(i) + behind;
        }
        return text;
    };
    const std::string attributes = repeat(" a", 300, "='x'");
    EXPECT_EQ(read("<r" + attributes + "/>")->getAttribute("a299", ""), "x");
    EXPECT_EQ(read("<r" + repeat(" xmlns:p", 300, "='u'") + "><p299:a/></r>")->getName(), "r");
    EXPECT_EQ(read("<r>" + repeat("<n", 100'001, "/>") + "</r>")->getChildren().size(), 100'001U);
    // Nor in what only looks like a start tag.
    const std::string tag = "<r" + repeat(" a", 100'000, "='x'") + "/>";
    EXPECT_EQ(read("<r><![CDATA[" + tag + "]]></r>")->getContent(), tag);
    EXPECT_EQ(read("<r><!--" + tag + "--></r>")->getFirstChild()->getContent(), tag);
}

TEST_F(AnXmlDocumentFromOutside, ReadsNothingBesideItself) {
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
