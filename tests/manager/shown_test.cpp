// SPDX-License-Identifier: MIT
// Commands about fonts that the desktop shows without the library's doing.
#include "manager/activation/filesteps.h"
#include "tests/manager/exchangefixture.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <unistd.h>
#include <utility>

using namespace manager;
using namespace managertest;
using namespace testsupport;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testsupport::ReplyNode;

namespace {

class AnInstalledFont : public AnExchange {
protected:
    void install(const FontRecipe& recipe) {
        uninstall(); // what is written over in place fontconfig does not notice
        writeBytes(installed_, makeFont(recipe));
        manager::touchFolder(sandbox_.places().data + "/fonts");
    }
    void uninstall() {
        std::filesystem::remove(installed_);
        manager::touchFolder(sandbox_.places().data + "/fonts");
    }
    std::string askActive(const char* word, const std::string& psName) {
        return askForOne(word, font({{"syncID", "1"}, {"psName", psName}})).value("isActive");
    }
    void expectNothingDone() {
        EXPECT_FALSE(answer_.changed);
        EXPECT_THAT(answer_.undecided, IsEmpty());
        EXPECT_THAT(answer_.problems, IsEmpty());
        EXPECT_THAT(activation_.active([](const std::string&) {}), IsEmpty());
    }

    std::string installed_ = sandbox_.places().data + "/fonts/installed.ttf";
};

TEST_F(AnInstalledFont, IsActiveThoughTheLibraryDoesNotHoldIt) {
    install({"Own", "Regular", "Own-Regular"});
    for (const auto& [type, matching] : {std::pair("TT", "1"), std::pair("OT_TT", "0")}) {
        const ReplyNode reply = askForOne(
            "fontRequest", font({{"syncID", "1"}, {"psName", "Own-Regular"}, {"type", type}}));
        EXPECT_EQ(reply.value("isActive"), "1");
        EXPECT_EQ(reply.value("isTypeMatchingActive"), matching);
        EXPECT_EQ(reply.value("count"), "0");
        expectNothingDone();
    }
    EXPECT_EQ(askActive("showRequest", "Own-Regular"), "1");
    const ReplyNode reply =
        askForOne("activationRequest", font({{"containerID", "5"}, {"psName", "Own-Regular"}}));
    EXPECT_EQ(reply.value("isActive") + reply.value("activationSuccessfull"), "11");
    EXPECT_EQ(reply.value("containerID"), "5");
    expectNothingDone();
}

TEST_F(AnInstalledFont, IsNotActivatedASecondTime) {
    for (const bool layout : {true, false}) { // in one container, and in two
        const std::string name = layout ? "Lato-Bold" : "Both";
        install({layout ? "Lato" : "Both", layout ? "Bold" : "Regular", name, layout});
        EXPECT_EQ(askActive("fontRequest", name), "1");
        expectNothingDone();
        EXPECT_EQ(
            askForOne("activationRequest", font({{"containerID", idOf(name)}, {"psName", name}}))
                .value("activationSuccessfull"),
            "1");
        expectNothingDone();
    }
    // Nor under the name that a document has for it.
    install({"Lato", "Bold", "Lato-Bold", true});
    const std::string asked =
        font({{"syncID", "1"}, {"psName", "LatoB"}, {"familyName", "Lato"}, {"styleName", "Bold"}});
    EXPECT_EQ(askForOne("fontRequest", asked).value("isActive"), "1");
    expectNothingDone();
    install({"Both", "Regular", "Both"});
    // Others of the command are.
    const ReplyNode root = ask("fontRequest", font({{"syncID", "1"}, {"psName", "Both"}}) +
                                                  font({{"syncID", "2"}, {"psName", "Mueller"}}));
    EXPECT_EQ(root.all("font").at(0)->value("isActive"), "1");
    EXPECT_EQ(root.all("font").at(1)->value("isActive"), "1");
    EXPECT_TRUE(answer_.changed);
}

TEST_F(AnInstalledFont, CountsAsLongAsItIsThere) {
    EXPECT_EQ(askActive("fontRequest", "Own-Regular"), "0");
    install({"Own", "Regular", "Own-Regular"});
    EXPECT_EQ(askActive("fontRequest", "Own-Regular"), "1");
    EXPECT_EQ(askActive("fontRequest", "own-regular"), "0") << "another name";
    uninstall();
    EXPECT_EQ(askActive("fontRequest", "Own-Regular"), "0");
}

TEST_F(AnInstalledFont, MayBeOneThatTheLibraryHasLostSince) {
    EXPECT_EQ(askActive("fontRequest", "Mueller"), "1");
    std::filesystem::remove(sandbox_.library() + "/odd/m.ttf");
    scan();
    const ReplyNode reply =
        askForOne("fontRequest", font({{"syncID", "1"}, {"psName", "Mueller"}}));
    EXPECT_EQ(reply.value("count"), "0");
    EXPECT_EQ(reply.value("isActive"), "1");
    // And come back elsewhere: the desktop needs no second one.
    add("even/m.ttf", {"Müller & Söhne <Co>", "Regular", "Mueller", true});
    scan();
    EXPECT_EQ(askActive("fontRequest", "Mueller"), "1");
    EXPECT_FALSE(answer_.changed);
}

TEST_F(AnInstalledFont, StaysForAllThatAskedWhenItsHolderIsAway) {
    const auto ask = [&](const char* word, pid_t sender = getpid()) {
        ActivationRun run;
        StandIns standIns;
        static_cast<void>(answerCommand(library_, activation_, standIns,
                                        "<cmd>" + std::string(word) + "</cmd>\n" +
                                            font({{"syncID", "1"}, {"psName", "Mueller"}}) +
                                            font({{"syncID", "2"}, {"psName", "Mueller"}}) +
                                            "</cmd>\n",
                                        sender, run));
        return std::pair(run.takeWanted(), run.takeUsed());
    };
    EXPECT_TRUE(activation_.activate(ask("fontRequest", getppid()).first).at(0).success);
    std::filesystem::rename(sandbox_.library(), sandbox_.root() + "/unplugged");
    for (const bool isGone : {false, true}) {
        updateLibrary(library_,
                      isGone ? std::vector<std::string>() : std::vector{sandbox_.library()},
                      FontReaderLimits{});
        for (const char* word : {"fontRequest", "activationRequest"}) {
            const std::vector<ContainerFonts> used = ask(word).second;
            EXPECT_THAT(used, SizeIs(1)) << word;
            EXPECT_EQ(activation_.activate(used).at(0).problems, std::vector<std::string>());
            EXPECT_THAT(
                activation_.active({}).at(0).reasons,
                ElementsAre(*Reason::forDocumentOf(getppid()), *Reason::forDocumentOf(getpid())));
        }
    }
    EXPECT_TRUE(activation_.deactivate(activation_.sets()).at(0).success);
    EXPECT_THAT(ask("fontRequest").second, IsEmpty());
}

TEST_F(AnInstalledFont, IsNotActivatedFromAnotherContainerByHand) {
    // Of other bytes, and of the same.
    add("z/both.ttf", {"Both", "Regular", "Both", true});
    scan();
    askForOne("activationRequest", font({{"containerID", idOf("Both", 1)}, {"psName", "Both"}}));
    for (const std::size_t other : {0U, 2U}) {
        const std::string id = idOf("Both", other);
        const ReplyNode reply =
            askForOne("activationRequest", font({{"containerID", id}, {"psName", "Both"}}));
        EXPECT_EQ(reply.value("isActive") + reply.value("activationSuccessfull"), "11");
        EXPECT_EQ(reply.value("containerID"), id);
        EXPECT_THAT(activation_.sets(), SizeIs(1));
    }
}

} // namespace
