// SPDX-License-Identifier: MIT
// The command texts of the exchanges, byte for byte.
#include "GLYEvent.h"

#include <gtest/gtest.h>

#include <unistd.h>

using namespace GLY;

namespace {

using Record = Orvil::SmartPointer<GLYFontInfo>;

const std::string application = "<targetApp>ART5</targetApp>\n"
                                "<targetClass>FILC</targetClass>\n"
                                "<targetPid>" +
                                std::to_string(getpid()) + "</targetPid>\n";

/// Only what every font has.
Record bareRecord() {
    Record record(new GLYFontInfo);
    record->font.syncID = "s1";
    record->font.psName = "P1";
    return record;
}

/// Everything that can be written, with characters that are not escaped.
Record fullRecord() {
    Record record = bareRecord();
    record->font.syncID = "s & 2";
    record->font.psName = "P<2>";
    record->font.type = Protocol::Font::OT_T1;
    record->font.familyName = " M\xc3\xbcller & Co ";
    record->font.styleName = "Bold";
    record->font.containerID = "7";
    record->chosenContainer = "12";
    return record;
}

template <typename Event>
std::string commandOf(const std::vector<Record>& records) {
    Event event;
    event.fonts = records;
    event.build();
    event.build(); // replaces the text, does not append
    return event.command;
}

} // namespace

TEST(AFontRequest, NamesTheHostTheVersionAndTheFonts) {
    const std::string head =
        "<cmd>fontRequest</cmd>\n" + application + "<protocolVersion>1.00</protocolVersion>\n";
    EXPECT_EQ(commandOf<GLYFontRequestEvent>({}), head + "</cmd>\n");
    EXPECT_EQ(commandOf<GLYFontRequestEvent>({bareRecord(), fullRecord()}),
              head + "<font>\n<syncID>s1</syncID>\n<psName>P1</psName>\n</font>\n"
                     "<font>\n<syncID>s & 2</syncID>\n<psName>P<2></psName>\n<type>OT_T1</type>\n"
                     "<familyName> M\xc3\xbcller & Co </familyName>\n"
                     "<styleName>Bold</styleName>\n</font>\n</cmd>\n");
}

TEST(AnActivation, NamesContainersAndFonts) {
    EXPECT_EQ(commandOf<GLYFontActivateEvent>({bareRecord(), fullRecord()}),
              "<cmd>activationRequest</cmd>\n"
              "<font>\n<containerID></containerID>\n<psName>P1</psName>\n</font>\n"
              "<font>\n<containerID>12</containerID>\n<psName>P<2></psName>\n</font>\n"
              "</cmd>\n");
}

TEST(AShowRequest, NamesTheHostAndTheFonts) {
    const std::string head = "<cmd>showRequest</cmd>\n" + application;
    EXPECT_EQ(commandOf<GLYFontInfoEvent>({bareRecord(), fullRecord()}),
              head + "<font>\n<psName>P1</psName>\n</font>\n"
                     "<font>\n<containerID>12</containerID>\n<psName>P<2></psName>\n"
                     "<type>OT_T1</type>\n</font>\n</cmd>\n");
}

TEST(AnOfferToBuy, NamesTheFontsOnly) {
    EXPECT_EQ(commandOf<GLYFontBuyEvent>({bareRecord(), fullRecord()}),
              "<cmd>buyRequest</cmd>\n<font>\n<psName>P1</psName>\n</font>\n"
              "<font>\n<psName>P<2></psName>\n</font>\n</cmd>\n");
}

TEST(AChosenContainer, CountsWhenItReadsAsANumberOfAtLeastOne) {
    for (const auto& [chosen, counts] : std::vector<std::pair<std::string, bool>>{
             {"1", true}, {"12 fonts", true}, {"0", false}, {"-1", false}, {"", false}}) {
        const Record record = bareRecord();
        record->font.containerID = "7";
        record->chosenContainer = chosen;
        const std::string line = "<containerID>" + chosen + "</containerID>\n";
        const std::string fallBack = "<containerID>7</containerID>\n";
        EXPECT_EQ(commandOf<GLYFontActivateEvent>({record}),
                  "<cmd>activationRequest</cmd>\n<font>\n" + (counts ? line : fallBack) +
                      "<psName>P1</psName>\n</font>\n</cmd>\n");
        EXPECT_EQ(commandOf<GLYFontInfoEvent>({record}),
                  "<cmd>showRequest</cmd>\n" + application + "<font>\n" + (counts ? line : "") +
                      "<psName>P1</psName>\n</font>\n</cmd>\n");
    }
}
