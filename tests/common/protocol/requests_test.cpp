// SPDX-License-Identifier: MIT
// Requests as documents, and the schema that describes them.
#include "misc/xml/ixmlparser.h"
#include "misc/xml/ixmlvalidator.h"
#include "protocolhandler.h"
#include "protocolschema.h"
#include "samplefonts.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace Protocol;

namespace {

std::string document(const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<cmd xmlns=\"http://glyphora.org/schema/GlyPluginCommunication_1.0\">" +
           content + "</cmd>\n";
}

/// What the schema has against the document; empty when it is valid.
std::vector<std::string> complaints(const std::string& xml) {
    const auto validator = Orvil::IXmlValidator::getInstance("LibXmlSchemaValidator");
    validator->parseSpecificationString(schemaText);
    const Orvil::XmlDocumentHolder parser;
    parser->parseString(xml);
    const bool isValid = validator->validate(parser->getRootNode());
    EXPECT_EQ(isValid, validator->getErrors().empty());
    return validator->getErrors();
}

// fullFont's, as they are written.
const std::string writtenSyncID = "s&quot;&amp;&#10;";
const std::string writtenPsName = "A&amp;B&lt;]]&gt;";

} // namespace

TEST(ARequestDocument, HoldsTheElementsOfItsKindInOrder) {
    Font plain;
    plain.syncID = "1";
    plain.psName = "Foo";
    const FontList fonts{plain, fullFont()};
    const std::pair<std::string, std::string> cases[] = {
        {Handler::createFontRequest({true, fonts, "ART5", "FILC"}),
         "<fontRequest><mustMatchFontType>true</mustMatchFontType><targetApp>ART5</targetApp>"
         "<targetClass>FILC</targetClass><fonts>"
         "<font syncID=\"1\"><psName>Foo</psName><type>all</type><familyName/><styleName/></font>"
         "<font syncID=\"" +
             writtenSyncID + "\"><psName>" + writtenPsName +
             "</psName><type>OT_TT</type><familyName>\xc3\x84</familyName>"
             "<styleName> \xf0\x9f\x98\x80&#13;</styleName></font></fonts></fontRequest>"},
        {Handler::createFontRequest({false, {}, "", ""}),
         "<fontRequest><mustMatchFontType>false</mustMatchFontType><fonts/></fontRequest>"},
        {Handler::createFontRequest({false, {}, "", "c"}),
         "<fontRequest><mustMatchFontType>false</mustMatchFontType><targetClass>c</targetClass>"
         "<fonts/></fontRequest>"},
        {Handler::createShowRequest({false, fonts}),
         "<showRequest><mustMatchFontType>false</mustMatchFontType><fonts>"
         "<font syncID=\"1\"><containerID/><psName>Foo</psName><type>all</type></font>"
         "<font syncID=\"" +
             writtenSyncID + "\"><containerID>9</containerID><psName>" + writtenPsName +
             "</psName><type>OT_TT</type></font></fonts></showRequest>"},
        {Handler::createActivationRequest(ActivationRequest(fonts)),
         "<activationRequest><fonts>"
         "<font syncID=\"1\"><containerID/><psName>Foo</psName></font>"
         "<font syncID=\"" +
             writtenSyncID + "\"><containerID>9</containerID><psName>" + writtenPsName +
             "</psName></font></fonts></activationRequest>"},
        {Handler::createBuyRequest(BuyRequest(fullFont())),
         "<buyRequest><font syncID=\"" + writtenSyncID + "\"><psName>" + writtenPsName +
             "</psName></font></buyRequest>"},
    };
    for (const auto& [written, expected] : cases) {
        EXPECT_EQ(written, document(expected));
        EXPECT_EQ(complaints(written), std::vector<std::string>());
    }
}

TEST(ARequestDocument, IsNotMadeOfWhatXmlCannotHold) {
    for (const char* const text :
         {"\x01", "a\x1f", "\xff", "\xc3", "\xc3\xa4\x80", "\xc3(", "\xed\xa0\x80", "\xef\xbf\xbe",
          "\xef\xbf\xbf", "\xc0\x80", "\xf4\x90\x80\x80"}) {
        for (std::string Font::*const field : {&Font::psName, &Font::syncID}) {
            Font font = soundFont();
            font.*field = text;
            EXPECT_THROW(std::ignore = Handler::createBuyRequest(BuyRequest(font)),
                         Orvil::SerializationException);
        }
    }
    for (const char* const text : {"\x7f", "\xc2\x80", "\xef\xbf\xbd", "\xf4\x8f\xbf\xbf"}) {
        Font font = soundFont();
        font.psName = text;
        EXPECT_NO_THROW(std::ignore = Handler::createBuyRequest(BuyRequest(font)));
    }
}

TEST(TheSchema, RejectsWhatIsNotInTheProtocol) {
    const std::string font = "<font syncID=\"1\"><psName>a</psName></font>";
    const std::string infos = "<activationRequestReply><fonts><font syncID=\"1\"><fontInfos>";
    const std::string infosEnd = "</fontInfos></font></fonts></activationRequestReply>";
    const std::vector<std::string> contents{
        infos + infosEnd,
        infos + "<fontInfo><name/></fontInfo>" + infosEnd,
        infos + "<fontInfo><value/><name/></fontInfo>" + infosEnd,
        infos + "<fontInfo><name/><value/><value/></fontInfo>" + infosEnd,
        "<unknown/>",
        "<buyRequest><fonts>" + font + "</fonts></buyRequest>",
        "<buyRequest>" + font + font + "</buyRequest>",
        "<buyRequest><font><psName>a</psName></font></buyRequest>",
        "<activationRequest><fonts>" + font + "</fonts></activationRequest>", // no container
        "<activationRequestReply><fonts/></activationRequestReply>",
        "<activationRequestReply><fonts><font syncID=\"1\"/></fonts></activationRequestReply>",
        "<activationRequestReply><fonts>text" + font + "</fonts></activationRequestReply>",
        "<fontRequestReply><fonts>" + font + "</fonts></fontRequestReply>",
        "<fontRequestReply><showWindow>1</showWindow></fontRequestReply>",
        "<fontRequestReply><showWindow>1</showWindow><fonts>" + font +
            "</fonts><more/></fontRequestReply>",
        "<fontRequestReply><showWindow>yes</showWindow><fonts>" + font +
            "</fonts></fontRequestReply>",
        "<buyRequestReply/>",
        "<buyRequestReply><handled>1</handled><handled>1</handled></buyRequestReply>",
    };
    for (const std::string& content : contents) {
        EXPECT_FALSE(complaints(document(content)).empty()) << content;
    }
    EXPECT_TRUE(
        complaints(document(infos + "<fontInfo><name/><value/></fontInfo>" + infosEnd)).empty());
    for (const std::string attribute :
         {"", " xmlns=\"http://glyphora.org/schema/GlyPluginCommunication_2.0\""}) {
        const std::string buy = "<buyRequestReply><handled>1</handled></buyRequestReply>";
        EXPECT_FALSE(complaints("<cmd" + attribute + ">" + buy + "</cmd>").empty()) << attribute;
    }
}
