// SPDX-License-Identifier: MIT
// Runs the real program and keeps what it prints.
#pragma once

#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace host::test {

using testsupport::contentOf;

struct ProgramResult {
    int status = -1; ///< exit status; -1 when a signal ended it
    std::string output;
    std::string errors;
};

/// A folder of its own, with drawings in it, and neither plug-in, bus nor display in the
/// environment.
class ProgramFixture : public ::testing::Test {
protected:
    ProgramFixture() {
        for (const char* name : {"GLYPHORA_PLUGIN", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR",
                                 "DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
            unsetenv(name);
        }
    }
    ~ProgramFixture() override { unsetenv("GLYPHORA_TEST_MISBEHAVIOUR"); }

    std::string write(const std::string& name, const std::string& content) const {
        return folder.write(name, content).string();
    }
    std::string goodDrawing(const std::string& name = "good.svg") const {
        return write(name, R"(<svg xmlns="http://www.w3.org/2000/svg"><g><text>
            <tspan font-family="No Such Face" font-weight="bold">Text</tspan></text></g></svg>)");
    }
    static std::string bundle(const std::string& name) {
        return std::string(TEST_BUNDLES) + "/" + name + ".aip";
    }

    ProgramResult run(const std::vector<std::string>& arguments) const {
        return run(arguments, folder / "stdout");
    }
    ProgramResult runWithInput(const std::vector<std::string>& arguments,
                               const std::string& input) const {
        return run(arguments, folder / "stdout", input);
    }
    ProgramResult run(const std::vector<std::string>& arguments, const std::string& output,
                      const std::string& input = "/dev/null") const {
        const std::string errors = folder / "stderr";
        std::string command = std::string("exec '") + HOST_PROGRAM;
        for (const std::string& argument : arguments) {
            command += "' '" + argument;
        }
        command += "' < '" + input + "' > '" + output + "' 2> '" + errors + "'";
        const int state =
            std::system(command.c_str()); // NOLINT(concurrency-mt-unsafe, cert-env33-c)
        return {WIFEXITED(state) ? WEXITSTATUS(state) : -1,
                std::filesystem::is_regular_file(output) ? contentOf(output) : "",
                contentOf(errors)};
    }

    const testsupport::TemporaryFolder folder;
};

} // namespace host::test
