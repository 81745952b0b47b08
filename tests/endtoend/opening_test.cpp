// SPDX-License-Identifier: MIT
// A drawing opens, and its missing fonts are found, asked for and activated.
#include "world.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace endtoend {

namespace {

using testing::HasSubstr;
using testing::Not;

/// One family on the desktop, one in the library, one in two containers of it, one with characters
/// that have a meaning in markup, and one that nobody knows.
class AnOpenedDrawing : public testing::Test {
protected:
    void SetUp() override {
        world_.install("DejaVu Sans");
        world_.stock("DejaVu Serif", "text");
        world_.stock("DejaVu Sans Mono", "code");
        world_.stock("DejaVu Sans Mono", "archive");
        world_.stockFile(GLYPHORA_SAMPLES "/fonts/MuellerUndSoehneGrotesk-Regular.ttf", "clients");
        ASSERT_EQ(world_.manager({"add", world_.library().string()}).status, 0);
    }

    static void expectStates(const Outcome& outcome, std::size_t document,
                             const std::map<std::string, std::string>& states) {
        auto faces = facesOf(outcome, document);
        EXPECT_EQ(faces.size(), states.size());
        for (const auto& [family, state] : states) {
            EXPECT_EQ(faces[family].value("before", "?") + " > " +
                          faces[family].value("after", "?"),
                      state)
                << family;
        }
    }

    World world_;
};

TEST_F(AnOpenedDrawing, GetsWhatOneContainerHolds) {
    const auto drawing =
        world_.draw("poster.svg", {"DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono",
                                   "Müller &amp; Söhne Grotesk", "Quay Stencil"});
    const Outcome outcome = world_.open({drawing.string()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "") << "nor does the plug-in tell of the manager's launch";
    expectStates(outcome, 0,
                 {{"DejaVu Sans", "installed > installed"},
                  {"DejaVu Serif", "missing > activated now"},
                  {"DejaVu Sans Mono", "missing > missing"},
                  {"Müller & Söhne Grotesk", "missing > activated now"},
                  {"Quay Stencil", "missing > missing"}});

    // It leaves with the host that needed it; what a person activates is there for the next.
    world_.awaitDeed("deactivated DejaVu Serif", 1);
    world_.awaitDeed("deactivated Müller & Söhne Grotesk", 1);
    EXPECT_EQ(world_.manager({"activate", "DejaVu Serif"}).status, 0);
    expectStates(world_.open({drawing.string()}), 0,
                 {{"DejaVu Sans", "installed > installed"},
                  {"DejaVu Serif", "installed > installed"},
                  {"DejaVu Sans Mono", "missing > missing"},
                  {"Müller & Söhne Grotesk", "missing > activated now"},
                  {"Quay Stencil", "missing > missing"}});
    EXPECT_EQ(world_.manager({"deactivate", "--all"}).status, 0);
    EXPECT_EQ(facesOf(world_.list(drawing))["DejaVu Serif"]["before"], "missing");
}

TEST_F(AnOpenedDrawing, LeavesTheManagerAloneWhenNothingIsMissing) {
    const auto drawing = world_.draw("plain.svg", {"DejaVu Sans", "sans-serif"});
    EXPECT_EQ(world_.open({drawing.string()}).status, 0);
    EXPECT_NE(world_.manager({"quit"}).status, 0) << "a font manager was started";
}

TEST_F(AnOpenedDrawing, IsCheckedAgainAfterThePlugInWasReloaded) {
    const auto first = world_.draw("first.svg", {"DejaVu Serif"});
    const auto second = world_.draw("second.svg", {"Müller &amp; Söhne Grotesk"});
    const Outcome outcome = world_.open({"--reload", first.string(), second.string()});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.errors, Not(HasSubstr("misbehaves")));
    expectStates(outcome, 0, {{"DejaVu Serif", "missing > activated now"}});
    expectStates(outcome, 1, {{"Müller & Söhne Grotesk", "missing > activated now"}});
}

TEST_F(AnOpenedDrawing, LaunchesAManagerThatWasKilled) {
    expectStates(world_.open({world_.draw("first.svg", {"DejaVu Serif"}).string()}), 0,
                 {{"DejaVu Serif", "missing > activated now"}});
    world_.killManager();
    expectStates(world_.open({world_.draw("second.svg", {"Müller &amp; Söhne Grotesk"}).string()}),
                 0, {{"Müller & Söhne Grotesk", "missing > activated now"}});
}

TEST_F(AnOpenedDrawing, IsServedOnABusOfItsOwnWhereTheSessionHasNone) {
    world_.setEnvironment("DBUS_SESSION_BUS_ADDRESS", "");
    const Outcome outcome = world_.open({world_.draw("poster.svg", {"DejaVu Serif"}).string()});
    EXPECT_THAT(outcome.errors, HasSubstr("started a private one for this process"));
    expectStates(outcome, 0, {{"DejaVu Serif", "missing > activated now"}});
}

TEST_F(AnOpenedDrawing, TellsInTheUsersLanguageThatNoManagerIsThere) {
    world_.launchInstead("");
    const auto drawing = world_.draw("poster.svg", {"DejaVu Serif"});
    const Outcome english = world_.open({"--locale", "en_US", drawing.string()});
    const Outcome german = world_.open({"--locale", "de_DE", drawing.string()});
    EXPECT_EQ(english.status, 0);
    expectStates(english, 0, {{"DejaVu Serif", "missing > missing"}});
    EXPECT_THAT(english.errors, HasSubstr("alert: The font manager Glyphora could not be started"));
    EXPECT_THAT(german.errors, HasSubstr("alert: Die Schriftverwaltung Glyphora konnte nicht"));
}

TEST_F(AnOpenedDrawing, OpensTheOthersWhenOneIsBad) {
    const auto good = world_.draw("good.svg", {"DejaVu Serif"});
    const auto bad =
        world_.write("documents/bad.svg", "<svg xmlns='http://www.w3.org/2000/svg'>\n<g>");
    const Outcome outcome = world_.open({bad.string(), good.string()});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, HasSubstr(bad.string() + ":2:"));
    expectStates(outcome, 1, {{"DejaVu Serif", "missing > activated now"}});
}

TEST(AnAboutBox, IsPrintedWithoutADisplay) {
    World world;
    const Outcome outcome =
        world.run({GLYPHORA_HOST, "about", "--headless", "--plugin", GLYPHORA_BUNDLE});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "About Glyphora\n"
              "Glyphora finds the fonts that a document needs and you do not have at hand, and has "
              "them activated by the Glyphora font manager.\n\nMIT License\n");
    EXPECT_EQ(outcome.errors, "");
}

} // namespace

} // namespace endtoend
