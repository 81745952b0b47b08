// SPDX-License-Identifier: MIT
// The font check from the host's notification to what is sent to the font manager.
#include "GLYNotifyHandler.h"
#include "VexFontSuite.h"
#include "tests/support/plugin/startedplugin.h"
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include <libxml/tree.h>

#include <stdexcept>

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

constexpr OSType news = FourCharCode("FILC");
constexpr OSType anyID = FourCharCode("****");

std::string reply(const std::string& version, const std::string& rest = {}) {
    return "<cmd>answer</cmd>\n<protocolVersion>" + version + "</protocolVersion>\n" + rest +
           "</cmd>\n";
}

class AFontCheck : public AStartedPlugin {
protected:
    AFontCheck() {
        host.strings[17000] = {{3, "no launch"}, {4, "bad version"}};
        host.addLayer().addText({{missing}, {present}});
        platform.processes.push_back({FourCharCode("QGLY"), 77, 0});
        platform.answers = {scripted::textAnswer(reply("2.0")),
                            scripted::textAnswer(reply("2.0", "<showWindow>1</showWindow>\n"))};
        platform.answers[1].effect = [this] { listened = platform.hasHandler(news, anyID); };
    }
    ~AFontCheck() override {
        EXPECT_FALSE(platform.hasHandler(news, anyID));
        EXPECT_EQ(platform.liveRoutines, 0);
        EXPECT_EQ(platform.liveDescriptors, 0);
    }
    AIErr openDocument() { return host.notify(host.notifierOf("AI Document Opened Notifier")); }

    scripted::Platform platform;
    AIFontKey missing = host.addFont("Missing", "Bold", false);
    AIFontKey present = host.addFont("Present", "Regular", true);
    bool listened = false;
};

TEST_F(AFontCheck, LeavesTheFontManagerAloneWhenNothingIsMissing) {
    host.layers.clear();
    host.addLayer().addText({{present}});
    platform.processes.clear();
    EXPECT_EQ(openDocument(), kNoErr);
    EXPECT_EQ(platform.walks, 0);
    EXPECT_THAT(platform.sent, IsEmpty());
    EXPECT_THAT(host.messageAlerts, IsEmpty());
}

TEST_F(AFontCheck, AsksForTheMissingFontsWhileItListens) {
    EXPECT_EQ(openDocument(), kNoErr);
    ASSERT_EQ(platform.sent.size(), 2U);
    EXPECT_THAT(platform.sent[0].directText(), StartsWith("<cmd>showRequest</cmd>\n"));
    const std::string request = platform.sent[1].directText();
    EXPECT_THAT(request, StartsWith("<cmd>fontRequest</cmd>\n"));
    EXPECT_THAT(request, HasSubstr("<psName>Missing-Bold</psName>"));
    EXPECT_THAT(request, Not(HasSubstr("Present")));
    EXPECT_TRUE(listened);
    EXPECT_EQ(platform.registered.size(), 1U);
    EXPECT_THAT(host.messageAlerts, IsEmpty());
    openDocument(); // another one: anew
    EXPECT_EQ(platform.sent.size(), 4U);
    EXPECT_EQ(platform.registered.size(), 2U);
}

TEST_F(AFontCheck, OpensTheDialogForWhatIsStillMissing) {
    struct Case {
        const char* what;
        const char* font; ///< what is answered of it
        const char* showWindow;
        bool opens;
        bool usesPresent = false; ///< which the font manager is not asked about
    };
    const Case cases[] = {
        {"unknown", "<count>0</count>", "0", true},
        {"unknown, asked for", "<count>0</count>", "1", true},
        {"known", "<count>1</count>", "0", false},
        {"known, and a present one", "<count>1</count>", "0", true, true},
        {"known, asked for", "<count>1</count>", "1", true},
        {"activated, asked for", "<count>1</count><isActive>1</isActive>", "1", false},
        {"active and unknown, asked for", "<count>0</count><isActive>1</isActive>", "1", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        host.dialogs.clear();
        host.layers.clear();
        AIArt& group = host.addLayer();
        group.addText({{missing}});
        if (c.usesPresent) {
            group.addText({{present}});
        }
        platform.answers = {
            scripted::textAnswer(reply("2.0")),
            scripted::textAnswer(
                reply("2.0", std::string("<font><syncID>Missing-Bold-Bold</syncID>") + c.font +
                                 "</font><showWindow>" + c.showWindow + "</showWindow>\n"))};
        EXPECT_EQ(openDocument(), kNoErr);
        if (c.opens) {
            EXPECT_THAT(host.dialogs, ElementsAre(std::pair("Glyphora", 16000)));
        } else {
            EXPECT_THAT(host.dialogs, IsEmpty());
        }
    }
}

TEST_F(AFontCheck, TellsTheUserThatTheFontManagerCannotBeLaunched) {
    platform.processes.clear();
    host.fail("GetNextLayer", 81);
    EXPECT_EQ(openDocument(), 81);
    EXPECT_THAT(host.messageAlerts, ElementsAre("no launch"));
    EXPECT_THAT(platform.sent, IsEmpty());
}

TEST_F(AFontCheck, StopsSilentlyAtAnOldProtocol) {
    host.fail("GetNextLayer", 81);
    for (const char* version : {"1.9", "0.0", "abc", ""}) {
        SCOPED_TRACE(version);
        platform.sent.clear();
        platform.answers = {scripted::textAnswer(reply(version))};
        EXPECT_EQ(openDocument(), kNoErr);
        EXPECT_EQ(platform.sent.size(), 1U);
    }
    platform.sent.clear();
    platform.answers = {scripted::failedAnswer(procNotFound)};
    EXPECT_EQ(openDocument(), kNoErr);
    EXPECT_EQ(platform.sent.size(), 20U); // the attempts of the one exchange
    EXPECT_THAT(host.messageAlerts, IsEmpty());
    EXPECT_THAT(platform.registered, IsEmpty());
}

TEST_F(AFontCheck, StopsListeningWhenTheRequestIsNotAnswered) {
    platform.answers = {scripted::textAnswer(reply("2.0")), scripted::failedAnswer(procNotFound)};
    host.fail("GetNextLayer", 81); // the survey's own code is answered
    EXPECT_EQ(openDocument(), 81);
    EXPECT_EQ(platform.sent.size(), 21U);
}

TEST_F(AFontCheck, KeepsTheAnswersUntilItListensNoMore) {
    static std::vector<bool> listenedWhenFreed;
    xmlDeregisterNodeDefault([](xmlNode*) {
        listenedWhenFreed.push_back(scripted::Platform::current()->hasHandler(news, anyID));
    });
    openDocument();
    xmlDeregisterNodeDefault(nullptr);
    EXPECT_THAT(listenedWhenFreed, AllOf(Not(IsEmpty()), Each(false)));
}

TEST_F(AFontCheck, PrintsAStandardExceptionAndPassesItOn) {
    platform.answers[1] = scripted::textAnswer(
        reply("2.0", "<font><syncID>Missing-Bold-Bold</syncID><count>abc</count></font>\n"));
    CaptureStdout();
    EXPECT_THROW(openDocument(), std::exception);
    EXPECT_THAT(GetCapturedStdout(),
                AllOf(StartsWith("ERROR:"), HasSubstr("could not parse <count> 'abc'")));
    host.fail("GetTextRange", 82);
    platform.sent.clear();
    CaptureStdout();
    EXPECT_THROW(openDocument(), std::exception);
    EXPECT_THAT(GetCapturedStdout(), StartsWith("ERROR:"));
    EXPECT_THAT(platform.sent, IsEmpty()) << "the survey came first";
}

TEST_F(AFontCheck, CannotGoOnWhereItCannotListen) {
    platform.registerStatus = 1;
    CaptureStdout();
    EXPECT_THROW(openDocument(), std::runtime_error);
    EXPECT_EQ(GetCapturedStdout(), "ERROR:token could not be registered\n");
    EXPECT_EQ(platform.sent.size(), 1U);
    EXPECT_TRUE(platform.hasHandler(news, anyID)) << "what had begun stays until the next check";
    GLY::NotifiyHandlerFactory::getNotifyHandler(false)->end();
}

TEST_F(AFontCheck, TakesTheAnswerIntoTheSharedRecords) {
    VexFontSuite::FontInfos fonts;
    ASSERT_EQ(VexFontSuite::getMissingFontInfos(fonts), kNoErr);
    platform.answers = {scripted::textAnswer(
        reply("2.0", "<font><syncID>Missing-Bold-Bold</syncID><count>1</count>"
                     "<isActive>1</isActive></font><showWindow>1</showWindow>\n"))};
    const GLY::GLYFontRequestEvent request = VexFontSuite::requestFonts(fonts);
    EXPECT_EQ(request.succeeded, 1);
    EXPECT_EQ(request.showWindow, 1);
    ASSERT_EQ(request.fonts.size(), 1U);
    EXPECT_EQ(request.fonts[0], fonts[0]);
    EXPECT_EQ(VexFontSuite::getNumMissingFonts(fonts), 0);
    EXPECT_EQ(fonts[0]->installed, 1);
    platform.sent.clear();
    EXPECT_EQ(VexFontSuite::requestFonts({}).succeeded, 1);
    EXPECT_THAT(platform.sent.at(0).directText(), Not(HasSubstr("<font>")));
}

} // namespace
