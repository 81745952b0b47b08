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
            message_ = failure.message();
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
    const std::string name(9'000'000, 'a');
    EXPECT_EQ(handler_.parseReply(reply("1", name)).activationReply->fonts.front().psName, name);
    EXPECT_EQ(outcomeOf(reply("1", name + "&amp;" + name)), Outcome::NotXml);
    EXPECT_THAT(message_, HasSubstr("huge text node"));
    EXPECT_EQ(outcomeOf(std::string((std::size_t{64} << 20U) + 1, ' ')), Outcome::NotXml);
    EXPECT_THAT(message_, HasSubstr("exceeds the limit of 67108864 bytes"));
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
