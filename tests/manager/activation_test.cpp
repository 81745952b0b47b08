// SPDX-License-Identifier: MIT
// Activation on disk: what the desktop sees, what a crash leaves, what is never touched.
#include "manager/activation/activation.h"
#include "manager/activation/desktopfonts.h"
#include "manager/library/error.h"
#include "tests/manager/fontmaker.h"
#include "tests/manager/sandbox.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fontconfig/fontconfig.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace manager;
using namespace managertest;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

constexpr auto container = static_cast<ContainerId>(7);

class AnActivation : public testing::Test {
protected:
    AnActivation() {
        addFont("one.ttf", "One");
        addFont("two.ttf", "Two");
    }
    ~AnActivation() override { FcFini(); }

    void addFont(const std::string& file, const std::string& name) {
        sandbox_.write(file, makeFont({name, "Regular", name, "", "", false, {}}));
    }
    ContainerFonts fonts(const std::vector<std::string>& files = {"one.ttf", "two.ttf"}) {
        ContainerFonts result{container, "Both", {}};
        for (const std::string& file : files) {
            const std::string path = sandbox_.library() + "/" + file;
            result.files.push_back({path, stampOf(path)});
        }
        return result;
    }
    ActivationOutcome activate(const ContainerFonts& wanted, StepObserver observer = {}) {
        Activation activation(sandbox_.places(), std::move(observer));
        return activation.activate(std::span(&wanted, 1)).at(0);
    }
    ActivationOutcome deactivate(StepObserver observer = {}) {
        Activation activation(sandbox_.places(), std::move(observer));
        return activation.deactivate(std::span(&container, 1)).at(0);
    }
    void recover() {
        Activation(sandbox_.places()).recover([this](const std::string& text) {
            reports_.push_back(text);
        });
    }
    // Of both files, as the library has them now.
    std::set<std::string> activeFiles() {
        return Activation(sandbox_.places()).activeFiles(fonts());
    }

    [[nodiscard]] std::string set() const { return sandbox_.places().fonts() + "/7"; }
    // What another program sees, that starts now.
    static std::vector<std::string> visibleFamilies() {
        FcInitReinitialize();
        std::vector<std::string> families;
        const FcFontSet* all = FcConfigGetFonts(nullptr, FcSetSystem);
        for (int i = 0; all != nullptr && i < all->nfont; ++i) {
            FcChar8* family = nullptr;
            FcPatternGetString(all->fonts[i], FC_FAMILY, 0, &family);
            families.emplace_back(reinterpret_cast<const char*>(family));
        }
        std::sort(families.begin(), families.end());
        return families;
    }
    static std::vector<std::string> entries(const std::string& folder) {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    Sandbox sandbox_;
    std::vector<std::string> reports_;
};

TEST_F(AnActivation, MakesFontsVisibleAndIsTakenBackWhole) {
    const auto outcome = activate(fonts());
    EXPECT_TRUE(outcome.success) << testing::PrintToString(outcome.problems);
    EXPECT_TRUE(outcome.changed);
    EXPECT_THAT(visibleFamilies(), ElementsAre("One", "Two"));
    EXPECT_TRUE(activeFiles().contains("one.ttf"));

    const auto again = activate(fonts());
    EXPECT_TRUE(again.success);
    EXPECT_FALSE(again.changed);

    EXPECT_TRUE(deactivate().success);
    EXPECT_THAT(visibleFamilies(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(set()));
    EXPECT_FALSE(deactivate().success);
    EXPECT_TRUE(std::filesystem::exists(sandbox_.library() + "/one.ttf"));
}

TEST_F(AnActivation, LinksFilesAndNeverBySymbolicLinks) {
    std::filesystem::create_symlink("one.ttf", sandbox_.library() + "/alias.ttf");
    activate(fonts({"alias.ttf", "two.ttf"}));
    struct stat status {};
    ASSERT_EQ(lstat((set() + "/alias.ttf").c_str(), &status), 0);
    EXPECT_TRUE(S_ISREG(status.st_mode));
    EXPECT_EQ(static_cast<std::int64_t>(status.st_ino),
              stampOf(sandbox_.library() + "/one.ttf").inode);
}

TEST_F(AnActivation, CopiesFilesOfAnotherFileSystem) {
    struct stat here {};
    struct stat there {};
    const std::string folder = "/dev/shm/glyphora-test-" + std::to_string(getpid());
    std::error_code code;
    std::filesystem::create_directory(folder, code);
    if (code || stat(sandbox_.root().c_str(), &here) != 0 || stat(folder.c_str(), &there) != 0 ||
        here.st_dev == there.st_dev) {
        GTEST_SKIP() << "no second file system to write to";
    }
    const std::string font = folder + "/far.ttf";
    writeBytes(font, makeFont({"Far", "Regular", "Far", "", "", false, {}}));
    const auto outcome = activate({container, "Far", {{font, stampOf(font)}}});
    const std::string copied = readBytes(set() + "/far.ttf");
    const std::string original = readBytes(font);
    std::filesystem::remove_all(folder);
    EXPECT_TRUE(outcome.success) << testing::PrintToString(outcome.problems);
    EXPECT_EQ(copied, original);
    EXPECT_THAT(visibleFamilies(), ElementsAre("Far"));
}

TEST_F(AnActivation, FollowsTheContainerWhenItGrowsAndShrinks) {
    activate(fonts());
    addFont("three.ttf", "Three");
    std::filesystem::remove(sandbox_.library() + "/two.ttf");
    addFont("one.ttf.new", "One Anew");
    std::filesystem::rename(sandbox_.library() + "/one.ttf.new", sandbox_.library() + "/one.ttf");
    const auto outcome = activate(fonts({"one.ttf", "three.ttf"}));
    EXPECT_TRUE(outcome.success) << testing::PrintToString(outcome.problems);
    EXPECT_THAT(visibleFamilies(), ElementsAre("One Anew", "Three"));
    EXPECT_THAT(entries(set()), ElementsAre(".glyphora-set", "one.ttf", "three.ttf"));
}

TEST_F(AnActivation, LosesOnlyTheFilesThatAreGoneOrHaveChanged) {
    ContainerFonts wanted = fonts();
    const std::string two = sandbox_.write("two.ttf", "changed");
    for (const char* problem :
         {"/two.ttf: has changed since it was scanned", "/two.ttf: cannot be read"}) {
        const auto outcome = activate(wanted);
        EXPECT_FALSE(outcome.success);
        EXPECT_THAT(outcome.problems, ElementsAre(HasSubstr(problem)));
        EXPECT_THAT(outcome.lost, ElementsAre("two.ttf"));
        EXPECT_THAT(visibleFamilies(), ElementsAre("One"));
        std::filesystem::remove(two);
    }
    deactivate();

    std::filesystem::remove(sandbox_.library() + "/one.ttf");
    const auto outcome = activate(wanted);
    EXPECT_FALSE(outcome.changed);
    EXPECT_THAT(outcome.lost, ElementsAre("one.ttf", "two.ttf"));
    EXPECT_FALSE(std::filesystem::exists(set()));

    addFont("one.ttf", "One Anew");
    addFont("two.ttf", "Two");
    activate(fonts());
    std::filesystem::remove(two);
    wanted = fonts({"one.ttf"});
    wanted.files.push_back({two, {}});
    EXPECT_THAT(activate(wanted).lost, ElementsAre("two.ttf"));
    EXPECT_THAT(visibleFamilies(), ElementsAre("One Anew", "Two")) << "the older copy is kept";
}

TEST_F(AnActivation, CountsOnlyWhatIsActiveAsTheLibraryHasIt) {
    activate(fonts());
    EXPECT_THAT(activeFiles(), ElementsAre("one.ttf", "two.ttf"));
    sandbox_.write("one.ttf", makeFont({"Other", "Regular", "Other", "", "", false, {}}) + "more");
    EXPECT_THAT(activeFiles(), ElementsAre("two.ttf")) << "another size, if not another time";
    std::filesystem::remove(set() + "/two.ttf");
    EXPECT_THAT(activeFiles(), IsEmpty());
    EXPECT_TRUE(activate(fonts()).success);
    EXPECT_THAT(visibleFamilies(), ElementsAre("Other", "Two"));
    EXPECT_THAT(activeFiles(), ElementsAre("one.ttf", "two.ttf"));
}

TEST_F(AnActivation, NeverChangesASetIntoThatOfAnotherContainer) {
    activate(fonts());
    addFont("there/three.ttf", "Three");
    ContainerFonts elsewhere = fonts({"there/three.ttf"});
    ContainerFonts another = fonts({"one.ttf"});
    another.name = "Another";
    for (const ContainerFonts& wanted : {elsewhere, another}) {
        const auto outcome = activate(wanted);
        EXPECT_FALSE(outcome.changed);
        EXPECT_THAT(outcome.problems,
                    ElementsAre(testing::AllOf(HasSubstr("/7: holds Both (of "),
                                               HasSubstr("container 7 is " + wanted.name))));
        const Activation activation(sandbox_.places());
        EXPECT_THAT(activation.activeFiles(wanted), IsEmpty());
        EXPECT_FALSE(activation.isActive(
            {container, wanted.name, folderOf(wanted.files.front().path), "", 1}));
        EXPECT_THAT(visibleFamilies(), ElementsAre("One", "Two"));
    }
    ContainerFonts renamed = fonts();
    renamed.name = "BOTH";
    EXPECT_TRUE(activate(renamed).success) << "families differ neither by case nor by blanks";
}

TEST_F(AnActivation, TakesTheDataFolderHoweverItIsWritten) {
    Environment environment;
    environment.set("XDG_DATA_HOME", sandbox_.root() + "//other/../data/./");
    Activation activation(Places::fromEnvironment());
    const ContainerFonts wanted = fonts();
    EXPECT_THAT(activation.activate(std::span(&wanted, 1)).at(0).problems, IsEmpty());
    EXPECT_THAT(visibleFamilies(), ElementsAre("One", "Two"));
}

TEST_F(AnActivation, ShowsTheOthersWhenFontconfigShowsNothingOfAFile) {
    sandbox_.write("one.ttf", "no font");
    for (int round = 0; round < 2; ++round) { // what failed is tried again
        const auto outcome = activate(fonts());
        EXPECT_FALSE(outcome.success);
        EXPECT_EQ(outcome.changed, round == 0);
        EXPECT_THAT(outcome.lost, ElementsAre("one.ttf"));
        EXPECT_THAT(outcome.problems,
                    ElementsAre(HasSubstr("/one.ttf: was in place, but fontconfig shows no")));
        EXPECT_THAT(visibleFamilies(), ElementsAre("Two"));
        EXPECT_FALSE(activeFiles().contains("one.ttf"));
        EXPECT_TRUE(activeFiles().contains("two.ttf"));
    }
}

TEST_F(AnActivation, LeavesNothingWhenTheDesktopsSettingsKeepTheFontsFromSight) {
    const std::string folder = "<dir>" + sandbox_.root() + "/data/fonts</dir>";
    const struct {
        std::string settings;
        const char* problem;
    } cases[] = {
        {"<dir>" + sandbox_.library() + "</dir>", "fontconfig does not look at this folder"},
        {folder + "<selectfont><rejectfont><glob>*.ttf</glob></rejectfont></selectfont>",
         "fontconfig shows no font of it"},
    };
    for (const auto& [settings, problem] : cases) {
        writeBytes(sandbox_.root() + "/fonts.conf", "<?xml version=\"1.0\"?>\n<fontconfig>" +
                                                        settings + "<cachedir>" + sandbox_.root() +
                                                        "/cache</cachedir></fontconfig>\n");
        const auto outcome = activate(fonts());
        EXPECT_FALSE(outcome.success);
        EXPECT_FALSE(outcome.changed);
        EXPECT_THAT(outcome.problems, ElementsAre(HasSubstr(problem)));
        EXPECT_FALSE(std::filesystem::exists(set()));
    }
}

TEST_F(AnActivation, LeavesForeignFilesAloneWhereverTheyAre) {
    std::filesystem::create_directories(set());
    writeBytes(set() + "/mine.txt", "mine");
    recover();
    EXPECT_TRUE(activate(fonts()).success) << "beside files that are not in the way";
    EXPECT_THAT(deactivate().problems, ElementsAre(HasSubstr("kept")));
    EXPECT_THAT(entries(set()), ElementsAre("mine.txt"));

    std::filesystem::remove_all(set());
    writeBytes(set(), "mine");
    EXPECT_THAT(activate(fonts()).problems, ElementsAre(HasSubstr("/7: is in the way")));
    std::filesystem::remove(set());

    std::filesystem::create_directory(set());
    writeBytes(set() + "/two.ttf", "mine");
    EXPECT_THAT(activate(fonts()).problems, ElementsAre(HasSubstr("/two.ttf: is in the way")));
    EXPECT_THAT(entries(set()), ElementsAre(".glyphora-set", "one.ttf", "two.ttf"));
    const auto outcome = deactivate();
    EXPECT_TRUE(outcome.success);
    EXPECT_THAT(outcome.problems, ElementsAre(HasSubstr("kept")));
    EXPECT_THAT(entries(set()), ElementsAre("two.ttf"));
    EXPECT_EQ(readBytes(set() + "/two.ttf"), "mine");
}

TEST_F(AnActivation, ClearsWhatAnInterruptedReplacementOfTheRecordLeft) {
    const std::string left = set() + "/" + setRecordName + ".4711.new";
    const std::vector<std::function<void()>> ways = {
        [&] { recover(); },
        [&] { EXPECT_THAT(deactivate().problems, IsEmpty()); },
        [&] {
            std::filesystem::remove(set() + "/" + setRecordName);
            std::filesystem::remove(set() + "/one.ttf");
            std::filesystem::remove(set() + "/two.ttf");
            activate(fonts());
        },
    };
    for (const auto& way : ways) {
        activate(fonts());
        writeBytes(left, "half a record");
        way();
        EXPECT_FALSE(std::filesystem::exists(left));
    }
}

TEST_F(AnActivation, IsTakenBackOnAFullDisk) {
    activate(fonts());
    // Nothing can be written to any file.
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit none{0, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &none);
    const auto outcome = deactivate();
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_THAT(outcome.problems, IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(set()));
}

TEST_F(AnActivation, RefusesARecordThatLeadsOutOfItsFolder) {
    activate(fonts());
    const std::string victim = sandbox_.write("victim.ttf", "x");
    writeBytes(
        set() + "/" + setRecordName,
        "glyphora-set 1\nset\t7\tactive\tX\nfile\t../../../../library/victim.ttf\t/x\t1\t1\t1\n");
    EXPECT_THAT(deactivate().problems, ElementsAre(HasSubstr(".glyphora-set: line 3: ")));
    EXPECT_TRUE(std::filesystem::exists(victim));
}

TEST_F(AnActivation, TouchesTheFolderAfterwardsForProgramsThatCompareSeconds) {
    Activation activation(sandbox_.places());
    const ContainerFonts wanted = fonts();
    EXPECT_FALSE(activation.isUnsettled());
    activation.activate(std::span(&wanted, 1));
    EXPECT_TRUE(activation.isUnsettled());
    const std::string root = sandbox_.places().fonts();
    const timespec past[2] = {{1000, 0}, {1000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, root.c_str(), past, 0), 0);
    activation.settle();
    struct stat status {};
    ASSERT_EQ(stat(root.c_str(), &status), 0);
    EXPECT_GT(status.st_mtim.tv_sec, 1000);
    EXPECT_FALSE(activation.isUnsettled());
}

TEST_F(AnActivation, IsUnsettledAgainAfterAProcessThatDidNotSettle) {
    for (const bool expected : {false, true}) {
        Activation activation(sandbox_.places());
        const auto ignore = [](const std::string&) {};
        activation.recover(ignore); // the second round's finds what the first left
        EXPECT_EQ(activation.isUnsettled(), expected);
        activation.settle();
        activation.recover(ignore);
        EXPECT_FALSE(activation.isUnsettled());
        activate(fonts());
    }
}

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
    tryEachStep([&] { activate(fonts()); },
                [&](const StepObserver& observer) {
                    activate(fonts({"one.ttf", "three.ttf"}), observer);
                },
                {"One", "Two"}, {"One", "Three"});
}

TEST_F(ACrash, WhileReplacingAFileNeverLetsTheOldOneCount) {
    const std::string one = sandbox_.library() + "/one.ttf";
    const std::string old = readBytes(one);
    bool crashed = true;
    for (int step = 0; crashed; ++step) {
        sandbox_.write("one.new", old);
        std::filesystem::rename(sandbox_.library() + "/one.new", one);
        activate(fonts());
        sandbox_.write("one.new", makeFont({"One Anew", "Regular", "Anew", "", "", false, {}}));
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
    tryEachStep([&] { activate(fonts()); },
                [&](const StepObserver& observer) { deactivate(observer); }, {"One", "Two"}, {});
}

TEST_F(ACrash, ThatLeftASetWithoutItsFilesIsMendedAsFarAsTheLibraryGoes) {
    activate(fonts());
    std::filesystem::remove(set() + "/one.ttf");
    std::filesystem::remove(set() + "/two.ttf");
    std::filesystem::remove(sandbox_.library() + "/two.ttf");
    recover();
    EXPECT_THAT(visibleFamilies(), ElementsAre("One"));
    EXPECT_THAT(reports_, ElementsAre(HasSubstr("/7: completed")));
}

} // namespace
