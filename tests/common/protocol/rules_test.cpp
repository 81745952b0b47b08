// SPDX-License-Identifier: MIT
// The type keywords, the rules on the fonts of every message, and the dumps on standard error.
#include "samplefonts.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace Protocol;

namespace {

const std::string noSyncID = protocolFailure("syncID must contain at least one character", 566);
const std::string noPsName = protocolFailure("psName must contain at least one character", 572);
const std::string wildcardType = protocolFailure("type of font must not be 'all' in Replies", 578);
const std::string noFontInfos = protocolFailure("fontInfos must contain at least fontInfo", 584);

/// One kind of message, seen as a holder of fonts.
struct Message {
    const char* name;
    std::function<void(const FontList&)> construct;
    /// Sets a first list, then a second one.
    std::function<void(const FontList&, const FontList&)> setTwice;
    /// What it says of a font that breaks all rules at once, and then, one after the other, when
    /// the type, the PostScript name, the infos and the syncID have been mended.
    std::vector<std::string> failures;
};

template <typename M, typename... Before>
Message listMessage(const char* name, std::vector<std::string> failures, Before... before) {
    const auto make = [=](const FontList& fonts) {
        if constexpr (std::is_same_v<M, FontRequest>) { // NOLINT(bugprone-branch-clone)
            return M(before..., fonts, "app", "class");
        } else {
            return M(before..., fonts);
        }
    };
    return {name, [=](const FontList& fonts) { EXPECT_EQ(make(fonts).fonts, fonts); },
            [=](const FontList& first, const FontList& second) {
                M message = make({});
                EXPECT_EQ(&message.setFontList(first), &message.fonts);
                EXPECT_EQ(message.fonts, first);
                message.setFontList(second);
                EXPECT_EQ(message.fonts, second);
            },
            std::move(failures)};
}

const std::vector<Message> listMessages{
    listMessage<FontRequest>("FontRequest", {noPsName, noPsName, noSyncID, noSyncID, ""}, true),
    listMessage<ShowRequest>("ShowRequest", {noPsName, noPsName, noSyncID, noSyncID, ""}, true),
    listMessage<ActivationRequest>("ActivationRequest",
                                   {noPsName, noPsName, noSyncID, noSyncID, ""}),
    listMessage<FontReply>("FontReply", {wildcardType, noPsName, noFontInfos, noSyncID, ""}, true),
    listMessage<ShowReply>("ShowReply", {wildcardType, noPsName, noSyncID, noSyncID, ""}),
    listMessage<ActivationReply>("ActivationReply", {noSyncID, noSyncID, noSyncID, noSyncID, ""}),
};

/// A font that is mended step by step: type, PostScript name, infos, syncID.
Font mended(std::size_t steps) {
    const Font sound = soundFont();
    Font font;
    font.type = steps > 0 ? sound.type : font.type;
    font.psName = steps > 1 ? sound.psName : "";
    font.fontInfos = steps > 2 ? sound.fontInfos : font.fontInfos;
    font.syncID = steps > 3 ? sound.syncID : "";
    return font;
}

} // namespace

TEST(AFontType, HasAKeywordThatIsReadBackExactly) {
    const std::vector<std::string> keywords{"T1", "TT", "OT_T1", "OT_TT", "all"};
    for (int value = 0; value < 5; ++value) {
        const auto type = static_cast<Font::Type>(value);
        EXPECT_EQ(Font::typeToString(type), keywords[static_cast<std::size_t>(value)]);
        EXPECT_EQ(Font::stringToType(keywords[static_cast<std::size_t>(value)]), type);
    }
    EXPECT_EQ(Font::typeToString(static_cast<Font::Type>(7)), "error");
    EXPECT_EQ(Font::typeToString(static_cast<Font::Type>(-1)), "error");
    for (const std::string text : {"ot_tt", "", "OT", "OT_TT ", "error", "All"}) {
        EXPECT_EQ(failureOf([&] { std::ignore = Font::stringToType(text); }),
                  protocolFailure("could not parse <font><type>" + text + "</type>...", 72));
    }
}

TEST(AMessage, ChecksEachFontByItsOwnRuleInOrder) {
    for (const Message& message : listMessages) {
        SCOPED_TRACE(message.name);
        for (std::size_t step = 0; step < message.failures.size(); ++step) {
            SCOPED_TRACE(step);
            // The font that comes second is checked as well.
            EXPECT_EQ(failureOf([&] {
                          message.construct({soundFont("first"), mended(step)});
                      }),
                      message.failures[step]);
        }
    }
}

TEST(AMessage, ChecksTheOldListAndNotTheNewOneWhenItsFontsAreSet) {
    for (const Message& message : listMessages) {
        SCOPED_TRACE(message.name);
        const FontList bad{Font()};
        const FontList good{soundFont()};
        EXPECT_EQ(failureOf([&] { message.setTwice(good, bad); }), "");
        EXPECT_EQ(failureOf([&] { message.setTwice(bad, good); }), message.failures[0]);
    }
}

TEST(ABuyRequest, ChecksTheNewFontBeforeItTakesItAndItsReplyNever) {
    EXPECT_EQ(failureOf([] { BuyRequest{Font()}; }), noPsName);
    BuyRequest request(soundFont("old"));
    EXPECT_EQ(failureOf([&] { request.setFont(Font()); }), noPsName);
    EXPECT_EQ(request.font, soundFont("old"));
    EXPECT_EQ(&request.setFont(soundFont("new")), &request.font);
    EXPECT_EQ(request.font, soundFont("new"));
    BuyReply reply{Font()};
    EXPECT_EQ(reply.setFont(soundFont()), soundFont());
    EXPECT_EQ(reply.setFont(Font()), Font());
}

TEST(AnIndexOfFonts, HoldsEverySyncIDOnceInByteOrder) {
    const FontList fonts{soundFont("b"), soundFont(""), soundFont("\xc3\xa4"), soundFont("B")};
    FontIterMap index;
    index["left over"] = fonts.begin();
    getIterMap(fonts, index);
    std::vector<std::string> keys;
    for (const auto& [key, font] : index) {
        keys.push_back(key);
        EXPECT_EQ(font->syncID, key);
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"", "B", "b", "\xc3\xa4"}));
}

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
