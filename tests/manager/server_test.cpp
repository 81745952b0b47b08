// SPDX-License-Identifier: MIT
// The server without its bus: many callers at once, and outcomes that nobody waits for.
#include "manager/cli/history.h"
#include "manager/cli/server.h"
#include "manager/library/update.h"
#include "tests/manager/sandbox.h"
#include "tests/support/fontmaker.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

using namespace manager;
using namespace managertest;
using namespace testsupport;
using testing::HasSubstr;

namespace {

class AServer : public testing::Test {
protected:
    AServer() {
        sandbox_.write("sans.ttf", makeFont({"Sans", "Regular", "Sans"}));
        Library library(sandbox_.places());
        updateLibrary(library, std::vector{sandbox_.library()}, FontReaderLimits{});
    }
    void await(const std::function<bool()>& condition) {
        for (server_->goOn(); !condition(); server_->goOn()) {
            pollfd news{server_->activator().descriptor(), POLLIN, 0};
            ASSERT_TRUE(server_->nextDeadline() || poll(&news, 1, 60'000) == 1) << "a watchdog";
        }
    }
    bool isTold(const std::string& text) {
        const auto entries = readHistory(sandbox_.places(), true);
        return std::any_of(entries.begin(), entries.end(), [&](const PastDeed& entry) {
            return entry.text.find(text) != std::string::npos;
        });
    }

    const std::string request_ = "<cmd>fontRequest</cmd>\n<font>\n<syncID>1</"
                                 "syncID>\n<psName>Sans</psName>\n</font>\n</cmd>\n";
    Sandbox sandbox_;
    std::optional<Server> server_;
};

TEST_F(AServer, AnswersEachOfThousandsThoughNothingCanBeActivated) {
    const Variable soon("GLYPHORA_REPLY_TIME", "1");
    std::optional<FileLock> held;
    std::filesystem::create_directories(sandbox_.places().fonts());
    held.emplace(sandbox_.places().fonts() + "/.lock");
    server_.emplace(sandbox_.places(), false);
    std::vector<int> answers(Server::maximumPending + 100);
    for (int& count : answers) {
        const auto later = [&](const std::string& reply) {
            EXPECT_THAT(reply, HasSubstr("<isActive>0</isActive>"));
            ++count;
        };
        const auto now = server_->answer(request_, std::nullopt, later);
        EXPECT_EQ(now.has_value(), &count >= &answers[Server::maximumPending]);
        if (now) {
            later(*now);
        }
    }
    await([&] { return testing::Value(answers, testing::Each(1)); });
    held.reset();
    await([&] { return isTold("activated Sans"); });
    EXPECT_THAT(answers, testing::Each(1));
}

TEST_F(AServer, TellsWhatComesOfReasonsThatNobodyWaitsFor) {
    Library library(sandbox_.places());
    const ContainerFonts sans{ContainerId{1},
                              "Sans",
                              library.files(ContainerId{1}),
                              {Reason::forTime(std::chrono::hours(1))}};
    ASSERT_TRUE(Activation(sandbox_.places()).activate(std::span(&sans, 1))[0].success);
    server_.emplace(sandbox_.places(), false);
    int replies = 0;
    const auto askFor = [&](pid_t process) {
        if (server_->answer(request_, process, [&](const std::string&) { ++replies; })) {
            ++replies;
        }
    };
    askFor(getppid());
    await([&] { return replies == 1; });
    {
        const FileLock held(sandbox_.places().fonts() + "/.lock");
        askFor(getpid());
        await([&] { return replies == 2; });
        std::filesystem::remove(sandbox_.library() + "/sans.ttf");
        std::filesystem::remove(sandbox_.places().fonts() + "/1/sans.ttf");
    }
    await([&] { return isTold("/sans.ttf: cannot be read"); });
}

TEST_F(AServer, TellsOfEachPartOfALargeCommandAlsoWhenItEndsInTheMidst) {
    const Variable soon("GLYPHORA_REPLY_TIME", "1");
    std::string command = "<cmd>fontRequest</cmd>\n";
    for (int i = 0; i < 300; ++i) {
        const std::string name = "Part" + std::to_string(i);
        sandbox_.write(name + ".ttf", makeFont({name, "Regular", name}));
        command += "<font>\n<syncID>1</syncID>\n<psName>" + name + "</psName>\n</font>\n";
    }
    {
        Library library(sandbox_.places());
        updateLibrary(library, std::vector{sandbox_.library()}, FontReaderLimits{});
    }
    server_.emplace(sandbox_.places(), false);
    bool isAnswered = false;
    const auto later = [&](const std::string& /*reply*/) { isAnswered = true; };
    if (server_->answer(command + "</cmd>\n", {}, later)) {
        isAnswered = true;
    }
    await([&] { return isAnswered; });
    const auto sets = [&] { return setsIn(sandbox_.places().fonts()).size(); };
    await([&] { return sets() > 0; });
    server_->end();
    EXPECT_TRUE(isTold("activated Part1 (container "));
    ASSERT_GT(sets(), 100U);
    std::size_t told = 0; // of one part, or of both when it ends late
    for (const PastDeed& entry : readHistory(sandbox_.places(), true)) {
        std::size_t more = 0;
        const bool areMore = std::sscanf(entry.text.c_str(), "and %zu more", &more) == 1;
        told += areMore ? more : entry.text.starts_with("activated Part") ? 1 : 0;
    }
    EXPECT_EQ(told, sets());
}

TEST_F(AServer, HasAnIndexMendedWhoseDamageNobodyWasAnsweredWith) {
    server_.emplace(sandbox_.places(), false);
    bool isAnswered = false;
    const auto later = [&](const std::string& /*reply*/) { isAnswered = true; };
    isAnswered = server_->answer(request_, std::nullopt, later).has_value();
    await([&] { return isAnswered; });
    static_cast<void>(server_->takeScanNeed());
    // What tells of the file: its container is known all the same.
    const std::string index = sandbox_.places().database();
    std::string bytes = readBytes(index);
    constexpr std::size_t page = 4096;
    for (std::size_t at = 0; (at = bytes.find("sans.ttf", at)) != std::string::npos; at += page) {
        at = at / page * page;
        bytes.replace(at, 8, 8, '\xFF');
    }
    std::fstream(index, std::ios::in | std::ios::out | std::ios::binary) << bytes;
    server_->followFiles();
    await([&] { return isTold("the index is damaged"); });
    EXPECT_TRUE(server_->takeScanNeed());
}

TEST_F(AServer, ActivatesNothingBeforeItKnowsWhatTheDesktopShows) {
    const std::string fonts = sandbox_.places().data + "/fonts";
    std::filesystem::create_directories(fonts);
    std::filesystem::copy_file(sandbox_.library() + "/sans.ttf", fonts + "/sans.ttf");
    server_.emplace(sandbox_.places(), false);
    std::string reply;
    const auto later = [&](const std::string& text) { reply = text; };
    EXPECT_FALSE(server_->answer(request_, std::nullopt, later));
    await([&] { return !reply.empty(); });
    EXPECT_THAT(reply, HasSubstr("<isActive>1</isActive>"));
    EXPECT_FALSE(std::filesystem::exists(sandbox_.places().fonts() + "/1"));
}

TEST_F(AServer, WritesOnlySoMuchOfALargeCommandIntoTheHistory) {
    server_.emplace(sandbox_.places(), false);
    std::string command = "<cmd>fontRequest</cmd>\n";
    for (int i = 0; i < 200; ++i) {
        command += "<font>\n<syncID>1</syncID>\n<psName>" + std::string(1100, 'x') +
                   "</psName>\n</font>\n";
    }
    int replies = 0;
    for (int i = 0; i < 12; ++i) {
        if (server_->answer(command + "</cmd>\n", {}, [&](const std::string&) { ++replies; })) {
            ++replies;
        }
    }
    await([&] { return replies == 12; });
    EXPECT_TRUE(isTold("and 100 more"));
    const std::string history = sandbox_.places().own() + "/history";
    EXPECT_LE(std::filesystem::file_size(history), 1U << 20U);
    EXPECT_LE(std::filesystem::file_size(history + ".old"), 1U << 20U);
}

} // namespace
