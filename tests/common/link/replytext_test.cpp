// SPDX-License-Identifier: MIT
// Folding of reply texts.
#include "replytext.h"

#include <gtest/gtest.h>

TEST(AFoldedReply, IsOneDocument) {
    const std::pair<std::string, std::string> cases[] = {
        {"<cmd>fontReply</cmd>\n<a>1</a>\n</cmd>\n", "<cmd>fontReply<a>1</a></cmd>"},
        {"<cmd>fontReply</cmd>\n<a>1</a>\n</cmd>", "<cmd>fontReply<a>1</a></cmd>"},
        {"<cmd>x</cmd>", "<cmd>x"}, // no line feed at all: left open
        {"</cmd>", "</cmd>"},
        {"a</cmd>\n</cmd>\nb</cmd>", "a</cmd>b"},
        {"\xc3\xa4</cmd>", "\xc3\xa4"},
        {"</cmd></cmd>", "</cmd>"}, // one end only
        {" </cmd>\n</cmd> \n</cmd>\r", " </cmd> </cmd>\r"},
        {"</CMD>x</CMD>", "</CMD>x</CMD>"},
        {"", ""},
        {"\n\n", ""},
        {"one\ntwo", "onetwo"},
    };
    for (const auto& [reply, folded] : cases) {
        std::string text = reply;
        GLY::foldReply(text);
        EXPECT_EQ(text, folded) << reply;
    }
}

TEST(AnAmpersand, IsEscapedEvenWhereItWas) {
    const std::pair<std::string, std::string> cases[] = {
        {"A & B", "A &amp; B"}, {"&amp;", "&amp;amp;"}, {"&&", "&amp;&amp;"},
        {"&", "&amp;"},         {"none", "none"},       {"", ""}};
    for (const auto& [text, escaped] : cases) {
        EXPECT_EQ(GLY::escapeAmpersands(text), escaped);
    }
}
