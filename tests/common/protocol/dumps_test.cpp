// SPDX-License-Identifier: MIT
// The dumps of fonts and messages on standard error.
#include "samplefonts.h"

#include <gtest/gtest.h>

using namespace Protocol;

namespace {

template <typename Print>
std::string printed(Print print) {
    testing::internal::CaptureStderr();
    print();
    return testing::internal::GetCapturedStderr();
}

std::string bareFont(const std::string& prefix) {
    std::string text;
    for (const char* const line :
         {"Font: ", "  type: all", "  count: 0", "  isActive: 0", "  typeMatchingCount: 0",
          "  isTypeMatchingActive: 0", "  handled: 0", "  activationSuccessful: 0", "Font END"}) {
        text += prefix + line + "\n";
    }
    return text;
}

} // namespace

TEST(ADump, OfAFontLeavesEmptyFieldsOut) {
    EXPECT_EQ(printed([] { Font().debugPrint("> "); }), bareFont("> "));
}

TEST(ADump, OfAFontShowsEveryField) {
    Font font;
    font.syncID = "1";
    font.type = Font::OT_TT;
    font.psName = "P";
    font.styleName = "S";
    font.familyName = "F";
    font.count = 4294967295U;
    font.isActive = true;
    font.typeMatchingCount = 2;
    font.isTypeMatchingActive = true;
    font.typeMatchingContainerID = "7";
    font.fontInfos = {{"7", "seven"}, {"", ""}};
    font.handled = true;
    font.containerID = "8";
    font.activationSuccessful = true;
    EXPECT_EQ(printed([&] { font.debugPrint(""); }), "Font: \n"
                                                     "  syncID: '1'\n"
                                                     "  type: OT_TT\n"
                                                     "  psName: 'P'\n"
                                                     "  styleName: 'S'\n"
                                                     "  familyName: 'F'\n"
                                                     "  count: 4294967295\n"
                                                     "  isActive: 1\n"
                                                     "  typeMatchingCount: 2\n"
                                                     "  isTypeMatchingActive: 1\n"
                                                     "  typeMatchingContainerID: '7'\n"
                                                     "  2 fontInfos: \n"
                                                     "    7 => seven\n"
                                                     "     => \n"
                                                     "  handled: 1\n"
                                                     "  containerID: '8'\n"
                                                     "  activationSuccessful: 1\n"
                                                     "Font END\n");
}

TEST(ADump, OfAListIndentsItsFonts) {
    EXPECT_EQ(printed([] { debugPrint({}, "-"); }), "-FontList: 0 fonts:\n-FontList END\n");
    EXPECT_EQ(printed([] {
                  debugPrint({Font(), Font()}, "-");
              }),
              "-FontList: 2 fonts:\n" + bareFont("-  ") + bareFont("-  ") + "-FontList END\n");
}

TEST(ADump, OfAMessageNamesItAndShowsItsScalars) {
    const std::string emptyList = "  FontList: 0 fonts:\n  FontList END\n";
    struct Case {
        std::function<void()> print;
        std::string expected;
    };
    const std::vector<Case> cases{
        {[] { FontRequest(true, {}, "ART5", "").debugPrint(""); },
         "FontRequest: \n  mustMatchFontType: 1\n  targetApp: ART5\n" + emptyList +
             "FontRequest END\n"},
        {[] { FontRequest(false, {}, "", "FILC").debugPrint(""); },
         "FontRequest: \n  mustMatchFontType: 0\n  targetClass: FILC\n" + emptyList +
             "FontRequest END\n"},
        {[] { FontReply(true, FontList()).debugPrint(""); },
         "FontReply: \n  showWindow: 1\n" + emptyList + "FontReply END\n"},
        {[] { ShowRequest(false, {}).debugPrint(""); },
         "ShowRequest: \n  mustMatchFontType: 0\n" + emptyList + "ShowRequest END\n"},
        {[] { ShowReply(FontList()).debugPrint(""); },
         "ShowReply: \n" + emptyList + "ShowReply END\n"},
        {[] { ActivationRequest(FontList()).debugPrint(""); },
         "ActivationRequest: \n" + emptyList + "ActivationRequest END\n"},
        {[] { ActivationReply(FontList()).debugPrint(""); },
         "ActivationReply: \n" + emptyList + "ActivationReply END\n"},
        {[] { BuyReply(Font()).debugPrint(""); },
         "BuyReply: \n" + bareFont("  ") + "BuyReply END\n"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(printed(each.print), each.expected);
    }
    EXPECT_EQ(printed([] { BuyRequest(soundFont()).debugPrint("* "); }),
              "* BuyRequest: \n" + printed([] { soundFont().debugPrint("*   "); }) +
                  "* BuyRequest END\n");
}
