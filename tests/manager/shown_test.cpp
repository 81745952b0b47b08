// SPDX-License-Identifier: MIT
// Commands about fonts that the desktop shows without the library's doing.
#include "manager/activation/filesteps.h"
#include "tests/manager/exchangefixture.h"

#include <filesystem>
#include <gmock/gmock.h>

using namespace managertest;
using namespace testsupport;
using testing::IsEmpty;
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

} // namespace
