// SPDX-License-Identifier: MIT
// Reading many files in processes apart: one that crashes, hangs or eats memory costs itself alone.
#include "manager/library/error.h"
#include "manager/library/fontanswer.h"
#include "manager/library/fontreader.h"
#include "tests/manager/fullface.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <functional>
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
        return {
            true,
            {managertest::fullFace(path), face(1, faces::Technology::Type1, "", {{"Ä", "Ö", {}}})}};
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
        ASSERT_TRUE(std::holds_alternative<ReadFont>(outcomes.at(path)));
        EXPECT_EQ(std::get<ReadFont>(outcomes.at(path)).contents, good(path));
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

TEST_F(AFontReader, WaitsForASlowFileRatherThanReadFarAhead) {
    FontReaderLimits limits;
    limits.timePerFile = std::chrono::milliseconds(300);
    limits.ahead = 20;
    std::vector<std::string> paths(100, "good");
    paths[30] = "hang";
    std::size_t last = 0;
    std::size_t lastBefore = 0;
    readFontFiles(
        paths, limits,
        [&](std::size_t position, const FontFileOutcome&) {
            last = std::max(last, position);
            lastBefore = position == 30 ? last : lastBefore;
        },
        behave);
    EXPECT_LT(lastBefore, 30 + limits.ahead);
    EXPECT_EQ(last, paths.size() - 1);
}

TEST_F(AFontReader, TellsWhatMayPassFromWhatLiesInTheFile) {
    const auto outcomes = read({"killed", "large", "closed"});
    EXPECT_EQ(problem(outcomes.at("killed")),
              "killed: the font reader ended while reading it (Killed) (now)");
    EXPECT_EQ(problem(outcomes.at("large")), "large: reading it takes too much memory (now)");
    EXPECT_EQ(problem(outcomes.at("closed")), "closed: no permission (now)");
}

TEST(AnAnswer, ThatIsNotWholeOrTellsNonsenseIsRefused) {
    const ReadFont font{{true, {managertest::fullFace("A")}}, 7};
    const std::string whole = encodeAnswer(font);
    EXPECT_EQ(std::get<ReadFont>(decodeAnswer(whole).value()), font);
    EXPECT_FALSE(decodeAnswer(whole + '\0'));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(decodeAnswer(whole.substr(0, length))) << length;
    }
    const std::vector<std::function<void(faces::Face&)>> nonsense = {
        [](auto& face) { face.names.clear(); },
        [](auto& face) { face.style.weight = std::nan(""); },
        [](auto& face) { face.style.width = 0; },
        [](auto& face) { face.measures->stem = INFINITY; },
        [](auto& face) { face.technology = static_cast<faces::Technology>(4); },
        [](auto& face) { face.names[1].kind = static_cast<faces::NameKind>(3); },
        [](auto& face) { std::swap(face.coverage[0], face.coverage[1]); },
        [](auto& face) { face.coverage[2].second = 0x110000; },
    };
    for (std::size_t i = 0; i < nonsense.size(); ++i) {
        ReadFont forged = font;
        nonsense[i](forged.contents.faces[0]);
        EXPECT_FALSE(decodeAnswer(encodeAnswer(forged))) << i;
    }
}

} // namespace
