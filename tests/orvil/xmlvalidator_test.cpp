// SPDX-License-Identifier: MIT
// Schemas: what they accept, what they say, and how they fail.
#include "misc/xml/ixmlvalidator.h"
#include "misc/xml/libxmlvalidator.h"
#include "xmldocument.h"

#include <tuple>

using namespace Orvil;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const std::string schemaText =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='a'><xs:complexType>"
    "<xs:sequence><xs:element name='n' type='xs:int' maxOccurs='unbounded'/></xs:sequence>"
    "</xs:complexType></xs:element></xs:schema>";

class ASchema : public OrvilTests::AnXmlDocument {
protected:
    bool accepts(const std::string& text) { return validator->validate(read(text)); }

    SmartPointer<IXmlValidator> validator = IXmlValidator::getInstance("LibXmlSchemaValidator");
};

} // namespace

TEST_F(ASchema, CollectsTheReasonsOfOneValidation) {
    EXPECT_TRUE(IXmlValidator::getInstance("Other") == nullptr);
    validator->parseSpecificationString(schemaText);
    EXPECT_TRUE(accepts("<a><n>1</n></a>"));
    EXPECT_THAT(validator->getErrors(), IsEmpty());
    EXPECT_FALSE(accepts("<a><n>x</n><n>y</n></a>"));
    ASSERT_THAT(validator->getErrors(), SizeIs(2));
    EXPECT_THAT(validator->getErrors()[0], HasSubstr("Element 'n': 'x' is not a valid"));
    EXPECT_FALSE(accepts("<a/>"));
    EXPECT_THAT(validator->getErrors(), SizeIs(1));
    EXPECT_FALSE(validator->doValidate(document->getRootNode()));
    EXPECT_THAT(validator->getErrors(), SizeIs(2)) << "only validate() starts afresh";
    EXPECT_THAT(validator->getWarnings(), IsEmpty());
}

TEST_F(ASchema, IsReadFromAFile) {
    const std::string path = file("schema.xsd", schemaText);
    const auto readSchema = [&] { validator->parseSpecification(path); };
    readSchema();
    EXPECT_TRUE(accepts("<a><n>1</n></a>"));
    EXPECT_FALSE(accepts("<b/>"));
    const std::string named = "LibXml: Schema Document " + path;
    file("schema.xsd", "<a>");
    EXPECT_EQ(failureOf(readSchema), named + " not parsed successfully.");
    file("schema.xsd", "<a/>");
    EXPECT_EQ(failureOf(readSchema), named + " schema parsing unsuccessful.");
    EXPECT_EQ(failureOf([&] { accepts("<a><n>1</n></a>"); }),
              "LibXml: No Schema loaded for validation")
        << "the earlier schema is gone";
    std::filesystem::remove(path);
    EXPECT_EQ(failureOf(readSchema), named + " not parsed successfully.");
}

TEST_F(ASchema, FailsWithFixedMessages) {
    document->parseString("<a/>");
    const auto validate = [&](IXmlNode* node) {
        return failureOf([&] { std::ignore = validator->validate(node); });
    };
    EXPECT_EQ(validate(document->getRootNode()), "LibXml: No Schema loaded for validation");
    EXPECT_EQ(validate(nullptr), "LibXmlSchemaValidator can only validate LibXmlNodes");
    EXPECT_EQ(failureOf([&] { validator->parseSpecificationString(""); }),
              "LibXml: Memory schema parser context unsuccessful.");
    EXPECT_EQ(failureOf([&] { validator->parseSpecificationString("<a/>"); }),
              "LibXml: Memory schema parsing unsuccessful.");
    validator->parseSpecificationString(schemaText);
    document->parseString("<!-- c --><a/><!-- d -->");
    EXPECT_EQ(validate(document->getRootNode()->getNextNode()),
              "LibXml: Could not create validation context");
}

TEST_F(ASchema, CutsLongMessagesAndRefusesANullValidator) {
    const std::string text(1000, 'x');
    LibXmlSchemaValidator::onError(validator.get(), "%s", text.c_str());
    LibXmlSchemaValidator::onWarning(validator.get(), "%d %s", 7, "w");
    EXPECT_THAT(validator->getErrors(), testing::ElementsAre(text.substr(0, 499)));
    EXPECT_THAT(validator->getWarnings(), testing::ElementsAre("7 w"));
    validator->clearMessages();
    EXPECT_THAT(validator->getErrors(), IsEmpty());
    EXPECT_EQ(failureOf([] { LibXmlSchemaValidator::onError(nullptr, "x"); }),
              "LibXml: validity error function got bad context.");
    EXPECT_EQ(failureOf([] { LibXmlSchemaValidator::onWarning(nullptr, "x"); }),
              "LibXml: validity warning function got bad context.");
}
