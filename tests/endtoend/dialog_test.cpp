// SPDX-License-Identifier: MIT
// The dialog of what is missing, answered by scripts, with the real manager.
#include "world.h"

#include "platform/notify.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <future>
#include <iterator>

namespace endtoend {

namespace {

using testing::HasSubstr;
using testing::Not;

/// One family on the desktop, one in two containers of the library, one that nobody knows.
class ADialogOfMissingFonts : public testing::Test {
protected:
    void SetUp() override {
        world_.install("DejaVu Sans");
        world_.stock("DejaVu Sans Mono", "code");
        world_.stock("DejaVu Sans Mono", "archive");
        ASSERT_EQ(world_.manager({"add", world_.library().string()}).status, 0);
    }

    Outcome answer(const std::string& script, const std::vector<std::string>& families,
                   const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments{
            "--headless", "--answers",     world_.write("answers", script).string(),
            "--save",     saved_.string(), world_.draw("a.svg", families).string()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Outcome outcome = world_.open(arguments);
        EXPECT_THAT(outcome.errors, Not(HasSubstr("misbehaves")));
        return outcome;
    }
    static std::string contentOf(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static nlohmann::json dialogsOf(const Outcome& outcome) {
        return nlohmann::json::parse(outcome.output).at("documents").at(0).at("dialogs");
    }
    World world_;
    std::filesystem::path saved_ = world_.folder() / "saved.svg";
};

TEST_F(ADialogOfMissingFonts, ClosesByItselfWhenNoneIsMissingAnyMore) {
    const Outcome outcome =
        answer("expand DejaVu Sans Mono\nselect archive\npress 5\nwait for end\npress 1\n",
               {"DejaVu Sans", "DejaVu Sans Mono"});
    EXPECT_EQ(outcome.status, 4);
    EXPECT_THAT(outcome.errors, HasSubstr("answers:5: no dialog was shown for this"));
    EXPECT_EQ(facesOf(outcome)["DejaVu Sans Mono"]["after"], "activated now");
    const auto dialogs = dialogsOf(outcome);
    ASSERT_EQ(dialogs.size(), 1U);
    EXPECT_EQ(dialogs[0]["rows"].size(), 3U) << "what is installed has no row";
    EXPECT_EQ(dialogs[0]["givenUp"], false);
}

TEST_F(ADialogOfMissingFonts, FollowsTheLibrarysNews) {
    const Outcome outcome = answer("expand DejaVu Sans Mono\nselect archive\npress 5\n"
                                   "wait for news\nselect Quay Stencil\nselect DejaVu Sans Mono\n",
                                   {"Quay Stencil", "DejaVu Sans Mono"});
    EXPECT_EQ(outcome.status, 4);
    EXPECT_THAT(outcome.errors, HasSubstr("answers:6: there is no row \"DejaVu Sans Mono\""));
    EXPECT_EQ(facesOf(outcome)["DejaVu Sans Mono"]["after"], "activated now");
    EXPECT_EQ(dialogsOf(outcome)[0]["givenUp"], true);
}

TEST_F(ADialogOfMissingFonts, KeepsItsChoicesInManyNewsAndClosesByThem) {
    auto answered = std::async(std::launch::async, [&] {
        return answer("expand DejaVu Sans Mono\nselect Several matches\nwait for news 100\n"
                      "press 6\npress 2\nselect archive\nwait for end 100\n",
                      {"DejaVu Sans Mono"});
    });
    world_.awaitDeed("fontRequest: 1 font\n", 2); // the dialog's own
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(notify_post("org.glyphora.Glyphora.FontLibraryChanged"), NOTIFY_STATUS_OK);
    }
    world_.awaitDeed("fontRequest: 1 font\n", 3);
    ASSERT_EQ(world_.manager({"activate", "1"}).status, 0);
    const Outcome outcome = answered.get();
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(facesOf(outcome)["DejaVu Sans Mono"]["after"], "activated now");
    EXPECT_EQ(dialogsOf(outcome)[0]["givenUp"], false);
}

TEST_F(ADialogOfMissingFonts, ReplacesWhatIsSelected) {
    const Outcome outcome = answer(
        "select Quay Stencil\nalso DejaVu Sans Mono\npress 6\nchoose DejaVu Sans Bold\npress 1\n"
        "select replaced\npress 1\n",
        {"Quay Stencil", "DejaVu Sans Mono", "DejaVu Sans"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    const auto dialogs = dialogsOf(outcome);
    ASSERT_EQ(dialogs.size(), 2U);
    EXPECT_EQ(dialogs[1]["title"], "Replace Font");
    auto faces = facesOf(outcome);
    EXPECT_EQ(faces["Quay Stencil"]["after"], "replaced");
    EXPECT_EQ(faces["DejaVu Sans Mono"]["after"], "replaced");
    EXPECT_EQ(facesOf(world_.list(saved_)).size(), 1U) << "what was saved has one family";
}

TEST_F(ADialogOfMissingFonts, ReplacesByAFontThatItHasJustActivated) {
    const Outcome outcome = answer("expand DejaVu Sans Mono\nselect archive\npress 5\n"
                                   "wait for news\nselect Quay Stencil\npress 6\n"
                                   "choose DejaVu Sans Mono\npress 1\npress 1\n",
                                   {"Quay Stencil", "DejaVu Sans Mono"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    auto faces = facesOf(outcome);
    EXPECT_EQ(faces["Quay Stencil"]["after"], "replaced");
    EXPECT_EQ(faces["DejaVu Sans Mono"]["after"], "activated now");
    EXPECT_EQ(facesOf(world_.list(saved_)).size(), 1U);
}

TEST_F(ADialogOfMissingFonts, HasItsReplacementsTakenBackBeforeItIsSaved) {
    const std::string script = "select Quay Stencil\npress 6\nchoose DejaVu Sans Bold\npress 1\n"
                               "press 1\nundo\n";
    const std::vector<std::string> families{"Quay Stencil", "DejaVu Sans"};
    const Outcome undone = answer(script, families);
    EXPECT_EQ(undone.status, 0) << undone.errors;
    EXPECT_EQ(facesOf(undone)["Quay Stencil"]["after"], "missing");
    EXPECT_EQ(contentOf(saved_), contentOf(world_.folder() / "documents/a.svg"));

    const Outcome redone = answer(script + "redo\n", families);
    EXPECT_EQ(redone.status, 0) << redone.errors;
    EXPECT_EQ(facesOf(redone)["Quay Stencil"]["after"], "replaced");
    EXPECT_EQ(facesOf(world_.list(saved_)).size(), 1U);
}

#ifdef HAS_WINDOWS
TEST_F(ADialogOfMissingFonts, IsAnsweredAlikeInWindowsThatArePictured) {
    const Outcome outcome = answer("expand DejaVu Sans Mono\nselect Quay Stencil\npress 6\n"
                                   "choose DejaVu Sans Bold\npress 1\npress 1\n",
                                   {"Quay Stencil", "DejaVu Sans Mono", "DejaVu Sans"},
                                   {"--pictures", world_.folder().string()});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(facesOf(outcome)["Quay Stencil"]["after"], "replaced");
    for (const char* const name : {"01-shown", "02-shown", "03-closing", "04-closing"}) {
        EXPECT_TRUE(exists(world_.folder() / (std::string(name) + ".png"))) << name;
    }
}
#endif

TEST_F(ADialogOfMissingFonts, IsToldOfAndGivenUpWhenNobodyAnswers) {
    world_.setEnvironment("DISPLAY", ":9999"); // there is none
    const Outcome outcome = world_.open({world_.draw("a.svg", {"Quay Stencil"})});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    const auto dialogs = dialogsOf(outcome);
    ASSERT_EQ(dialogs.size(), 1U);
    ASSERT_EQ(dialogs[0]["rows"].size(), 1U);
    EXPECT_EQ(dialogs[0]["rows"][0]["words"], "Quay Stencil, Regular, Unknown, Not found");
    EXPECT_EQ(dialogs[0]["givenUp"], true);
}

} // namespace

} // namespace endtoend
