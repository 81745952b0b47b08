// SPDX-License-Identifier: MIT
// What a process that is killed while sets change leaves to the next one.
#include "manager/activation/desktopfonts.h"
#include "manager/library/error.h"
#include "tests/manager/activationfixture.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace manager;
using namespace managertest;
using namespace testsupport;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

// Ends the process before the step of this number, as a crash would. Returns whether it came to it.
bool crashAt(int number, const std::function<void(StepObserver)>& action) {
    const pid_t child = fork();
    if (child == 0) {
        int count = 0;
        action([&](std::string_view) {
            if (count++ == number) {
                _exit(42);
            }
        });
        _exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_TRUE(WEXITSTATUS(status) == 42 || WEXITSTATUS(status) == 0);
    return WEXITSTATUS(status) == 42;
}

class ACrash : public AnActivation {
protected:
    using Families = std::vector<std::string>;

    // Runs the action with a crash at each of its steps in turn, each time from the state that
    // `prepare` makes, and checks that recovery leaves one of the two whole states.
    void tryEachStep(const std::function<void()>& prepare,
                     const std::function<void(StepObserver)>& action, const Families& before,
                     const Families& after) {
        int steps = 0;
        for (bool crashed = true; crashed; ++steps) {
            deactivate();
            prepare();
            crashed = crashAt(steps, action);
            recover();
            const Families seen = visibleFamilies();
            EXPECT_TRUE(seen == before || seen == after)
                << "step " << steps << ": " << testing::PrintToString(seen);
            const std::string staging = sandbox_.places().fonts() + "/.staging";
            EXPECT_THAT(entries(staging), Each(StartsWith("unsettled.")));
            reports_.clear();
            recover();
            EXPECT_THAT(reports_, IsEmpty()) << "step " << steps;
        }
        EXPECT_GT(steps, 4);
        EXPECT_EQ(visibleFamilies(), after); // the last round had no crash
    }
};

TEST_F(ACrash, WhileActivatingLeavesAllOrNothing) {
    tryEachStep([] {}, [&](const StepObserver& observer) { activate(fonts(), observer); }, {},
                {"One", "Two"});
}

TEST_F(ACrash, WhileBringingASetUpToDateIsMendedForwards) {
    addFont("three.ttf", "Three");
    ContainerFonts wanted = fonts({"one.ttf", "three.ttf"});
    wanted.successors = {{"two.ttf", "three.ttf"}};
    tryEachStep([&] { activate(fonts()); },
                [&](const StepObserver& observer) { activate(wanted, observer); }, {"One", "Two"},
                {"One", "Three"});
}

TEST_F(ACrash, WhileReplacingAFileNeverLetsTheOldOneCount) {
    const std::string one = sandbox_.library() + "/one.ttf";
    const std::string old = readBytes(one);
    bool crashed = true;
    for (int step = 0; crashed; ++step) {
        sandbox_.write("one.new", old);
        std::filesystem::rename(sandbox_.library() + "/one.new", one);
        activate(fonts());
        sandbox_.write("one.new", makeFont({"One Anew", "Regular", "Anew"}));
        std::filesystem::rename(sandbox_.library() + "/one.new", one);
        crashed = crashAt(step, [&](const StepObserver& observer) { activate(fonts(), observer); });
        const auto isNew = [&] { return readBytes(set() + "/one.ttf") != old; };
        const auto counts = [&] { return activeFiles().contains("one.ttf"); };
        EXPECT_TRUE(isNew() || !counts()) << "step " << step;
        recover();
        EXPECT_EQ(isNew(), counts()) << "step " << step;
        EXPECT_TRUE(isNew() || crashed) << "step " << step;
        EXPECT_EQ(visibleFamilies().size(), 2U);
    }
}

TEST_F(ACrash, WhileDeactivatingIsFinished) {
    for (const char* foreign : {"", "/mine.txt"}) {
        tryEachStep(
            [&] {
                activate(fonts());
                if (*foreign != '\0') {
                    writeBytes(set() + foreign, "mine");
                }
            },
            [&](const StepObserver& observer) { deactivate(observer); }, {"One", "Two"}, {});
    }
    EXPECT_THAT(entries(set()), ElementsAre("mine.txt"));
}

TEST_F(ACrash, ThatLeftASetWithoutFilesIsMendedFromTheLibrary) {
    activate(fonts());
    std::filesystem::remove(set() + "/one.ttf");
    std::filesystem::remove(set() + "/two.ttf");
    std::filesystem::remove(sandbox_.library() + "/two.ttf");
    recover();
    EXPECT_THAT(visibleFamilies(), ElementsAre("One"));
    EXPECT_THAT(reports_, ElementsAre(HasSubstr("/7: completed")));
}

} // namespace
