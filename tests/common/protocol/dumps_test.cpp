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

TEST(ADump, OfAFontShowsEveryField) {
    EXPECT_EQ(printed([] { fullFont().debugPrint(""); }), "Font: \n"
                                                          "  syncID: 's\"&\n'\n"
                                                          "  type: OT_TT\n"
                                                          "  psName: 'A&B<]]>'\n"
                                                          "  styleName: ' \xf0\x9f\x98\x80\r'\n"
                                                          "  familyName: '\xc3\x84'\n"
                                                          "  count: 4294967295\n"
                                                          "  isActive: 1\n"
                                                          "  typeMatchingCount: 3\n"
                                                          "  isTypeMatchingActive: 1\n"
                                                          "  typeMatchingContainerID: '5'\n"
                                                          "  2 fontInfos: \n"
                                                          "    1 => one\n"
                                                          "    2 => \n"
                                                          "  handled: 1\n"
                                                          "  containerID: '9'\n"
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
    const auto expectDump = [](const auto& message, const std::string& name,
                               const std::string& content) {
        EXPECT_EQ(printed([&] { message.debugPrint("* "); }),
                  "* " + name + ": \n" + content + "* " + name + " END\n");
    };
    const std::string noFonts = "*   FontList: 0 fonts:\n*   FontList END\n";
    expectDump(FontRequest(true, {}, "ART5", ""), "FontRequest",
               "*   mustMatchFontType: 1\n*   targetApp: ART5\n" + noFonts);
    expectDump(FontRequest(false, {}, "", "FILC"), "FontRequest",
               "*   mustMatchFontType: 0\n*   targetClass: FILC\n" + noFonts);
    expectDump(FontReply(true, FontList()), "FontReply", "*   showWindow: 1\n" + noFonts);
    expectDump(ShowRequest(false, {}), "ShowRequest", "*   mustMatchFontType: 0\n" + noFonts);
    expectDump(ShowReply(FontList()), "ShowReply", noFonts);
    expectDump(ActivationRequest(FontList()), "ActivationRequest", noFonts);
    expectDump(ActivationReply(FontList()), "ActivationReply", noFonts);
    expectDump(BuyReply(Font()), "BuyReply", bareFont("*   "));
    expectDump(BuyRequest(soundFont()), "BuyRequest",
               printed([] { soundFont().debugPrint("*   "); }));
}
