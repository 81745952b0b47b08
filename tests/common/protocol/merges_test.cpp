// SPDX-License-Identifier: MIT
// What a reply changes in the fonts of its request.
#include "samplefonts.h"

#include <gtest/gtest.h>

using namespace Protocol;

namespace {

// They differ in all fields but the syncID.
const Font asked = soundFont(fullFont().syncID);
const Font answered = fullFont();

/// A merge, whatever the messages are: the request's fonts, the reply's, the result.
struct Merge {
    const char* name;
    std::function<FontList(const FontList&, const FontList&)> run;
    std::function<void(Font&)> takeOver; // what becomes of `asked`
    int countMismatchLine;
    int missingLine;
};

const std::vector<Merge> merges{
    {"font request",
     [](const FontList& request, const FontList& reply) {
         return FontRequest(true, request, "", "").mergeFontsInReply(FontReply(true, reply));
     },
     [](Font& font) {
         const bool handled = font.handled;
         const bool activationSuccessful = font.activationSuccessful;
         font = answered;
         font.handled = handled;
         font.activationSuccessful = activationSuccessful;
     },
     158, 173},
    {"show request",
     [](const FontList& request, const FontList& reply) {
         return ShowRequest(true, request).mergeFontsInReply(ShowReply(reply));
     },
     [](Font& font) {
         font.count = answered.count;
         font.psName = answered.psName;
         font.type = answered.type;
     },
     286, 301},
    {"activation request",
     [](const FontList& request, const FontList& reply) {
         return ActivationRequest(request).mergeFontsInReply(ActivationReply(reply));
     },
     [](Font& font) {
         font.activationSuccessful = answered.activationSuccessful;
         font.containerID = answered.containerID;
     },
     478, 493},
};

} // namespace

TEST(AMerge, TakesOverOnlyTheFieldsOfItsReply) {
    for (const Merge& merge : merges) {
        SCOPED_TRACE(merge.name);
        Font expected = asked;
        merge.takeOver(expected);
        EXPECT_EQ(merge.run({asked}, {answered}), FontList{expected});
    }
}

TEST(AMerge, SortsBySyncIDWhateverTheMessagesOrder) {
    for (const Merge& merge : merges) {
        SCOPED_TRACE(merge.name);
        const FontList merged = merge.run({soundFont("b"), soundFont("c"), soundFont("a")},
                                          {soundFont("c"), soundFont("a"), soundFont("b")});
        std::string order;
        for (const Font& font : merged) {
            order += font.syncID;
        }
        EXPECT_EQ(order, "abc");
    }
}

TEST(AMerge, RefusesMessagesThatDoNotMatch) {
    struct Case {
        FontList request;
        FontList reply;
        std::function<std::string(const Merge&)> failure;
    };
    const auto duplicate = [](const Merge& /*merge*/) {
        return protocolFailure("got FontList with duplicate syncID", 666);
    };
    const auto mismatch = [](const Merge& merge) {
        return protocolFailure("number of fonts in reply does not match number of fonts in request",
                               merge.countMismatchLine);
    };
    const auto missing = [](const std::string& syncID) {
        return [syncID](const Merge& merge) {
            return protocolFailure("could not find syncID '" + syncID + "' from request in reply",
                                   merge.missingLine);
        };
    };
    const Font a = soundFont("a");
    const Font b = soundFont("b");
    const Font c = soundFont("c");
    const Font d = soundFont("d");
    const std::vector<Case> cases{
        {{a, a}, {a}, duplicate},                          // before any count
        {{a}, {a, a}, duplicate},                          //
        {{a, b}, {a}, mismatch},                           //
        {{}, {a}, mismatch},                               //
        {{c, b, a}, {a, d, soundFont("e")}, missing("b")}, // the first in ascending order
    };
    for (const Merge& merge : merges) {
        for (const Case& each : cases) {
            EXPECT_EQ(failureOf([&] { merge.run(each.request, each.reply); }), each.failure(merge))
                << merge.name;
        }
    }
}

TEST(AFontRequestMerge, WarnsWhenInfosOfTheRequestAreOverwritten) {
    Font plain = soundFont("a");
    plain.fontInfos.clear();
    testing::internal::CaptureStderr();
    merges[0].run({plain}, {soundFont("a")});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    merges[0].run({soundFont("a")}, {soundFont("a")});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "warning: overwriting non-empty request fontInfos!\n");
}

TEST(ABuyMerge, TakesOnlyHandledAndMatchesNothing) {
    Font expected = asked;
    expected.handled = true;
    Font answer = answered;
    answer.syncID = "another";
    EXPECT_EQ(BuyRequest(asked).mergeFontInReply(BuyReply(answer)), expected);
}
