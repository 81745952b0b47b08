// SPDX-License-Identifier: MIT
// The program on a terminal of its own, whose keys reach all of its processes.
#include "tests/manager/programfixture.h"

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <fstream>
#include <pty.h>
#include <sys/wait.h>

using testing::HasSubstr;

namespace managertest {

namespace {

/// A run of the program that hears what is typed.
class TerminalRun {
public:
    explicit TerminalRun(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), GLYPHORA_PROGRAM);
        std::vector<char*> words;
        for (std::string& argument : arguments) {
            words.push_back(argument.data());
        }
        words.push_back(nullptr);
        process_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
        if (process_ == 0) {
            execv(words[0], words.data());
            _exit(99);
        }
    }
    TerminalRun(const TerminalRun&) = delete;
    TerminalRun& operator=(const TerminalRun&) = delete;
    ~TerminalRun() { close(terminal_); }

    [[nodiscard]] bool catchesInterrupts() const {
        std::ifstream status("/proc/" + std::to_string(process_) + "/status");
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with("SigCgt:")) {
                return (std::stoull(line.substr(7), nullptr, 16) & (1ULL << (SIGINT - 1))) != 0;
            }
        }
        return false;
    }
    [[nodiscard]] bool type(char key) const { return write(terminal_, &key, 1) == 1; }
    Ending wait() {
        Ending ending;
        std::array<char, 4096> block{};
        ssize_t count = 0;
        while ((count = read(terminal_, block.data(), block.size())) > 0) {
            ending.output.append(block.data(), static_cast<std::size_t>(count));
        }
        int status = 0;
        waitpid(process_, &status, 0);
        ending.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return ending;
    }

private:
    int terminal_ = -1;
    pid_t process_ = -1;
};

TEST_F(TheProgram, EndsOrderlyAtTheKeysThatInterruptIt) {
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    const std::string other = sandbox_.root() + "/other";
    const std::string target = sandbox_.root() + "/collected";
    std::filesystem::create_directory(other);
    const std::vector<std::string> commands[] = {
        {"add", other}, {"scan"}, {"activate", "Lato-Bold"}, {"collect", "--to", target, "1"}};
    for (const auto& arguments : commands) {
        for (const char* const end : {"", "-wal", "-shm"}) {
            std::filesystem::remove(sandbox_.places().database() + end);
        }
        std::optional<manager::FileLock> scanning(sandbox_.places().scanLock());
        TerminalRun run(arguments); // it waits for the lock
        ASSERT_TRUE(await([&] { return run.catchesInterrupts(); })) << arguments[0];
        ASSERT_TRUE(run.type('\x03'));
        const Ending ending = run.wait();
        EXPECT_GT(ending.status, 0) << arguments[0] << ": " << ending.output;
        EXPECT_THAT(ending.output, HasSubstr("cancelled")) << arguments[0];
        scanning.reset();
        EXPECT_EQ(glyphora({"scan"}).status, 0) << arguments[0];
        EXPECT_THAT(glyphora({"status"}).output, HasSubstr("active: 0 containers")) << arguments[0];
        EXPECT_FALSE(std::filesystem::exists(target));
    }
}

TEST_F(TheProgram, TellsProblemsInTheLanguageThatIsAskedForFirst) {
    const testsupport::Variable languages("LANGUAGE", "fr:de_AT:en");
    const std::string problem = "glyphora: " + sandbox_.root() + ": ist schon vorhanden;";
    const std::string font = testsupport::makeFont({});
    const std::string bad = sandbox_.write("bad.ttf", font.substr(0, 40));
    const std::string cut = sandbox_.write("cut.ttf", font.substr(0, font.size() / 2));
    expectEach({{{"--translated", "collect", "--to", sandbox_.root(), "x"}, 1, problem},
                {{"--translated", "add", sandbox_.library()},
                 0,
                 bad + ": endet bei Byte 40 in der Liste der Tabellen\nglyphora: " + cut +
                     ": die Tabelle „"},
                {{"list", "--problems"}, 0, bad + ": ends at byte 40 inside the table list"},
                {{"--translated", "info", "77"}, 1, "Schrift Nr. 77: nicht in der Bibliothek"}});
}

} // namespace

} // namespace managertest
