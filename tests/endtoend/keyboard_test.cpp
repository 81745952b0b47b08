// SPDX-License-Identifier: MIT
// The dialogs as windows of an X server, used by nothing but the keys that it sends.
#include "world.h"

#include "tests/support/xserver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

namespace endtoend {

namespace {

class AKeyboard : public testing::Test {
protected:
    void SetUp() override {
        world_.setEnvironment("DISPLAY", server_.display());
        world_.setEnvironment("QT_QPA_PLATFORM", "xcb");
    }

    /// Waits for the window first. Its keys come from the server, as those of a keyboard do. The
    /// manager's window may take the focus meanwhile, which xdotool would then await for ever.
    void press(const std::string& title, const std::vector<std::string>& keys) const {
        std::vector<std::string> words{
            "timeout",       "5",        "xdotool", "search",      "--sync",
            "--onlyvisible", "--name",   title,     "windowfocus", "--sync",
            "key",           "--window", "0"};
        words.insert(words.end(), keys.begin(), keys.end());
        constexpr int ofTimeout = 124;
        Outcome pressed;
        do {
            pressed = world_.run(words);
        } while (pressed.status == ofTimeout);
        EXPECT_EQ(pressed.status, 0) << pressed.errors;
    }
    void awaitEndOf(const std::string& title) const {
        while (world_.run({"xdotool", "search", "--onlyvisible", "--name", title}).status == 0) {
        }
    }
    testsupport::XServer server_;
    World world_;
};

TEST_F(AKeyboard, DoesAllThatTheDialogsOffer) {
    world_.install("DejaVu Sans");
    world_.stock("DejaVu Sans Mono", "code");
    world_.stock("DejaVu Sans Mono", "archive");
    ASSERT_EQ(world_.manager({"add", world_.library().string()}).status, 0);
    auto opened = std::async(std::launch::async, [&] {
        return world_.open({world_.draw("a.svg", {"DejaVu Sans Mono", "Quay Stencil"}).string()});
    });
    const char* const missing = "Missing Fonts";
    // What follows is pressed when the host has the answer: it waits for that.
    press(missing, {"Right", "Down", "Return"}); // as a double click
    world_.awaitDeed("showRequest: 1 font\n", 1);
    world_.killManager();
    press(missing, {"Tab", "space"}); // Show, which starts another one
    world_.awaitDeed("showRequest: 1 font\n", 1);
    press(missing, {"Tab", "space"}); // Buy
    world_.awaitDeed("buyRequest: 1 font\n", 1);
    press(missing, {"Tab", "space"});              // Activate
    world_.awaitDeed("fontRequest: 2 fonts\n", 1); // the news take the row away
    press(missing, {"shift+Tab", "space", "Return"});
    world_.awaitDeed("showRequest: 1 font\n", 2);
    press(missing, {"Tab", "Tab", "space"}); // Replace
    press("Replace Font", {"Down", "Return"});
    awaitEndOf("Replace Font");
    press(missing, {"Tab", "Tab", "space"}); // OK
    const Outcome outcome = opened.get();
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    auto faces = facesOf(outcome);
    EXPECT_EQ(faces["DejaVu Sans Mono"]["after"], "activated now");
    EXPECT_EQ(faces["Quay Stencil"]["after"], "replaced");
}

TEST_F(AKeyboard, ClosesTheAboutBox) {
    auto shown = std::async(std::launch::async, [&] {
        return world_.run({GLYPHORA_HOST, "about", "--plugin", GLYPHORA_BUNDLE});
    });
    press("About Glyphora", {"Return"});
    EXPECT_EQ(shown.get().status, 0);
}

} // namespace

} // namespace endtoend
