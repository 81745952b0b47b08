// SPDX-License-Identifier: MIT
// Replies that mean harm: each is refused by an exception, and the handler goes on.
#include "misc/exception.h"
#include "protocolhandler.h"
#include "protocolschema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

using namespace Protocol;
using testing::HasSubstr;

namespace {

const std::string head = "<cmd xmlns=\"http://glyphora.org/schema/GlyPluginCommunication_1.0\">";

std::string repeat(const std::string& text, int times) {
    std::string result;
    result.reserve(text.size() * static_cast<std::size_t>(times));
    for (int i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

std::string reply(const std::string& syncID, const std::string& psName) {
    return head + "<activationRequestReply><fonts><font syncID=\"" + syncID + "\"><psName>" +
           psName + "</psName></font></fonts></activationRequestReply></cmd>";
}

class AHostileReply : public testing::Test {
protected:
    enum class Outcome { Accepted, NotXml, Rejected };

    Outcome outcomeOf(const std::string& xml) {
        testing::internal::CaptureStderr();
        Outcome outcome = Outcome::Accepted;
        try {
            handler_.parseReply(xml);
        } catch (const Orvil::Exception& failure) {
            message_ = failure.descriptionMessage();
            outcome = Outcome::NotXml;
        } catch (const std::runtime_error&) {
            outcome = Outcome::Rejected;
        }
        testing::internal::GetCapturedStderr();
        return outcome;
    }
    ~AHostileReply() override {
        EXPECT_EQ(handler_.parseReply(reply("1", "a")).activationReply->fonts.front().psName, "a");
    }

    Handler handler_{schemaText};
    std::string message_; // of the last outcome that is notXml
};

} // namespace

TEST_F(AHostileReply, CutAtAnyByteIsNotXml) {
    const std::string whole = "<?xml version=\"1.0\"?>" + reply("1", "\xc3\xa4&amp;<![CDATA[b]]>");
    ASSERT_EQ(outcomeOf(whole), Outcome::Accepted);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(outcomeOf(whole.substr(0, length)), Outcome::NotXml) << length;
    }
}

TEST_F(AHostileReply, WithBombsOfEntitiesIsNotRead) {
    std::string nested = "<!ENTITY a \"aaaaaaaaaa\">";
    for (char name = 'b'; name <= 'm'; ++name) {
        const std::string reference = std::string("&") + static_cast<char>(name - 1) + ";";
        nested += std::string("<!ENTITY ") + name + " \"" + repeat(reference, 10) + "\">";
    }
    const std::string large = "<!ENTITY m \"" + std::string(1'000'000, 'a') + "\">";
    const std::string recursive = "<!ENTITY m \"&n;\"><!ENTITY n \"&m;\">";
    const std::string external = "<!ENTITY m SYSTEM \"file:///etc/passwd\">";
    const std::string parameter = "<!ENTITY % m SYSTEM \"file:///etc/passwd\">%m;<!ENTITY m 'x'>";
    const std::string loop = "Detected an entity reference loop";
    const std::string growth = "make the document grow by more than 13002090 bytes";
    const std::string refusal = "a reply must not declare entities"; // the codec's own
    struct Case {
        std::string entities;
        std::string reasonInText;
        std::string reasonInAttribute;
    };
    for (const Case& each :
         std::vector<Case>{{nested, loop, loop},
                           {large, growth, growth},
                           {recursive, loop, loop},
                           {external, refusal, "Attribute references external entity 'm'"},
                           {parameter, refusal, refusal}}) {
        const std::string dtd = "<!DOCTYPE cmd [" + each.entities + "]>";
        EXPECT_EQ(outcomeOf(dtd + reply("1", repeat("&m;", 100'000))), Outcome::NotXml);
        EXPECT_THAT(message_, HasSubstr(each.reasonInText));
        EXPECT_EQ(outcomeOf(dtd + reply(repeat("&m;", 100'000), "a")), Outcome::NotXml);
        EXPECT_THAT(message_, HasSubstr(each.reasonInAttribute));
    }
    // Nor is one that has no need of them.
    for (const std::string entity : {"<!ENTITY m 'x'>", "<!ENTITY % m 'x'>"}) {
        EXPECT_EQ(outcomeOf("<!DOCTYPE cmd [" + entity + "]>" + reply("1", "a")), Outcome::NotXml);
        EXPECT_THAT(message_, HasSubstr(refusal));
    }
}

TEST_F(AHostileReply, ThatIsDeepOrLargeIsBounded) {
    EXPECT_EQ(outcomeOf(head + repeat("<a>", 1'000'000)), Outcome::NotXml);
    EXPECT_EQ(outcomeOf(head + repeat("<a>", 200) + repeat("</a>", 200) + "</cmd>"),
              Outcome::Rejected);
    const std::string name = repeat(std::string(1'000, 'a'), 100'000);
    EXPECT_EQ(outcomeOf(head + "<" + name + "/></cmd>"), Outcome::NotXml);
    // A text of that size is only a text.
    const std::string xml = reply("1", name);
    EXPECT_EQ(handler_.parseReply(xml).activationReply->fonts.front().psName.size(), name.size());
    // Nor is any of it lost when libxml2 gets it in many pieces.
    const std::string pieces = repeat(std::string(1'000, 'a') + "&amp;", 12'000);
    EXPECT_EQ(handler_.parseReply(reply("1", pieces)).activationReply->fonts.front().psName.size(),
              12'000 * 1'001U);
    // Beyond the limit of a document.
    EXPECT_EQ(outcomeOf(std::string((std::size_t{256} << 20U) + 1, ' ')), Outcome::NotXml);
}

TEST_F(AHostileReply, ThatGrowsByItsDeclarationsIsNotRead) {
    const std::string dtd =
        "<!DOCTYPE cmd [<!ATTLIST font syncID CDATA '" + std::string(20'000, 'a') + "'>]>" + head;
    const std::string start = dtd + "<activationRequestReply><fonts>";
    const std::string end = "</fonts></activationRequestReply></cmd>";
    const std::string font = "<font><psName>a</psName></font>";
    // The schema wants the attribute itself.
    EXPECT_EQ(outcomeOf(start + repeat(font, 40) + end), Outcome::Rejected);
    EXPECT_EQ(outcomeOf(start + repeat(font, 5'000) + end), Outcome::NotXml);
}

TEST_F(AHostileReply, WithVeryManyAttributesIsNotRead) {
    std::string attributes;
    for (int i = 0; i < 100'000; ++i) {
        attributes += " a" + std::to_string(i) + "=\"\"";
    }
    EXPECT_EQ(outcomeOf(reply("1\"" + attributes + " b=\"", "a")), Outcome::NotXml);
}

TEST_F(AHostileReply, WithVeryManyNamespacesOrNamesIsNotRead) {
    std::string namespaces;
    std::string names;
    for (int i = 0; i < 100'001; ++i) {
        const std::string number = std::to_string(i);
        namespaces += (i % 255 == 0 ? "<a xmlns:p" : " xmlns:p") + number +
                      (i % 255 == 254 ? "='u'>" : "='u'");
        names += "<n" + number + "/>";
    }
    EXPECT_EQ(outcomeOf(head + namespaces + ">" + repeat("<p0:a/>", 40'000)), Outcome::NotXml);
    EXPECT_THAT(message_, HasSubstr("more than 256 declarations of namespaces"));
    EXPECT_EQ(outcomeOf(head + names + "</cmd>"), Outcome::NotXml);
    EXPECT_THAT(message_, HasSubstr("more than 100000 different names"));
}

TEST_F(AHostileReply, WithATextInVeryManyPiecesIsReadOrRefused) {
    for (const std::string pair : {"x<![CDATA[y]]>", "x<!-- -->y"}) {
        const ReplyContainer read = handler_.parseReply(reply("1", repeat(pair, 600'000)));
        EXPECT_EQ(read.activationReply->fonts.front().psName, repeat("xy", 600'000));
    }
    // With a carriage return, the document is kept as a tree.
    EXPECT_EQ(outcomeOf("\r" + reply("1", repeat("x<![CDATA[y]]>", 10))), Outcome::Accepted);
    EXPECT_EQ(outcomeOf("\r" + reply("1", repeat("x<![CDATA[y]]>", 600'000))), Outcome::NotXml);
    EXPECT_THAT(message_, HasSubstr("the text of the element in line 1 is in too many pieces"));
}

TEST_F(AHostileReply, InAnotherNamespaceIsRejected) {
    const std::string content = "<buyRequestReply><handled>1</handled></buyRequestReply></cmd>";
    for (const std::string start :
         {"<cmd>", "<cmd xmlns=\"http://glyphora.org/schema/GlyPluginCommunication_2.0\">",
          "<cmd xmlns:p=\"http://glyphora.org/schema/GlyPluginCommunication_1.0\">"}) {
        EXPECT_EQ(outcomeOf(start + content), Outcome::Rejected) << start;
    }
    EXPECT_EQ(outcomeOf(head + "<buyRequestReply xmlns=\"\"><handled>1</handled></buyRequestReply>"
                               "</cmd>"),
              Outcome::Rejected);
    EXPECT_EQ(outcomeOf("<p:cmd xmlns:p=\"http://glyphora.org/schema/GlyPluginCommunication_1.0\">"
                        "<p:buyRequestReply><p:handled>1</p:handled></p:buyRequestReply></p:cmd>"),
              Outcome::Accepted);
}

TEST_F(AHostileReply, OfBadBytesIsNotXml) {
    for (const std::string bytes : {"\xff", "\xc3", "\xed\xa0\x80", "\x01", "\xc0\x80", "&#0;",
                                    "&#xD800;", "&#xFFFF;", "&nbsp;", "<", "]]>"}) {
        EXPECT_EQ(outcomeOf(reply("1", bytes)), Outcome::NotXml) << bytes;
    }
    EXPECT_EQ(outcomeOf(reply("1", std::string(1, '\0'))), Outcome::NotXml);
    EXPECT_EQ(outcomeOf(""), Outcome::NotXml);
    EXPECT_EQ(outcomeOf("<!-- only -->"), Outcome::NotXml);
}
