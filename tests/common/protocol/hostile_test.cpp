// SPDX-License-Identifier: MIT
// Replies that mean harm: each is refused by an exception, and the handler goes on.
#include "misc/exception.h"
#include "protocolhandler.h"
#include "protocolschema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <tuple>

using namespace Protocol;
using testing::HasSubstr;

namespace {

const std::string head = "<cmd xmlns=\"http://glyphora.org/schema/GlyPluginCommunication_1.0\">";

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

TEST_F(AHostileReply, ThatDeclaresEntitiesIsNotRead) {
    const std::string refusal = "a reply must not declare entities";
    const std::string external = "<!ENTITY m SYSTEM 'file:///etc/passwd'>";
    const std::string parameter = "<!ENTITY % m SYSTEM 'file:///etc/passwd'>%m;<!ENTITY m 'x'>";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {external, reply("1", "&m;"), refusal},
        {external, reply("&m;", "a"), "Attribute references external entity 'm'"},
        {parameter, reply("1", "&m;"), refusal},
        {parameter, reply("&m;", "a"), refusal},
        {"<!ENTITY m 'x'>", reply("1", "a"), refusal},
        {"<!ENTITY % m 'x'>", reply("1", "a"), refusal},
    };
    for (const auto& [entities, xml, reason] : cases) {
        EXPECT_EQ(outcomeOf("<!DOCTYPE cmd [" + entities + "]>" + xml), Outcome::NotXml);
        EXPECT_THAT(message_, HasSubstr(reason));
    }
}

TEST_F(AHostileReply, ThatIsLargeIsBounded) {
    const std::string name = std::string().append(9'000'000, 'a');
    EXPECT_EQ(handler_.parseReply(reply("1", name)).activationReply->fonts.front().psName, name);
    EXPECT_EQ(outcomeOf(reply("1", name + "&amp;" + name)), Outcome::NotXml);
    EXPECT_THAT(message_, HasSubstr("huge text node"));
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
