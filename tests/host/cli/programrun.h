// SPDX-License-Identifier: MIT
// Runs the real program and keeps what it prints.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace host::test {

struct ProgramResult {
    int status = -1; ///< exit status; -1 when a signal ended it
    std::string output;
    std::string errors;
};

/// A folder of its own, with drawings in it, and neither plug-in nor bus in the environment.
class ProgramFixture : public ::testing::Test {
protected:
    ProgramFixture() {
        for (const char* name :
             {"GLYPHORA_PLUGIN", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"}) {
            unsetenv(name);
        }
        std::string pattern = testing::TempDir() + "/glyphora-host-XXXXXX";
        folder = mkdtemp(pattern.data());
    }
    ~ProgramFixture() override {
        unsetenv("GLYPHORA_TEST_MISBEHAVIOUR");
        std::filesystem::remove_all(folder);
    }

    std::string write(const std::string& name, std::string_view content) const {
        const auto file = folder / name;
        std::ofstream(file, std::ios::binary) << content;
        return file.string();
    }
    std::string goodDrawing(const std::string& name = "good.svg") const {
        return write(name, R"(<svg xmlns="http://www.w3.org/2000/svg"><g><text>
            <tspan font-family="No Such Face" font-weight="bold">Text</tspan></text></g></svg>)");
    }
    static std::string bundle(const std::string& name) {
        return std::string(TEST_BUNDLES) + "/" + name + ".aip";
    }

    ProgramResult run(std::vector<std::string> arguments) const {
        const std::string output = folder / "stdout";
        const std::string errors = folder / "stderr";
        arguments.insert(arguments.begin(), HOST_PROGRAM);
        std::vector<char*> raw;
        raw.reserve(arguments.size() + 1);
        for (std::string& argument : arguments) {
            raw.push_back(argument.data());
        }
        raw.push_back(nullptr);
        const pid_t child = fork();
        if (child == 0) {
            const bool redirected =
                std::freopen(output.c_str(), "w", stdout) != nullptr && // NOLINT
                std::freopen(errors.c_str(), "w", stderr) != nullptr;   // NOLINT
            if (redirected) {
                execv(HOST_PROGRAM, raw.data());
            }
            _exit(127);
        }
        int state = 0;
        EXPECT_EQ(waitpid(child, &state, 0), child);
        return {WIFEXITED(state) ? WEXITSTATUS(state) : -1, contentOf(output), contentOf(errors)};
    }

    static std::string contentOf(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    std::filesystem::path folder;
};

} // namespace host::test
