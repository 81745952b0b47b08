// SPDX-License-Identifier: MIT
// The plug-in against font managers that die, lie or speak an old protocol.
#include "world.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <iterator>

namespace endtoend {

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* versionReply = "<cmd>showRequest</cmd>\n"
                                     "<protocolVersion>2.0</protocolVersion>\n</cmd>\n";
/// Says that the desktop has the font, which it has not.
constexpr const char* fontReply =
    "<cmd>fontRequest</cmd>\n<protocolVersion>2.0</protocolVersion>\n"
    "<showWindow>0</showWindow>\n<font><syncID>QuayStencil-Regular-Regular</syncID>"
    "<type>TT</type><psName>QuayStencil-Regular</psName><count>1</count>"
    "<isActive>1</isActive></font>\n</cmd>\n";

class AnAwkwardManager : public testing::Test {
protected:
    /// A launched program leads a session of its own: the keeper ends with all that it started.
    ~AnAwkwardManager() override {
        std::error_code none; // nothing was launched
        for (const auto& entry :
             std::filesystem::directory_iterator(world_.folder() / "keepers", none)) {
            kill(-std::stoi(entry.path().filename().string()), SIGKILL);
        }
    }

    /// Opens a drawing with one missing font while a manager runs that does as told, and is started
    /// again whenever it dies.
    Outcome open(const std::string& script) {
        const auto path = world_.write("script", script);
        world_.write("version", versionReply);
        world_.write("fonts", fontReply);
        const auto keeper = world_.write(
            "keeper.sh", "cd '" + world_.folder().string() +
                             "'\nmkdir -p keepers\n: >keepers/$$\nuntil '" AWKWARD_MANAGER "' '" +
                             path.string() + "' journal; do :; done 2>/dev/null\nrm keepers/$$\n");
        world_.launchInstead("sh " + keeper.string());
        return world_.open({world_.draw("poster.svg", {"Quay Stencil"}).string()});
    }

    std::string journal() const {
        std::ifstream file(world_.folder() / "journal");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static void expectGoodEnd(const Outcome& outcome) {
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.errors, Not(HasSubstr("misbehaves")));
        EXPECT_THAT(outcome.errors, Not(HasSubstr("alert")));
        EXPECT_EQ(facesOf(outcome)["Quay Stencil"]["after"], "missing");
    }

    World world_;
};

TEST_F(AnAwkwardManager, ThatDiesWithoutAnAnswerIsAskedAgain) {
    expectGoodEnd(open("die\nanswer version\ndie\nanswer fonts\n"));
    EXPECT_EQ(journal(), "<cmd>showRequest</cmd>\n<cmd>showRequest</cmd>\n"
                         "<cmd>fontRequest</cmd>\n<cmd>fontRequest</cmd>\n");
}

TEST_F(AnAwkwardManager, ThatDiesAfterItsAnswerIsNotAskedAgain) {
    expectGoodEnd(open("answer-and-die version\nanswer-and-die fonts\n"));
    EXPECT_EQ(journal(), "<cmd>showRequest</cmd>\n<cmd>fontRequest</cmd>\n");
}

TEST_F(AnAwkwardManager, OfAnOldProtocolGetsNoRequest) {
    world_.write("old", "<cmd>showRequest</cmd>\n<protocolVersion>1.9</protocolVersion>\n</cmd>\n");
    expectGoodEnd(open("answer old\n"));
    EXPECT_EQ(journal(), "<cmd>showRequest</cmd>\n");
}

TEST_F(AnAwkwardManager, ThatTalksNonsenseChangesNothing) {
    const std::string start = "<cmd>fontRequest</cmd>\n<protocolVersion>2.0</protocolVersion>\n";
    const std::map<std::string, std::string> answers = {
        {"nothing", ""},
        {"noise", std::string("\xFF\x00\xFE\x01 ", 5)},
        {"unclosed", "<cmd>fontRequest</cmd>\n<protocolVersion>2.0</protocolVersion>\n<font>"},
        {"entities", start + "<x>&a;&b;</x>\n</cmd>\n"},
        {"deep", start + std::string(100'000, '<') + "</cmd>\n"},
        {"elsewhere", start + "<font><syncID>another</syncID><count>1</count></font>\n</cmd>\n"},
    };
    std::string script = "answer version\n";
    for (const auto& [name, answer] : answers) {
        SCOPED_TRACE(name);
        world_.write(name, answer);
        std::filesystem::remove(world_.folder() / "journal");
        expectGoodEnd(open(std::string(script).append("answer ").append(name).append("\n")));
        // What can be read opens the dialog, which asks again.
        const bool isRead = name == "elsewhere" || name == "entities";
        EXPECT_EQ(journal(), std::string("<cmd>showRequest</cmd>\n<cmd>fontRequest</cmd>\n") +
                                 (isRead ? "<cmd>fontRequest</cmd>\n" : ""));
        world_.manager({"quit"});
    }
}

} // namespace

} // namespace endtoend
