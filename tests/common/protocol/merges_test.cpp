// SPDX-License-Identifier: MIT
// What a reply changes in the fonts of its request.
#include "samplefonts.h"

#include <gtest/gtest.h>

#include <tuple>
#include <utility>

using namespace Protocol;

namespace {

/// A merge, whatever the messages are: the request's fonts, the reply's, the result.
struct Merge {
    const char* name;
    std::function<FontList(const FontList&, const FontList&)> run;
    std::function<void(Font&, const Font&)> takeOver; // what becomes of a font by its answer
    int countMismatchLine;
    int missingLine;
};

const std::vector<Merge> merges{
    {"font request",
     [](const FontList& request, const FontList& reply) {
         return FontRequest(true, request, "", "").mergeFontsInReply(FontReply(true, reply));
     },
     [](Font& font, const Font& answer) {
         const Font asked = font;
         font = answer;
         font.handled = asked.handled;
         font.activationSuccessful = asked.activationSuccessful;
     },
     158, 173},
    {"show request",
     [](const FontList& request, const FontList& reply) {
         return ShowRequest(true, request).mergeFontsInReply(ShowReply(reply));
     },
     [](Font& font, const Font& answer) {
         font.count = answer.count;
         font.psName = answer.psName;
         font.type = answer.type;
     },
     286, 301},
    {"activation request",
     [](const FontList& request, const FontList& reply) {
         return ActivationRequest(request).mergeFontsInReply(ActivationReply(reply));
     },
     [](Font& font, const Font& answer) {
         font.activationSuccessful = answer.activationSuccessful;
         font.containerID = answer.containerID;
     },
     478, 493},
};

} // namespace

TEST(AMerge, TakesOverOnlyTheFieldsOfItsReply) {
    const Font full = fullFont();
    Font other = soundFont(full.syncID); // differs in every other field
    other.count = 2;
    other.typeMatchingCount = 1;
    for (const Merge& merge : merges) {
        SCOPED_TRACE(merge.name);
        for (const auto& [asked, answer] : {std::pair(full, other), std::pair(other, full)}) {
            Font expected = asked;
            merge.takeOver(expected, answer);
            EXPECT_EQ(merge.run({asked}, {answer}), FontList{expected});
        }
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
    const Font a = soundFont("a");
    const Font b = soundFont("b");
    const Font c = soundFont("c");
    for (const Merge& merge : merges) {
        const std::string duplicate = protocolFailure("got FontList with duplicate syncID", 666);
        const std::string mismatch =
            protocolFailure("number of fonts in reply does not match number of fonts in request",
                            merge.countMismatchLine);
        const std::string missing =
            protocolFailure("could not find syncID 'b' from request in reply", merge.missingLine);
        const std::tuple<FontList, FontList, std::string> cases[] = {
            {{a, a}, {a}, duplicate}, // before any count
            {{a}, {a, a}, duplicate},
            {{a, b}, {a}, mismatch},
            {{}, {a}, mismatch},
            {{c, b, a}, {a, soundFont("d"), soundFont("e")}, missing}, // the first in byte order
        };
        for (const auto& [request, reply, failure] : cases) {
            EXPECT_EQ(
                failureOf([&, &asked = request, &answers = reply] { merge.run(asked, answers); }),
                failure)
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
    Font expected = soundFont();
    expected.handled = true;
    EXPECT_EQ(BuyRequest(soundFont()).mergeFontInReply(BuyReply(fullFont())), expected);
}
