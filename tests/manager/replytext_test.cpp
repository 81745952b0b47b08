// SPDX-License-Identifier: MIT
// Replies survive the way in which their reader makes XML of them.
#include "manager/exchange/replytext.h"
#include "tests/support/foldedreply.h"

#include <gtest/gtest.h>
#include <sstream>

using namespace manager;
using namespace testsupport;

namespace {

std::string roundTrip(const std::string& value) {
    ReplyText reply("fontRequest");
    reply.element("before", "x");
    reply.element("value", value);
    reply.fontInfo("12", value);
    reply.element("after", "x");
    const ReplyNode root = parseFolded(reply.finish());
    EXPECT_EQ(root.children.size(), 5U);
    const ReplyNode& info = root.children.at(3);
    EXPECT_EQ(info.children.at(0).text, "12");
    EXPECT_EQ(info.children.at(1).text, root.value("value"));
    EXPECT_EQ(root.value("after"), "x");
    return root.value("value");
}

TEST(AReply, CarriesValuesExactlyThroughTheFolding) {
    std::istringstream values("\n \n<\n>\n]]>\n]]]]>>\n]]\n]>\n<]]>\n]]<>\n<![CDATA[x]]>\n"
                              "</cmd>\nx</cmd>\n</value>\n<cmd>\n<!-- -- -->\n<?x?>\na<b>c\n"
                              "&amp;\n\"quoted\" & 'twice' &lt;\n  bl\tanks  \nM\xC3\xBCller\n"
                              "\xE6\xB8\xAF\xE5\x8F\xA3 \xF0\x9F\x98\x80\n\xEF\xBB\xBF bom\n"
                              "\xC2\x85\xE2\x80\xA8");
    for (std::string value; std::getline(values, value);) {
        EXPECT_EQ(roundTrip(value), value);
    }
}

TEST(AReply, PutsABlankForWhatXmlForbidsAndAMarkForNoUtf8) {
    const std::string mark = "\xEF\xBF\xBD";
    const struct {
        std::string value;
        std::string expected;
    } cases[] = {
        {"a\nb", "a b"},
        {"a\r\nb", "a  b"},
        {std::string("a\0b\x01\x1F", 5), "a b  "},
        {"x</cmd>\ny", "x</cmd> y"},
        {"\xEF\xBF\xBE\xEF\xBF\xBF", "  "}, // not characters
        {"\xFF", mark},
        {"a\xC3", "a" + mark},                           // cut
        {"\xC0\xBC", mark + mark},                       // overlong "<"
        {"\xED\xA0\x80", mark + mark + mark},            // surrogate
        {"\xF4\x90\x80\x80", mark + mark + mark + mark}, // beyond the last character
        {"\xE2\x82<", mark + mark + "<"},
    };
    for (const auto& [value, expected] : cases) {
        EXPECT_EQ(roundTrip(value), expected);
    }
}

TEST(AReply, HasTheCommandWordAsItsTextAndTheProtocolVersion) {
    for (const char* word : {"fontRequest", "x</cmd>", "</cmd>", "<cmd>", "a&b]]>"}) {
        const std::string reply = ReplyText(word).finish();
        EXPECT_TRUE(reply.starts_with("<cmd>"));
        EXPECT_TRUE(reply.ends_with("\n</cmd>\n"));
        const ReplyNode root = parseFolded(reply);
        EXPECT_EQ(root.name, "cmd");
        EXPECT_EQ(root.text, std::string(word) + "2.0");
        EXPECT_EQ(root.value("protocolVersion"), "2.0");
    }
}

} // namespace
