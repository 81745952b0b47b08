// SPDX-License-Identifier: MIT
// Commands answered over a real library and real activation.
#include "manager/exchange/candidates.h"
#include "tests/faces/matching_cases.h"
#include "tests/manager/activationfixture.h"
#include "tests/manager/exchangefixture.h"

#include <filesystem>
#include <gmock/gmock.h>

using namespace manager;
using namespace managertest;
using namespace testsupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

namespace {

TEST_F(AnExchange, ActivatesAFontThatOneContainerHolds) {
    const ReplyNode reply = askForOne(
        "fontRequest", font({{"syncID", "s & <1>"}, {"psName", "Lato-Bold"}, {"type", "OT_TT"}}));
    std::vector<std::pair<std::string, std::string>> elements;
    for (const ReplyNode& child : reply.children) {
        elements.emplace_back(child.name, child.text);
    }
    const std::string id = idOf("Lato-Bold");
    const std::string info =
        "Lato Bold — OpenType TrueType, 2 styles, " + sandbox_.library() + "/one";
    EXPECT_THAT(elements,
                ElementsAre(std::pair("syncID", "s & <1>"), std::pair("type", "OT_TT"),
                            std::pair("psName", "Lato-Bold"), std::pair("styleName", "Bold"),
                            std::pair("familyName", "Lato"), std::pair("count", "1"),
                            std::pair("isActive", "1"), std::pair("typeMatchingCount", "1"),
                            std::pair("isTypeMatchingActive", "1"),
                            std::pair("typeMatchingContainerID", id), std::pair("containerID", id),
                            std::pair("activationSuccessfull", "1"),
                            std::pair("fontInfo", id + info)));
    EXPECT_TRUE(answer_.changed);
    EXPECT_THAT(answer_.done, ElementsAre(HasSubstr("activated Lato")));
    EXPECT_TRUE(activation_.isActive(*library_.container(*toContainerId(id))));

    const ReplyNode again = ask("fontRequest", font({{"syncID", "1"}, {"psName", "Lato-Bold"}}));
    EXPECT_EQ(again.value("showWindow"), "0");
    EXPECT_FALSE(answer_.changed);
}

TEST_F(AnExchange, AsksForTheWindowWhenSeveralContainersHoldAFont) {
    FontRecipe newer{"Both", "Regular", "Both", true};
    newer.revision = 0x28000;
    add("w/both.ttf", newer);
    add("z/copy.ttf", newer); // the same bytes are the same font
    scan();
    const std::string asked = font({{"syncID", "1"}, {"psName", "Both"}});
    const ReplyNode root = ask("fontRequest", asked);
    const ReplyNode& reply = *root.all("font").at(0);
    EXPECT_EQ(root.value("showWindow"), "1");
    EXPECT_EQ(reply.value("count"), "3");
    EXPECT_EQ(reply.value("isActive"), "0");
    EXPECT_EQ(reply.value("type"), "(none)") << "it would be asked for by the next request";
    EXPECT_EQ(reply.value("activationSuccessfull"), "(none)");
    ASSERT_THAT(reply.all("fontInfo"), SizeIs(3));
    EXPECT_THAT(reply.all("fontInfo").at(0)->value("value"),
                HasSubstr("Both Regular — OpenType TrueType, version 2.5"));
    EXPECT_THAT(answer_.undecided, ElementsAre("Both: in 3 containers, to be chosen from"));
    EXPECT_FALSE(answer_.changed);

    // The user's choice.
    const ReplyNode chosen = askForOne(
        "activationRequest", font({{"containerID", idOf("Both", 1)}, {"psName", "Both"}}));
    EXPECT_EQ(chosen.value("activationSuccessfull"), "1");
    EXPECT_EQ(chosen.value("containerID"), idOf("Both", 1));
    const ReplyNode again = ask("fontRequest", asked);
    EXPECT_EQ(again.value("showWindow"), "0");
    EXPECT_EQ(again.all("font").at(0)->value("isActive"), "1");
    EXPECT_EQ(again.all("font").at(0)->value("containerID"), idOf("Both", 1))
        << "the active one comes first";
}

TEST_F(AnExchange, LeavesTheLastFontsAloneWhenThereIsNoTimeLeft) {
    const std::string both = font({{"syncID", "1"}, {"psName", "Lato-Bold"}}) +
                             font({{"syncID", "2"}, {"psName", "Lato-Regular"}});
    for (const std::string word : {"fontRequest", "activationRequest", "showRequest"}) {
        ActivationRun run;
        run.setLookUpTime({});
        StandIns standIns;
        const Answer answer =
            answerCommand(library_, activation_, standIns,
                          "<cmd>" + word + "</cmd>\n" + both + "</cmd>\n", std::nullopt, run);
        EXPECT_THAT(run.takeWanted(), IsEmpty()) << word;
        EXPECT_THAT(answer.undecided, IsEmpty()) << word;
        EXPECT_THAT(answer.problems, ElementsAre(HasSubstr("2 of 2 fonts were not looked up")));
        EXPECT_THAT(answer.reply, HasSubstr("<syncID>2</syncID>")) << word;
        EXPECT_THAT(answer.reply, Not(HasSubstr("<isActive>1"))) << word;
    }
}

TEST_F(AnExchange, TakesTheOnlyContainerOfTheTypeAskedFor) {
    const ReplyNode root =
        ask("fontRequest", font({{"syncID", "1"}, {"psName", "Both"}, {"type", "TT"}}));
    const ReplyNode& reply = *root.all("font").at(0);
    EXPECT_EQ(root.value("showWindow"), "0");
    EXPECT_EQ(reply.value("count") + reply.value("typeMatchingCount"), "21");
    EXPECT_EQ(reply.value("isActive") + reply.value("isTypeMatchingActive"), "11");
    EXPECT_EQ(reply.value("activationSuccessfull"), "1");
    EXPECT_EQ(reply.value("type"), "TT");
    EXPECT_EQ(reply.value("typeMatchingContainerID"), idOf("Both"));
}

TEST_F(AnExchange, TellsWhatComesNearWithoutSayingThatItIsHeld) {
    const std::string asked = font({{"syncID", "1"},
                                    {"psName", "Lato-SemiBold"},
                                    {"familyName", "Lato"},
                                    {"styleName", "SemiBold"}});
    const std::string id = idOf("Lato-Bold");
    for (const bool isActive : {false, true}) {
        const ReplyNode root = ask("fontRequest", asked);
        const ReplyNode& reply = *root.all("font").at(0);
        EXPECT_EQ(root.value("showWindow"), "1");
        EXPECT_EQ(reply.value("count"), "0");
        EXPECT_EQ(reply.value("isActive"), "0");
        EXPECT_EQ(reply.value("styleName"), "SemiBold");
        for (const char* absent : {"containerID", "typeMatchingContainerID", "type"}) {
            EXPECT_EQ(reply.value(absent), "(none)") << absent;
        }
        ASSERT_THAT(reply.all("fontInfo"), SizeIs(1));
        EXPECT_EQ(reply.all("fontInfo").at(0)->value("name"), id);
        EXPECT_THAT(reply.value("fontInfo"),
                    HasSubstr("Lato Bold — same family, Bold instead of SemiBold; OpenType"));
        EXPECT_THAT(answer_.undecided,
                    ElementsAre(HasSubstr("not in the library; near: Lato Bold")));
        EXPECT_FALSE(answer_.changed);
        // It is activated where the user names it, and is not the font for that.
        if (!isActive) {
            const ReplyNode unnamed = ask("activationRequest", font({{"psName", "Lato-SemiBold"}}));
            EXPECT_EQ(unnamed.all("font").at(0)->value("isActive"), "0");
            const ReplyNode named = askForOne(
                "activationRequest", font({{"containerID", id}, {"psName", "Lato-SemiBold"}}));
            EXPECT_EQ(named.value("activationSuccessfull"), "1");
            EXPECT_EQ(named.value("isActive"), "0");
        }
    }
}

TEST_F(AnExchange, TellsWhatMayStandInForAFaceWhoseLookIsKnown) {
    sandbox_.setFontconfig("<alias binding='same'><family>Absent Sans</family><accept>"
                           "<family>Unknown</family><family>Lato</family></accept></alias>"
                           "<alias><family>Other Sans</family><accept><family>Lato</family>"
                           "</accept></alias>");
    const std::vector folders{sandbox_.library(), sandbox_.root() + "/away"};
    sandbox_.write("../away/gone.ttf", makeFont({"Gone", "Regular", "Gone"}));
    updateLibrary(library_, folders, FontReaderLimits{});
    StandIns standIns;  // as a service has them
    std::string others; // more families than fontconfig is asked for at once, and before this one
    for (int i = 0; i < 300; ++i) {
        others += font({{"syncID", "0"}, {"familyName", "A" + std::to_string(i)}});
    }
    const auto near = [&](const char* family, const char* style) {
        ActivationRun run;
        const std::string asked = font(
            {{"syncID", "1"}, {"psName", "Nobody"}, {"familyName", family}, {"styleName", style}});
        const ReplyNode root = parseFolded(
            answerCommand(library_, activation_, standIns,
                          "<cmd>fontRequest</cmd>\n" + others + asked + asked + "</cmd>\n",
                          std::nullopt, run)
                .reply);
        std::vector<std::string> lines;
        for (const ReplyNode* info : root.all("font").back()->all("fontInfo")) {
            const std::string line = info->value("value");
            lines.push_back(line.substr(0, line.find(';')));
        }
        return lines;
    };
    const std::string lato = "Lato Regular — the desktop's replacement for Absent Sans";
    EXPECT_THAT(near("Absent Sans", "Regular"),
                UnorderedElementsAre(lato, "Both Regular — similar to Absent Sans",
                                     "Müller & Söhne <Co> Regular — similar to Absent Sans",
                                     "Gone Regular — similar to Absent Sans"));
    EXPECT_EQ(near("Absent Sans", "Regular").at(0), lato);
    EXPECT_THAT(near("Absent Sans", "Black"),
                ElementsAre("Lato Bold — the desktop's replacement for Absent Sans, "
                            "Bold instead of Black"));
    EXPECT_THAT(near("Other Sans", "Regular"), IsEmpty());

    std::filesystem::remove_all(folders[1]);
    updateLibrary(library_, folders, FontReaderLimits{});
    EXPECT_THAT(near("Absent Sans", "Regular"), SizeIs(3));
    EXPECT_THAT(near("Gone", "Regular"),
                UnorderedElementsAre("Both Regular — similar to Gone",
                                     "Lato Regular — similar to Gone", HasSubstr("Müller")));
    EXPECT_THAT(near("Gone", "Bold"), IsEmpty());
}

TEST(TheLookUp, FindsWhatTheTableOfMatchingSays) {
    for (const facestest::MatchingCase& c : facestest::matchingCases()) {
        const Sandbox sandbox;
        for (const facestest::HeldFace& held : c.held) {
            sandbox.write(held.postScriptName + ".ttf", makeFont(recipeOf(held)));
        }
        Library library(sandbox.places());
        updateLibrary(library, std::vector{sandbox.library()}, FontReaderLimits{});
        const Activation activation(sandbox.places());
        CommandFont font;
        font.postScriptName = c.wanted.postScriptName;
        font.familyName = c.wanted.family;
        font.styleName = c.wanted.style;
        const Finding finding = CandidateFinder(library, activation).find(font);
        EXPECT_EQ(finding.exact.empty() ? "" : finding.exact.front().face.postScriptName, c.exact)
            << c.what;
        EXPECT_EQ(finding.near.empty() ? "" : faces::lineOf(finding.near.front().reason), c.near)
            << c.what;
    }
}

TEST_F(AnExchange, FindsByFamilyAndStyleWhatNoPostScriptNameDoes) {
    const struct {
        const char* psName;
        const char* family;
        const char* style;
        const char* found;
    } cases[] = {
        {"Lato-Bold", "Both", "Regular", "Lato Bold"},
        {"LatoBold", "lato", "BOLD", "Lato Bold"},
        {"Unknown", "MÜLLER & SÖHNE <co>", "Regular", "Müller & Söhne <Co> Regular"},
        {"", "Lato", "", "Lato Regular"},
        {"Unknown", "", "", " "},
    };
    for (const auto& [psName, family, style, found] : cases) {
        const ReplyNode reply = askForOne("fontRequest", font({{"syncID", "1"},
                                                               {"psName", psName},
                                                               {"familyName", family},
                                                               {"styleName", style}}));
        EXPECT_EQ(reply.value("familyName") + " " + reply.value("styleName"), found);
        // By this name the asker finds the font in its document again.
        EXPECT_EQ(reply.value("psName"), *psName != '\0' ? psName : "Lato-Regular");
    }
}

TEST_F(AnExchange, SaysThatNobodyHoldsAFont) {
    const ReplyNode root =
        ask("fontRequest", font({{"syncID", "1"}, {"psName", "No & <None>"}, {"type", "T1"}}) +
                               font({{"syncID", "2"}, {"psName", "None"}, {"familyName", "F"}}));
    EXPECT_EQ(root.value("showWindow"), "0");
    const auto fonts = root.all("font");
    ASSERT_THAT(fonts, SizeIs(2));
    EXPECT_EQ(fonts[0]->value("count"), "0");
    EXPECT_EQ(fonts[0]->value("type"), "T1");
    EXPECT_EQ(fonts[0]->value("psName"), "No & <None>");
    EXPECT_EQ(fonts[1]->value("type"), "(none)");
    EXPECT_EQ(fonts[1]->value("familyName"), "F");
    EXPECT_EQ(fonts[1]->value("isActive"), "0");
    EXPECT_THAT(fonts[1]->all("fontInfo"), IsEmpty());
    EXPECT_THAT(answer_.problems, IsEmpty());
}

TEST_F(AnExchange, SaysWhyAFontFailedAndActivatesTheOthersWithIt) {
    std::filesystem::remove(sandbox_.library() + "/one/lato.ttf");
    const ReplyNode root = ask("fontRequest", font({{"syncID", "1"}, {"psName", "Lato-Regular"}}) +
                                                  font({{"syncID", "2"}, {"psName", "Lato-Bold"}}));
    for (const auto& [position, active] : {std::pair(0U, "1"), std::pair(1U, "0")}) {
        const ReplyNode& reply = *root.all("font").at(position);
        EXPECT_EQ(reply.value("count"), "1");
        EXPECT_EQ(reply.value("isActive"), active);
        EXPECT_EQ(reply.value("activationSuccessfull"), active);
    }
    EXPECT_THAT(root.value("error"), HasSubstr("/one/lato.ttf: cannot be read"));
    std::filesystem::remove(sandbox_.library() + "/odd/m.ttf");
    EXPECT_EQ(
        askForOne("fontRequest", font({{"syncID", "1"}, {"psName", "Mueller"}})).value("isActive"),
        "0");
    EXPECT_FALSE(answer_.changed);
}

TEST_F(AnExchange, RenewsWhatTheLibraryReplacedUnderTheSameName) {
    const std::string asked = font({{"syncID", "1"}, {"psName", "Mueller"}});
    EXPECT_EQ(askForOne("fontRequest", asked).value("isActive"), "1");
    add("odd/m.ttf", {"Müller & Söhne <Co>", "Book", "Mueller", true});
    scan();
    EXPECT_EQ(askForOne("showRequest", asked).value("isActive"), "0");
    EXPECT_EQ(askForOne("fontRequest", asked).value("isActive"), "1");
    EXPECT_TRUE(answer_.changed);
    EXPECT_EQ(askForOne("showRequest", asked).value("isActive"), "1");
}

TEST_F(AnExchange, TakesNothingAwayThatAnotherProgramHas) {
    const std::string asked = font({{"syncID", "1"}, {"psName", "Lato-Bold"}});
    EXPECT_EQ(askForOne("fontRequest", asked).value("isActive"), "1");
    const std::string set = activation_.folder(*toContainerId(idOf("Lato-Bold")));
    const auto files = [&] {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(set)) {
            names.insert(entry.path().filename().string());
        }
        names.erase(setRecordName);
        return names;
    };
    std::filesystem::remove(sandbox_.library() + "/one/lato-r.ttf");
    add("one/lato-i.ttf", {"Lato", "Italic", "Lato-Italic", true});
    scan();
    EXPECT_EQ(askForOne("fontRequest", asked).value("isActive"), "1");
    EXPECT_THAT(files(), ElementsAre("lato-r.ttf", "lato.ttf")) << "it only has one reason more";
    std::filesystem::rename(sandbox_.library() + "/one/lato.ttf",
                            sandbox_.library() + "/one/bold.ttf");
    scan();
    {
        const FontUser user(set + "/lato.ttf");
        EXPECT_EQ(askForOne("fontRequest", asked).value("isActive"), "1");
        EXPECT_THAT(answer_.undecided, ElementsAre(HasSubstr("; newer files take their place")));
        EXPECT_THAT(answer_.problems, IsEmpty());
        EXPECT_THAT(files(), ElementsAre("lato-i.ttf", "lato-r.ttf", "lato.ttf"));
    }
    EXPECT_EQ(askForOne("fontRequest", asked).value("isActive"), "1");
    EXPECT_THAT(files(), ElementsAre("bold.ttf", "lato-i.ttf", "lato-r.ttf"));
}

TEST_F(AnExchange, TakesAnotherContainerWhenTheNamedOneFails) {
    std::filesystem::remove(sandbox_.library() + "/x/both.ttf");
    const std::string named = idOf("Both", 0);
    const std::string other = idOf("Both", 1);
    const std::string failing = font({{"containerID", named}, {"psName", "Both"}});
    // Also when the other one is activated by the same command.
    for (const std::string& more :
         {std::string(), font({{"containerID", other}, {"psName", "Both"}})}) {
        const ReplyNode root = ask("activationRequest", failing + more);
        for (const ReplyNode* reply : root.all("font")) {
            EXPECT_EQ(reply->value("containerID"), other);
            EXPECT_EQ(reply->value("activationSuccessfull"), "1");
        }
        EXPECT_THAT(answer_.problems, ElementsAre(HasSubstr("/x/both.ttf: cannot be read")));
        EXPECT_TRUE(activation_.deactivate(std::vector{*toContainerId(other)}).front().success);
    }
}

TEST_F(AnExchange, DoesNotChooseAContainerAgainThatHasFailed) {
    // The better one of the two: it comes first whenever the font is looked up.
    std::filesystem::remove(sandbox_.library() + "/y/both.ttf");
    const ReplyNode reply = askForOne("activationRequest",
                                      font({{"containerID", idOf("Both", 1)}, {"psName", "Both"}}));
    EXPECT_EQ(reply.value("containerID"), idOf("Both", 0));
    EXPECT_EQ(reply.value("activationSuccessfull"), "1");
}

TEST_F(AnExchange, JudgesByTheFontWhenItsContainerIsShownInPart) {
    sandbox_.setFontconfig("<dir>" + sandbox_.root() +
                           "/data/fonts</dir><selectfont><rejectfont><glob>*/lato-r.ttf</glob>"
                           "</rejectfont></selectfont>");
    for (const char* word : {"fontRequest", "activationRequest"}) {
        const ReplyNode root = ask(word, font({{"syncID", "1"}, {"psName", "Lato-Bold"}}) +
                                             font({{"syncID", "2"}, {"psName", "Lato-Regular"}}));
        EXPECT_EQ(root.all("font").at(0)->value("isActive"), "1") << word;
        EXPECT_EQ(root.all("font").at(1)->value("isActive"), "0") << word;
        EXPECT_EQ(root.all("font").at(1)->value("activationSuccessfull"), "0") << word;
        EXPECT_THAT(root.value("error"), HasSubstr("lato-r.ttf: was in place")) << word;
    }
}

TEST_F(AnExchange, ActivatesByPostScriptNameWithoutAContainer) {
    add("z/both.ttf", {"Both", "Regular", "Both", true});
    scan();
    const std::string same = idOf("Both", 2);
    const std::string plain = idOf("Both", 0);
    const std::string openType = idOf("Both", 1);
    const struct {
        std::string containerId;
        const char* psName;
        std::string activated;
    } cases[] = {
        {"", "Both", openType}, {"0", "Both", openType}, {"999", "Both", openType},
        {plain, "Both", plain}, {"x", "Nobody", "x"},    {idOf("Lato-Bold"), "Both", openType},
        {same, "Both", same},
    };
    for (const auto& [containerId, psName, activated] : cases) {
        static_cast<void>(activation_.deactivate(
            std::vector{*toContainerId(plain), *toContainerId(openType), *toContainerId(same)}));
        const ReplyNode root =
            ask("activationRequest", font({{"containerID", containerId}, {"psName", psName}}));
        const ReplyNode& reply = *root.all("font").at(0);
        EXPECT_EQ(reply.value("containerID"), activated);
        const bool known = toContainerId(activated).has_value();
        EXPECT_EQ(reply.value("activationSuccessfull"), known ? "1" : "0");
        EXPECT_EQ(root.all("error").empty(), known);
    }
    EXPECT_EQ(askForOne("showRequest", font({{"psName", "Lato-Bold"}})).value("isActive"), "0")
        << "a container that does not hold the font is let alone";
}

TEST_F(AnExchange, AnswersShowAndBuyRequestsWithoutActing) {
    add("z/both.ttf", {"Both", "Regular", "Both", true}); // the bytes of another
    scan();
    for (const char* word : {"showRequest", "buyRequest"}) {
        const ReplyNode root = ask(word, font({{"psName", "Both"}}) + font({{"psName", "None"}}));
        EXPECT_EQ(root.value("showWindow"), "0");
        const auto fonts = root.all("font");
        ASSERT_THAT(fonts, SizeIs(2));
        EXPECT_EQ(fonts[0]->value("count"), "2");
        EXPECT_EQ(fonts[0]->value("psName"), "Both");
        EXPECT_EQ(fonts[1]->value("count"), "0");
        for (const std::string& id : {idOf("Both", 0), idOf("Both", 1), idOf("Both", 2)}) {
            const std::string named = font({{"psName", "Both"}, {"containerID", id}});
            EXPECT_EQ(askForOne(word, named).value("containerID"), id);
        }
        EXPECT_EQ(fonts[0]->value("handled"), word == std::string("buyRequest") ? "0" : "(none)");
        EXPECT_FALSE(answer_.changed);
    }
    EXPECT_THAT(activation_.active([](const std::string&) {}), IsEmpty());
}

TEST_F(AnExchange, AnswersWhatItCannotReadOrDoesNotKnow) {
    const ReplyNode unknown = ask("dance<&>", "<font>\n</font>\n");
    EXPECT_EQ(unknown.value("error"), "command, line 1: unknown command word 'dance<&>'");
    const ReplyNode malformed = ask("fontRequest", "<font>\n");
    EXPECT_THAT(malformed.value("error"), HasSubstr("command, line 3: "));
    EXPECT_THAT(malformed.text, testing::StartsWith("fontRequest2.0"));
    answer_ = answerCommand(library_, activation_, "");
    EXPECT_THAT(parseFolded(answer_.reply).text, testing::StartsWith("error2.0command, line 1"));
}

TEST_F(AnExchange, TellsWhomToInformOfChanges) {
    ask("fontRequest", "<targetClass>ABCD</targetClass>\n<targetPid>12</targetPid>\n");
    EXPECT_EQ(answer_.target, (ChangeTarget{12, "ABCD"}));
    ask("showRequest", "<targetPid>12</targetPid>\n");
    EXPECT_EQ(answer_.target, (ChangeTarget{12, "FILC"}));
    ask("activationRequest", "");
    EXPECT_EQ(answer_.target, std::nullopt);
}

TEST_F(AnExchange, CountsForTheSenderWhereAnotherUsersIsNamed) {
    // Root has to make one, to all others the first process is.
    pid_t other = 1;
    std::optional<FontUser> program;
    if (geteuid() == 0) {
        constexpr uid_t nobody = 65534;
        other = program.emplace(sandbox_.library() + "/odd/m.ttf", nobody).process();
    } else if (isOwn(other)) {
        GTEST_SKIP() << "all processes are this user's";
    }
    for (const auto& [named, expected] :
         {std::pair(getppid(), getppid()), std::pair(other, getpid())}) {
        ActivationRun run;
        StandIns standIns;
        const std::string command = "<cmd>fontRequest</cmd>\n<targetPid>" + std::to_string(named) +
                                    "</targetPid>\n" +
                                    font({{"syncID", "1"}, {"psName", "Mueller"}}) + "</cmd>\n";
        static_cast<void>(answerCommand(library_, activation_, standIns, command, getpid(), run));
        EXPECT_THAT(run.takeWanted().at(0).reasons, ElementsAre(*Reason::forDocumentOf(expected)));
    }
}

} // namespace
