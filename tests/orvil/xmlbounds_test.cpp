// SPDX-License-Identifier: MIT
// What documents from outside may not do.
#include "xmldocument.h"

using namespace Orvil;
using testing::AllOf;
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
    EXPECT_EQ(parseFailure(huge), "LibXml: Document not parsed successfully: document of 268435457 "
                                  "bytes exceeds the limit of 268435456 bytes");
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
    struct Case {
        std::string start;
        std::string unit;
        int fits; // units; one more does not
        std::string end;
    };
    for (const Case& each : std::vector<Case>{
             {entity + "]><a>", "&e;", 50, "</a>"},
             {entity + "]><a><b x='", "&e;", 50, "'/></a>"},
             {entity + "]><a>", "<b x='&e;'/>", 50, "</a>"},
             {entity + "]><a><b x='&e;'/>", "&e;", 49, "</a>"},
             {nested, "&f;", 8, "</a>"}, // looking into each for the first time counts as well
             {defaulted, "<b/>", 49, "</a>"}}) {
        std::string text = each.start;
        for (int i = 0; i < each.fits; ++i) {
            text += each.unit;
        }
        EXPECT_LE(read(text + each.end)->getContent().size(), 1'000'000U);
        text += each.unit;
        EXPECT_THAT(parseFailure(text + each.end), HasSubstr("grow by more than 1000000 bytes"));
        EXPECT_THAT(failureOf([&] { document->parse(file("grows.xml", text + each.end)); }),
                    HasSubstr("grow by more than 1000000 bytes"));
    }
    // Where the document itself is large, tenfold is meant.
    std::string large = entity + "]><a><!--" + std::string(500'000, ' ') + "-->";
    for (int i = 0; i < 200; ++i) {
        large += "&e;";
    }
    EXPECT_EQ(read(large + "</a>")->getContent().size(), 4'000'000U);
}

TEST_F(AnXmlDocumentFromOutside, HasABoundedNumberOfAttributesPerElement) {
    const auto attributes = [](int count, const std::string& separator) {
        std::string text;
        for (int i = 0; i < count; ++i) {
            text += separator + "a" + std::to_string(i) + "=''";
        }
        return text;
    };
    const auto utf16 = [](const std::string& ascii) {
        std::string text = "\xFE\xFF";
        for (const char byte : ascii) {
            text += '\0';
            text += byte;
        }
        return text;
    };
    const std::string reason = ": an element has more than 256 attributes";
    for (const std::string separator : {" ", "\n", " p:"}) {
        const std::string start = "<r xmlns:p='u'>\n<!-- ' --><b/>'<a";
        const std::string most = start + attributes(256, separator);
        const std::string tooMany = start + attributes(257, separator);
        EXPECT_EQ(read(most + "/></r>")->getFirstChild("a")->getAttribute("a255", "none"), "");
        EXPECT_THAT(parseFailure(tooMany + "/></r>"), HasSubstr("line 2, column 16" + reason));
        read(utf16(most + ">" + attributes(300, " ") + "</a></r>"));
        EXPECT_THAT(parseFailure(utf16(tooMany + "/></r>")), HasSubstr(reason));
        const std::string path = file("many.xml", tooMany + "/></r>");
        EXPECT_THAT(failureOf([&] { document->parse(path); }), HasSubstr(reason));
        document->setPartLevel(1);
        EXPECT_THAT(parseFailure(tooMany + "/></r>"), HasSubstr(reason));
        document->setPartLevel(0);
    }
    // Nor may they come out of declarations.
    EXPECT_THAT(parseFailure("<!DOCTYPE a [<!ENTITY e \"&#60;b" + attributes(257, " ") +
                             "/>\">]><a>&e;</a>"),
                HasSubstr("entity e" + reason));
    std::string defaults = "<!DOCTYPE a [<!ATTLIST b";
    for (int i = 0; i < 257; ++i) {
        defaults += " a" + std::to_string(i) + " CDATA ''";
    }
    EXPECT_THAT(parseFailure(defaults + ">]><a/>"), HasSubstr("element b has more than 256"));
    // Texts are none.
    const std::string text = attributes(1000, " ");
    EXPECT_EQ(read("<a>" + text + "</a>")->getContent(), text);
    EXPECT_EQ(read("<a><![CDATA[" + text + "]]></a>")->getContent(), text);
    EXPECT_EQ(read("<a b=\"" + text + "\"/>")->getAttribute("b", ""), text);
    // Where tags cannot be told, a large document is refused as a whole.
    const std::string declared = "<?xml version='1.0' encoding='ISO-2022-JP'?>";
    EXPECT_EQ(read(declared + "<a>b</a>")->getContent(), "b");
    const std::string spaces = "<a>" + std::string(70'000, ' ') + "</a>";
    EXPECT_THAT(parseFailure(declared + spaces), HasSubstr("cannot be in this encoding"));
    for (const std::string name : {"ISO_8859-15", "macintosh", "IBM850", "CP866", "TIS-620"}) {
        read("<?xml version='1.0' encoding='" + name + "'?>" + spaces);
    }
}

TEST_F(AnXmlDocumentFromOutside, HasBoundedNumbersOfNamespacesAndNames) {
    const auto repeat = [](const std::string& before, int count, const std::string& behind) {
        std::string text;
        for (int i = 0; i < count; ++i) {
            text += before + std::to_string(i) + behind;
        }
        return text;
    };
    const std::string one = "<a" + repeat(" xmlns:p", 200, "='u'");
    const std::string most = "<r>\n" + one + "/>" + one + "><b" + repeat(" xmlns:q", 56, "='u'");
    struct Case {
        std::string start;
        std::string before;
        std::string behind;
        std::string end;
    };
    const std::vector<Case> names{{"<r>", "<n", "/>", "</r>"},
                                  {"<r>", "<?n", "?>", "</r>"},
                                  {"<!DOCTYPE r [", "<!ELEMENT n", " ANY>", "]><r/>"},
                                  {"<!DOCTYPE r [", "<!ENTITY n", " 'x'>", "]><r/>"},
                                  {"<!DOCTYPE r [", "<!ATTLIST r n", " CDATA #IMPLIED>", "]><r/>"}};
    for (const int partLevel : {0, 1}) {
        document->setPartLevel(partLevel);
        EXPECT_EQ(read(most + "/></a>c</r>")->getContent(), "\nc");
        EXPECT_THAT(parseFailure(most + " xmlns='u'/></a></r>"),
                    AllOf(HasSubstr("successfully: line 2, column "),
                          HasSubstr(": more than 256 declarations of namespaces hold")));
    }
    for (const Case& each : names) {
        EXPECT_THAT(parseFailure(each.start + repeat(each.before, 100'001, each.behind) + each.end),
                    HasSubstr(": more than 100000 different names"))
            << each.before;
    }
    EXPECT_THAT(parseFailure("<r>" + repeat("<n12345678901234567890", 70'000, "/>") + "</r>"),
                HasSubstr(": names and defaults of attributes take more than 1 MB"));
    std::string defaults = "<!DOCTYPE r [";
    for (char name = 'a'; name < 'g'; ++name) {
        const std::string value =
            std::string().append(9'000'000, name); // libxml2 cannot keep all of them
        defaults += std::string("<!ATTLIST r ") + name + " CDATA '" + value + "'>";
    }
    EXPECT_THAT(parseFailure(defaults + "]><r/>"), HasSubstr("take more than 1 MB"));
    // Behind a fault nothing is counted: there a large document is not read on.
    const std::string faulty = "<r><b></c></r>x";
    EXPECT_THAT(parseFailure(faulty), HasSubstr("Extra content"));
    EXPECT_THAT(parseFailure(faulty + std::string(1'000'000, ' ')), HasSubstr("tag mismatch"));
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
