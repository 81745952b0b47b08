// SPDX-License-Identifier: MIT
// The program on a bus of its own, with a library of one font.
#pragma once

#include "platform/processes.h"
#include "tests/manager/programrun.h"
#include "tests/manager/sandbox.h"
#include "tests/platform/events.h"
#include "tests/support/foldedreply.h"
#include "tests/support/fontmaker.h"
#include "tests/support/privatebus/privatebus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace managertest {

class TheProgram : public testing::Test {
protected:
    TheProgram() {
        sandbox_.write("fonts/lato.ttf",
                       testsupport::makeFont({"Lato & Co", "Bold", "Lato-Bold", true}));
    }
    ~TheProgram() override { PLUnregisterApplication(); }

    Ending glyphora(const std::vector<std::string>& arguments) {
        return ProgramRun(arguments, sandbox_.root() + "/log." + std::to_string(++runs_)).wait();
    }
    bool tells(const std::string& deed) {
        return glyphora({"history"}).output.find(deed) != std::string::npos;
    }
    void serve(std::optional<unsigned> refusedCall = {}) {
        server_.emplace(std::vector<std::string>{"serve", "--verbose"},
                        sandbox_.root() + "/log.server", GLYPHORA_PROGRAM, refusedCall);
        ASSERT_TRUE(await([] { return isServerKnown(); })) << server_->output();
    }
    static bool isServerKnown() {
        ProcessSerialNumber process;
        while (GetNextProcess(&process) == noErr) {
            ProcessInfoRec info;
            if (GetProcessInformation(&process, &info) == noErr &&
                info.processSignature == FourCharCode("QGLY")) {
                return true;
            }
        }
        return false;
    }
    static std::optional<std::string> send(const std::string& command) {
        platformtest::TestEvent event("QGLY", "****", "QGLY");
        event.putText(command);
        return event.send(3600) == noErr ? event.text() : std::nullopt;
    }
    static std::string request(const std::string& psName, pid_t process = getpid()) {
        return "<cmd>fontRequest</cmd>\n<targetClass>FILC</targetClass>\n<targetPid>" +
               std::to_string(process) + "</targetPid>\n<font>\n<syncID>1</syncID>\n<psName>" +
               psName + "</psName>\n</font>\n</cmd>\n";
    }
    // The value of an element of the only font in the reply, or the reply itself when it has none.
    static std::string askFor(const std::string& psName, const char* element) {
        const auto reply = send(request(psName));
        if (!reply) {
            return "no reply";
        }
        const auto folded = testsupport::parseFolded(*reply);
        const auto fonts = folded.all("font");
        return fonts.empty() ? *reply : fonts[0]->value(element);
    }

    /// A command line, how it ends, and what it prints among other things.
    struct Case {
        std::vector<std::string> arguments;
        int status;
        std::string message;
    };
    void expectEach(const std::vector<Case>& cases) {
        for (const auto& [arguments, expected, message] : cases) {
            const Ending ending = glyphora(arguments);
            EXPECT_EQ(ending.status, expected) << testing::PrintToString(arguments);
            EXPECT_THAT(ending.output, testing::HasSubstr(message));
        }
    }

    testsupport::PrivateBus bus_;
    Sandbox sandbox_;
    std::optional<ProgramRun> server_;
    int runs_ = 0;
};

} // namespace managertest
