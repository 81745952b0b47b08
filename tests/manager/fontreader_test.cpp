// SPDX-License-Identifier: MIT
// Reading many files in processes apart: one that crashes, hangs or eats memory costs itself alone.
#include "manager/library/error.h"
#include "manager/library/fontreader.h"

#include <chrono>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <new>
#include <unistd.h>

using namespace manager;
using testing::HasSubstr;
using testing::Not;

namespace {

class AFontReader : public testing::Test {
protected:
    // What each file does to its reader is told by its name.
    static faces::FontFileContents behave(const std::string& path) {
        if (path == "crash") {
            std::signal(SIGSEGV, SIG_DFL);
            raise(SIGSEGV);
        }
        if (path == "killed") {
            raise(SIGKILL);
        }
        if (path == "large") {
            throw std::bad_alloc();
        }
        if (path == "closed") {
            throw faces::UnreadableNow("closed: no permission");
        }
        if (path == "hang") {
            for (;;) {
                pause();
            }
        }
        if (path == "vanish") {
            _exit(0);
        }
        if (path == "refuse") {
            throw Error("refuse: line 1:\tbad\nthing\\");
        }
        if (path == "nameless") {
            return {false, {face(0, faces::Technology::Type1, "X", {})}};
        }
        return good(path);
    }

    static faces::Face face(std::uint32_t index, faces::Technology technology, std::string name,
                            std::vector<faces::Name> names) {
        faces::Face face;
        face.index = index;
        face.technology = technology;
        face.postScriptName = std::move(name);
        face.names = std::move(names);
        return face;
    }

    static faces::FontFileContents good(const std::string& path) {
        return {true,
                {face(65537, faces::Technology::OpenTypePostScript, path,
                      {{"A\tB", "", {}}, {"C\\D", "E\nF", {}}}),
                 face(1, faces::Technology::Type1, "", {{"Ä", "Ö", {}}})}};
    }

    std::map<std::string, FontFileOutcome> read(const std::vector<std::string>& paths) {
        std::map<std::string, FontFileOutcome> outcomes;
        FontReaderLimits limits;
        limits.timePerFile = timePerFile_;
        readFontFiles(
            paths, limits,
            [&](std::size_t position, FontFileOutcome outcome) {
                EXPECT_TRUE(outcomes.emplace(paths.at(position), std::move(outcome)).second);
            },
            behave);
        EXPECT_EQ(outcomes.size(), paths.size());
        return outcomes;
    }

    static std::string problem(const FontFileOutcome& outcome) {
        const auto* problem = std::get_if<FontFileProblem>(&outcome);
        return problem == nullptr ? "none" : problem->text + (problem->lasting ? "" : " (now)");
    }

    // Long enough that only the file that hangs for ever can meet it.
    std::chrono::milliseconds timePerFile_{30'000};
};

TEST_F(AFontReader, HandsEverythingOverAsItWasRead) {
    const auto outcomes = read({"one", "two", "refuse", "three"});
    for (const char* path : {"one", "two", "three"}) {
        ASSERT_TRUE(std::holds_alternative<faces::FontFileContents>(outcomes.at(path)));
        EXPECT_EQ(std::get<faces::FontFileContents>(outcomes.at(path)), good(path));
    }
    EXPECT_EQ(problem(outcomes.at("refuse")), "refuse: line 1:\tbad\nthing\\");
}

TEST_F(AFontReader, ThatDiesCostsItsFileAlone) {
    const auto outcomes = read({"a", "crash", "b", "vanish", "nameless", "c"});
    EXPECT_THAT(problem(outcomes.at("crash")), HasSubstr("crash: the font reader ended"));
    EXPECT_THAT(problem(outcomes.at("vanish")), HasSubstr("vanish: the font reader ended"));
    EXPECT_THAT(problem(outcomes.at("nameless")), HasSubstr("nameless: the font reader ended"));
    for (const char* path : {"crash", "vanish", "nameless"}) {
        EXPECT_THAT(problem(outcomes.at(path)), Not(HasSubstr("(now)")));
    }
    for (const char* path : {"a", "b", "c"}) {
        EXPECT_EQ(problem(outcomes.at(path)), "none");
    }
}

TEST_F(AFontReader, ThatHangsIsEndedAndReplaced) {
    timePerFile_ = std::chrono::milliseconds(300);
    const auto outcomes = read({"hang"});
    EXPECT_EQ(problem(outcomes.at("hang")), "hang: reading it took longer than 300 ms (now)");
}

TEST_F(AFontReader, TellsWhatMayPassFromWhatLiesInTheFile) {
    const auto outcomes = read({"killed", "large", "closed"});
    EXPECT_EQ(problem(outcomes.at("killed")),
              "killed: the font reader ended while reading it (Killed) (now)");
    EXPECT_EQ(problem(outcomes.at("large")), "large: reading it takes too much memory (now)");
    EXPECT_EQ(problem(outcomes.at("closed")), "closed: no permission (now)");
}

} // namespace
