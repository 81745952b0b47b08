// SPDX-License-Identifier: MIT
// The program that tries the codec by hand.
#include "misc/text/strings.h"
#include "misc/xml/ixmlparser.h"
#include "protocolschema.h"
#include "tests/support/repeated.h"
#include "tests/support/temporaryfolder.h"
#include "tools/protocol/diagnosis.h"
#include "tools/protocol/protocoltool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>
#include <tuple>
#include <utility>
#include <vector>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

struct Outcome {
    int exitCode;
    std::string output;
    std::string errors;
};

/// Runs it with arguments that blanks part.
Outcome run(const std::string& arguments, const std::string& input = "") {
    const auto words = Orvil::tokenize("glyphora-protocol " + arguments, std::string(" "), true);
    std::vector<const char*> values;
    for (const std::string& word : words) {
        values.push_back(word.c_str());
    }
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    const int exitCode =
        ProtocolTool::run(static_cast<int>(values.size()), values.data(), in, out, err);
    return {exitCode, out.str(), err.str()};
}

const std::string head = "<cmd xmlns=\"http://glyphora.org/schema/GlyPluginCommunication_1.0\">";

/// What follows the head of an activation's reply.
std::string replyOf(const std::string& fonts) {
    return "<activationRequestReply><fonts>" + fonts + "</fonts></activationRequestReply></cmd>";
}

} // namespace

TEST(TheProtocolTool, EncodesARequestFromOptionsAndFromJsonAlike) {
    const Outcome byOptions = run(
        "encode font --must-match-type --target-app ART5 --target-class FILC "
        "--font syncID=1,psName=F,type=OT_TT --font syncID=2,psName=G,familyName=M&N,styleName=B");
    EXPECT_EQ(byOptions.exitCode, 0) << byOptions.errors;
    const Outcome byJson = run("encode --json -", R"({"request": "font", "mustMatchFontType": true,
        "targetApp": "ART5", "targetClass": "FILC",
        "fonts": [{"syncID": "1", "psName": "F", "type": "OT_TT"},
                  {"syncID": "2", "psName": "G", "familyName": "M&N", "styleName": "B"}]})");
    EXPECT_EQ(byJson.output, byOptions.output);
    EXPECT_THAT(byJson.output, HasSubstr("<familyName>M&amp;N</familyName>"));
}

TEST(TheProtocolTool, AcceptsEveryKindOfRequestThatItEncodes) {
    for (const std::string kind : {"font", "show", "buy", "activation"}) {
        const Outcome encoded = run("encode " + kind + " --font syncID=1,psName=F,containerID=7");
        EXPECT_THAT(encoded.output, HasSubstr("<" + kind + "Request>"));
        EXPECT_EQ(run("validate", encoded.output).exitCode, 0);
    }
}

TEST(TheProtocolTool, DecodesRepliesToJson) {
    Outcome decoded = run("decode -", head + "<fontRequestReply><showWindow>1</showWindow>"
                                             "<fonts><font syncID=\"s\"><type>TT</type>"
                                             "<psName>P</psName><count>3</count><fontInfos>"
                                             "<fontInfo><name>7</name><value>v</value>"
                                             "</fontInfo></fontInfos></font></fonts>"
                                             "</fontRequestReply></cmd>");
    EXPECT_EQ(decoded.exitCode, 0) << decoded.errors;
    std::erase_if(decoded.output, [](char character) { return std::isspace(character) != 0; });
    EXPECT_EQ(decoded.output,
              R"({"reply":"font","showWindow":true,"fonts":[{"syncID":"s","type":"TT",)"
              R"("psName":"P","styleName":"","familyName":"","count":3,"isActive":false,)"
              R"("typeMatchingCount":0,"isTypeMatchingActive":false,"typeMatchingContainerID":"",)"
              R"("fontInfos":[{"name":"7","value":"v"}],"containerID":"",)"
              R"("activationSuccessful":false}]})");
    EXPECT_EQ(run("decode", head + "<buyRequestReply><handled>0</handled></buyRequestReply></cmd>")
                  .output,
              "{\n  \"reply\": \"buy\",\n  \"handled\": false\n}\n");
    for (const std::string kind : {"show", "activation"}) {
        const std::string tag = kind + "RequestReply>";
        decoded = run("decode", head + "<" + tag + "<fonts><font syncID='s'><type>T1</type>" +
                                    "<psName>P</psName></font></fonts></" + tag + "</cmd>");
        EXPECT_THAT(decoded.output, HasSubstr("\"reply\": \"" + kind + "\""));
    }
}

TEST(TheProtocolTool, SaysWhereADocumentIsWrong) {
    const std::string halfTooLong(6'000'000, 'x');
    const std::pair<std::string, std::string> cases[] = {
        {"<cmd>\n <a></b></cmd>", "standard input:2:9: Opening and ending tag mismatch"},
        {head + "\n<buyRequestReply>\n  <handled>x</handled></buyRequestReply></cmd>",
         "standard input:3:2"},
        {head + "\n<nothing/></cmd>", "standard input:2:"},
        {"", "standard input:1:1: "},
        {"<!DOCTYPE cmd [\n<!ENTITY a 'x'>]>" + head + "</cmd>",
         "standard input:2:15: entities must not be declared"},
        {"<!DOCTYPE cmd [<!ATTLIST font syncID CDATA '" + std::string(20'000, 's') + "'>]>" + head +
             "\n" + replyOf(repeated("<font><psName>a</psName></font>", 100)),
         "standard input: LibXml: Document not parsed successfully: line 2, column "},
        {head + "\n\n" +
             replyOf("<font syncID='1'><psName>" + halfTooLong + "&amp;" + halfTooLong +
                     "</psName></font>"),
         "standard input:3: LibXml: Document not parsed successfully: xmlSAX2Characters: huge"},
    };
    for (const auto& [document, complaint] : cases) {
        for (const char* const command : {"validate", "decode"}) {
            const Outcome refused = run(command, document);
            EXPECT_EQ(refused.exitCode, 1);
            EXPECT_EQ(refused.output, "");
            EXPECT_THAT(refused.errors, StartsWith(complaint));
        }
    }
}

TEST(TheProtocolTool, SaysWhichFontOfAValidReplyBreaksARule) {
    const std::string good = "<font syncID='1'><psName>a</psName><type>TT</type></font>\n";
    const std::string bad = "<font syncID='7'><psName>a</psName><type>all</type></font>\n";
    const Outcome refused =
        run("decode", head + "<?pi?>\n<showRequestReply><fonts>\n" + repeated(good, 70'000) + bad +
                          good + bad + "</fonts></showRequestReply></cmd>");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.output, "");
    EXPECT_EQ(refused.errors, "standard input:70003:17: font 70001 (syncID '7'): type of font must "
                              "not be 'all' in Replies\n");
    // The kind is refused where it stands, and only a request is told apart.
    const testsupport::TemporaryFolder folder;
    const std::string schema =
        folder
            .write("s.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                            "<xs:element name='cmd'/></xs:schema>")
            .string();
    EXPECT_EQ(run("decode --schema " + schema, "<cmd>\n <other/></cmd>").errors,
              "standard input:2:8: could not parse root node 'other'\n");
}

TEST(TheProtocolTool, DoesNotLookIntoADocumentBeyondTheCodecsLimit) {
    const std::string huge(Orvil::IXmlParser::maximumDocumentSize + 1, ' ');
    const auto complaints = ProtocolTool::diagnose(huge, Protocol::schemaText);
    ASSERT_EQ(complaints.size(), 1U);
    EXPECT_EQ(complaints[0].message, "the document exceeds the limit of 67108864 bytes");
}

TEST(TheProtocolTool, SaysTwentyTimesAtMostThatADocumentIsWrong) {
    const std::string font = "<font syncID='1'>\n<psName>a</psName><count>x</count></font>";
    for (const std::size_t fonts : {1U, 100'000U}) {
        const Outcome refused = run("decode", head + replyOf(repeated(font, fonts)));
        const auto lines = std::count(refused.errors.begin(), refused.errors.end(), '\n');
        EXPECT_THAT(refused.errors, StartsWith("standard input:2:"));
        EXPECT_EQ(lines, fonts == 1 ? 1 : ProtocolTool::maximumComplaints);
    }
}

TEST(TheProtocolTool, TellsBadRequestsFromBadUsage) {
    const std::tuple<std::string, std::string, int, std::string> cases[] = {
        {"encode font --font psName=P", "", 1, "request: syncID must contain"},
        {"encode font --font syncID", "", 2, "'syncID' is not KEY=VALUE"},
        {"encode font --font syncID=1,name=P", "", 1, "font 1: 'name' is not known"},
        {"encode font --font syncID=1,psName=P,type=tt", "", 1, "<type>tt</type>"},
        {"encode sell", "", 2, "sell"},
        {"encode", "", 2, "name a KIND"},
        {"encode --json -", R"({"request": "sell"})", 1, "kind 'sell' is none of"},
        {"encode buy --must-match-type --font syncID=1,psName=P", "", 1,
         "'mustMatchFontType' has no place in a request of kind 'buy'"},
        {"encode show --target-app ART5", "", 1,
         "'targetApp' has no place in a request of kind 'show'"},
        {"encode buy", "", 1, "exactly one font"},
        {"encode font --json -", "{}", 2, "give nothing beside it"},
        {"encode --json -", "{\n \"fonts\": 1", 1, "standard input: "},
        {"encode --json -", "[]", 1, "request: an object is expected"},
        {"encode --json -", R"({"fonts": {}})", 1, "'fonts' must be a list"},
        {"encode --json -", R"({"request": "font", "targetApp": 1})", 1,
         "'targetApp' must be a text"},
        {"encode --json -", R"({"mustMatchFontType": 1})", 1, "must be true or false"},
        {"decode --schema -", "", 2, "both the document and its schema"},
        {"decode --schema - /dev/null", "no\nschema", 2, "standard input:1:1: Start tag expected"},
        {"validate --schema - /dev/null",
         "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n<xs:nothing/></xs:schema>", 2,
         "standard input:2: "},
        {"decode", run("encode buy --font syncID=1,psName=P").output, 1,
         ": could not parse root node 'buyRequest' (decode reads replies"},
        {"decode /no/such/file", "", 2, "/no/such/file: cannot be read: No such file"},
        {"validate /", "", 2, "/: cannot be read"},
        {"decode --unknown", "", 2, "--unknown"},
        {"", "", 2, "subcommand is required"},
    };
    for (const auto& [arguments, input, exitCode, message] : cases) {
        const Outcome refused = run(arguments, input);
        EXPECT_EQ(refused.exitCode, exitCode) << message;
        EXPECT_EQ(refused.output, "");
        EXPECT_THAT(refused.errors, HasSubstr(message));
    }
    EXPECT_EQ(run("--help").exitCode, 0);
}

TEST(TheProtocolTool, FailsWhenItsOutputCannotBeWritten) {
    std::istringstream in;
    std::ofstream full("/dev/full");
    std::ostringstream err;
    const char* const arguments[] = {"glyphora-protocol", "--help"};
    EXPECT_EQ(ProtocolTool::run(2, arguments, in, full, err), 2);
    EXPECT_EQ(err.str(), "glyphora-protocol: the output cannot be written\n");
}
