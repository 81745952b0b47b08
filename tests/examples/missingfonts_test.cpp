// SPDX-License-Identifier: MIT
// A peer written from the description of the wire alone, and the manager that its call starts.
#include "platform/processes.h"
#include "tests/manager/programrun.h"
#include "tests/manager/sandbox.h"
#include "tests/support/fontmaker.h"
#include "tests/support/privatebus/privatebus.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace managertest;
using namespace testsupport;
using testing::HasSubstr;

namespace {

constexpr const char* python = "/usr/bin/python3";

class APeerInAnotherLanguage : public testing::Test {
protected:
    APeerInAnotherLanguage() {
        sandbox_.write("a/lato.ttf", makeFont({"Lato & <Co>", "Bold", "Lato-Bold", true}));
        sandbox_.write("b/own.ttf", makeFont({"Own", "Regular", "Own"}));
        sandbox_.write("c/own.ttf", makeFont({"Own Too", "Regular", "Own"}));
        ProgramRun({"add", sandbox_.library()}, log()).wait();
    }
    ~APeerInAnotherLanguage() override { ProgramRun({"quit"}, log()).wait(); }

    Ending glyphora(const std::vector<std::string>& arguments) {
        return ProgramRun(arguments, log()).wait();
    }
    static std::vector<std::string> words(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), MISSING_FONTS);
        return arguments;
    }
    Ending ask(const std::vector<std::string>& arguments) {
        return ProgramRun(words(arguments), log(), python).wait();
    }
    std::string log() { return sandbox_.root() + "/log." + std::to_string(++runs_); }
    static bool isManagerKnown() {
        ProcessSerialNumber process;
        ProcessInfoRec info;
        while (GetNextProcess(&process) == noErr) {
            if (GetProcessInformation(&process, &info) == noErr &&
                info.processSignature == FourCharCode("QGLY")) {
                return true;
            }
        }
        return false;
    }

    Sandbox sandbox_;
    // Where the bus looks for what it can start.
    const bool installed_ = [this] {
        const std::string folder = sandbox_.places().data + "/dbus-1/services";
        std::filesystem::create_directories(folder);
        return std::filesystem::copy_file(DBUS_SERVICE, folder + "/glyphora.service");
    }();
    PrivateBus bus_;
    int runs_ = 0;
};

TEST_F(APeerInAnotherLanguage, StartsTheManagerByACallNotAQuestion) {
    EXPECT_FALSE(isManagerKnown());
    EXPECT_THAT(glyphora({"status"}).output, HasSubstr("server: not running"));
    for (const char* time : {"first", "again"}) {
        EXPECT_EQ(glyphora({"quit"}).status, 1) << "no question has started it, " << time;
        const Ending shown = ask({"show", "Lato-Bold"});
        EXPECT_EQ(shown.output, "Lato-Bold: not active, containers: 1\n"
                                "there is no display to show fonts on\n");
        EXPECT_TRUE(isManagerKnown());
        EXPECT_THAT(glyphora({"serve"}).output, HasSubstr("a server is running already"));
        EXPECT_EQ(glyphora({"quit"}).status, 0);
    }
}

TEST_F(APeerInAnotherLanguage, MakesAllFourRequests) {
    const struct {
        std::vector<std::string> arguments;
        std::string output;
    } cases[] = {
        {{"buy", "Lato-Bold", "Nobody"},
         "Lato-Bold: not active, containers: 1\nNobody: not active, containers: 0\n"},
        {{"request", "Lato-Bold", "Own"},
         "Lato-Bold: active, containers: 1\n"
         "  1  Lato & <Co> Bold — OpenType TrueType, 1 style, " +
             sandbox_.library() + "/a\nOwn: not active, containers: 2\n  2  "},
        {{"activate", "3", "Own"}, "Own: active, containers: ?\n"},
        {{"show", "two\nlines"}, "two lines: not active, containers: 0\n"},
        {{"activate", "9", "Nobody"}, "font 'Nobody', container '9': not in the library\n"},
    };
    for (const auto& [arguments, output] : cases) {
        EXPECT_THAT(ask(arguments).output, HasSubstr(output));
    }
    // What a process has asked for leaves after it.
    EXPECT_TRUE(await([&] {
        return ask({"show", "Own"}).output.starts_with("Own: not active, containers: 2\n");
    }));
}

TEST_F(APeerInAnotherLanguage, HearsOfChanges) {
    const ProgramRun listener(words({"listen", "Lato-Bold"}), log(), python);
    const auto told = [&](const std::string& text) {
        return await([&] { return listener.output().find(text) != std::string::npos; });
    };
    EXPECT_TRUE(told("Lato-Bold: active, containers: 1"));
    EXPECT_TRUE(told("told: FILC"));
    EXPECT_EQ(glyphora({"remove", sandbox_.library()}).status, 0);
    EXPECT_TRUE(told("Lato-Bold: active, containers: 0")) << listener.output();
}

} // namespace
