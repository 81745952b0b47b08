// SPDX-License-Identifier: MIT
// Activation on disk: what the desktop sees, and what is never touched.
#include "manager/activation/desktopfonts.h"
#include "manager/library/error.h"
#include "tests/manager/activationfixture.h"

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
using namespace testsupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

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

TEST_F(AnActivation, LetsNoWriteToAnActiveFileReachTheLibrary) {
    std::filesystem::create_symlink("one.ttf", sandbox_.library() + "/alias.ttf");
    activate(fonts({"alias.ttf", "two.ttf"}));
    const std::string library = readBytes(sandbox_.library() + "/one.ttf");
    for (const char* file : {"/alias.ttf", "/two.ttf"}) {
        EXPECT_FALSE(std::filesystem::is_symlink(set() + file));
        writeBytes(set() + file, "spoilt");
    }
    EXPECT_EQ(readBytes(sandbox_.library() + "/one.ttf"), library);
    EXPECT_NE(readBytes(sandbox_.library() + "/two.ttf"), "spoilt");
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
    writeBytes(font, makeFont({"Far", "Regular", "Far"}));
    const auto outcome = activate({container, "Far", {{font, stampOf(font)}}});
    const std::string copied = readBytes(set() + "/far.ttf");
    const std::string original = readBytes(font);
    std::filesystem::remove_all(folder);
    EXPECT_TRUE(outcome.success) << testing::PrintToString(outcome.problems);
    EXPECT_EQ(copied, original);
    EXPECT_THAT(visibleFamilies(), ElementsAre("Far"));
}

TEST_F(AnActivation, FollowsReplacedFilesOrTheWholeContainer) {
    ContainerFonts older = fonts();
    older.files[0].version = "1.0";
    activate(older);
    addFont("three.ttf", "Three");
    std::filesystem::remove(sandbox_.library() + "/two.ttf");
    addFont("one.ttf.new", "One Anew");
    std::filesystem::rename(sandbox_.library() + "/one.ttf.new", sandbox_.library() + "/one.ttf");
    ContainerFonts newer = fonts({"one.ttf", "three.ttf"});
    newer.files[0].version = "2.0";
    newer.onlyIfActive = true;
    newer.reasons = {};
    // As a program keeps it that has the older one mapped.
    const std::string open = sandbox_.root() + "/open";
    std::filesystem::create_hard_link(set() + "/one.ttf", open);
    const std::string bytes = readBytes(open);
    const ActivationOutcome replaced = activate(newer);
    EXPECT_EQ(replaced.versions, "1.0 -> 2.0");
    EXPECT_TRUE(replaced.change.addedFiles.empty() && replaced.change.removedFiles.empty())
        << "which taking it back would want of the library";
    EXPECT_THAT(visibleFamilies(), ElementsAre("One Anew", "Two"));
    EXPECT_EQ(readBytes(open), bytes);
    EXPECT_THAT(readSetRecord(set())->reasons, ElementsAre(Reason::byHand()));

    const auto outcome = activate(fonts({"one.ttf", "three.ttf"}));
    EXPECT_TRUE(outcome.success) << testing::PrintToString(outcome.problems);
    EXPECT_THAT(visibleFamilies(), ElementsAre("One Anew", "Three", "Two")) << "gone, and kept";
    deactivate();
    EXPECT_FALSE(activate(newer).changed);
}

TEST_F(AnActivation, TakesSingleFilesInAndAway) {
    const auto reasons = [](const std::vector<Reason>& added) { return ReasonChange{added, {}}; };
    ContainerFonts some = fonts();
    some.only = {"one.ttf", "none.ttf"};
    EXPECT_EQ(activate(some).change, (SetChange{reasons({Reason::byHand()}), {"one.ttf"}, {}}));
    EXPECT_THAT(visibleFamilies(), ElementsAre("One"));
    some.only = {"two.ttf"};
    EXPECT_EQ(activate(some).change, (SetChange{{}, {"two.ttf"}, {}}));
    ContainerFonts less = fonts();
    less.only.emplace();
    less.reasons.clear();
    less.without = {"one.ttf"};
    {
        const FontUser program(set() + "/two.ttf");
        const ActivationOutcome outcome = activate(less);
        EXPECT_FALSE(outcome.success || outcome.changed || outcome.postponed);
        EXPECT_THAT(outcome.problems, ElementsAre(HasSubstr("; single files can be taken away")));
        EXPECT_TRUE(outcome.change.isEmpty());
        EXPECT_THAT(visibleFamilies(), ElementsAre("One", "Two"));
    }
    const ActivationOutcome outcome = activate(less);
    EXPECT_TRUE(outcome.success && outcome.changed);
    EXPECT_EQ(outcome.change, (SetChange{{}, {}, {"one.ttf"}}));
    EXPECT_THAT(visibleFamilies(), ElementsAre("Two"));
    EXPECT_THAT(entries(set()), ElementsAre(".glyphora-set", "two.ttf"));
    EXPECT_EQ(deactivate().change, (SetChange{{{}, {Reason::byHand()}}, {}, {"two.ttf"}}));
}

TEST_F(AnActivation, ReplacesFilesOfOldNamesThatNobodyHasOpen) {
    ContainerFonts older = fonts();
    older.files[0].version = older.files[1].version = "1.0";
    activate(older);
    addFont("three.ttf", "Three");
    ContainerFonts newer = fonts({"three.ttf"});
    newer.files[0].version = "2.0";
    newer.successors = {{"one.ttf", "three.ttf"}, {"two.ttf", "three.ttf"}};
    ContainerFonts unread = newer;
    ++unread.files[0].stamp.size;
    unread.successors.erase("two.ttf");
    EXPECT_THAT(activate(unread).lost, ElementsAre("three.ttf"));
    EXPECT_THAT(visibleFamilies(), ElementsAre("One", "Two")) << "better than none";
    {
        int rounds = 2;
        const FontUser user(set() + "/two.ttf");
        addFont("one.ttf", "One Anew");
        for (ContainerFonts wanted : {newer, newer, fonts({"one.ttf"})}) {
            wanted.onlyIfActive = --rounds > 0;
            const auto outcome = activate(wanted);
            EXPECT_TRUE(outcome.success && outcome.postponed && !outcome.changed);
            EXPECT_THAT(outcome.problems, ElementsAre(HasSubstr("; newer files take their place")));
            EXPECT_THAT(visibleFamilies(), ElementsAre("One", "Two"));
        }
    }
    EXPECT_EQ(activate(newer).versions, "1.0 -> 2.0");
    EXPECT_THAT(entries(set()), ElementsAre(".glyphora-set", "three.ttf"));
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
    activate(wanted, [&](std::string_view) { std::filesystem::remove(set() + "/two.ttf"); });
    EXPECT_THAT(readSetRecord(set())->files, testing::SizeIs(1)) << "unless it goes meanwhile";
}

TEST_F(AnActivation, CountsOnlyWhatIsActiveAsTheLibraryHasIt) {
    activate(fonts());
    EXPECT_THAT(activeFiles(), ElementsAre("one.ttf", "two.ttf"));
    sandbox_.write("one.ttf", makeFont({"Other", "Regular", "Other"}) + "more");
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
        EXPECT_FALSE(activation.isActive(
            {container, wanted.name, folderOf(wanted.files.front().path), "", 1}));
        EXPECT_THAT(visibleFamilies(), ElementsAre("One", "Two"));
    }
    ContainerFonts renamed = fonts();
    renamed.name = "BOTH";
    EXPECT_TRUE(activate(renamed).success) << "families differ neither by case nor by blanks";
}

TEST_F(AnActivation, TakesTheDataFolderHoweverItIsWritten) {
    const testsupport::Variable odd("XDG_DATA_HOME", sandbox_.root() + "//other/../data/./");
    Activation activation(Places::fromEnvironment());
    const ContainerFonts wanted = fonts();
    EXPECT_THAT(activation.activate(std::span(&wanted, 1)).at(0).problems, IsEmpty());
    EXPECT_THAT(visibleFamilies(), ElementsAre("One", "Two"));
}

TEST_F(AnActivation, ShowsTheOthersWhenFontconfigRefusesAFile) {
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

TEST_F(AnActivation, TakesAFileBackThatFontconfigLoopsIn) {
    // In place of a font that does it: a reader that loops while it finds one of this name.
    const std::string reader = sandbox_.root() + "/reader";
    writeBytes(reader,
               "#!/bin/sh\nulimit -t 1\n[ $1 = folders ] && [ ! -e $2/7/two.ttf ] && exec " +
                   desktopProgram().string() +
                   " \"$@\"\n"
                   "while IFS= read -r path; do\n  printf 'at\\t%s\\n' \"$path\" >&0\n"
                   "  case $path in */7|*/two.ttf) while :; do :; done;; esac\ndone\n"
                   "echo end >&0\n");
    std::filesystem::permissions(reader, std::filesystem::perms::owner_all);
    Activation activation(sandbox_.places(), {}, reader);
    const ContainerFonts wanted = fonts();
    for (int round = 0; round < 2; ++round) { // the second one does not try it again
        const auto outcome = activation.activate(std::span(&wanted, 1)).at(0);
        EXPECT_THAT(outcome.lost, ElementsAre("two.ttf"));
        EXPECT_THAT(outcome.problems,
                    ElementsAre(HasSubstr("/two.ttf: fontconfig does not come to an end with it")));
        EXPECT_THAT(visibleFamilies(), ElementsAre("One"));
    }
    writeBytes(reader, "#!/bin/sh\nexec " + desktopProgram().string() + " \"$@\"\n");
    addFont("two.ttf", "Mended in Place");
    const ContainerFonts mended = fonts();
    EXPECT_THAT(activation.activate(std::span(&mended, 1)).at(0).problems, IsEmpty());
}

TEST_F(AnActivation, TakesNothingAwayThatNoReaderGotToTheEndOf) {
    activate(fonts());
    const std::string reader = sandbox_.root() + "/reader";
    const std::pair<const char*, std::string> changes[] = {
        {"Three", "exit 1"},
        {"Two", "[ $1 = folders ] && printf 'at\\t7\\n' >&0 && exit 1; echo end >&0"}};
    for (const auto& [name, script] : changes) {
        addFont("two.ttf", name);
        writeBytes(reader, "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(reader, std::filesystem::perms::owner_all);
        Activation activation(sandbox_.places(), {}, reader);
        const ContainerFonts wanted = fonts();
        const auto outcome = activation.activate(std::span(&wanted, 1)).at(0);
        EXPECT_THAT(outcome.problems, ElementsAre(HasSubstr("/7: cannot be read by fontconfig")));
        EXPECT_THAT(visibleFamilies(), ElementsAre("One", name));
    }
    addFont("two.ttf", "Four");
    Activation activation(sandbox_.places(), {}, "/no/reader");
    const ContainerFonts wanted = fonts();
    EXPECT_THAT(activation.activate(std::span(&wanted, 1)).at(0).problems,
                ElementsAre(HasSubstr("/7: cannot be read by fontconfig: /no/reader: No such")));
}

TEST_F(AnActivation, LeavesNothingThatTheDesktopsSettingsHide) {
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
        sandbox_.setFontconfig(settings);
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

// In place of a full disk: no file of this process grows beyond so many bytes.
class DiskSpace {
public:
    explicit DiskSpace(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    DiskSpace(const DiskSpace&) = delete;
    DiskSpace& operator=(const DiskSpace&) = delete;
    ~DiskSpace() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    void (*handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

TEST_F(AnActivation, IsTakenBackOnAFullDisk) {
    activate(fonts());
    const DiskSpace none(0);
    EXPECT_THAT(deactivate().problems, IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(set()));
}

TEST_F(AnActivation, LosesOnlyTheFileThatADiskHasNoRoomFor) {
    constexpr std::size_t room = 500'000;
    sandbox_.write("two.ttf", makeFont({"Two", "Regular", "Two"}) + std::string(2 * room, ' '));
    {
        const DiskSpace little(room);
        const auto outcome = activate(fonts());
        EXPECT_THAT(outcome.problems, ElementsAre(AllOf(HasSubstr("/two.ttf: cannot be copied to "),
                                                        HasSubstr(": File too large"))));
        EXPECT_THAT(outcome.lost, ElementsAre("two.ttf"));
    }
    EXPECT_THAT(entries(set()), ElementsAre(".glyphora-set", "one.ttf"));
    EXPECT_THAT(visibleFamilies(), ElementsAre("One"));
    EXPECT_TRUE(activate(fonts()).success) << "when there is room";
    EXPECT_THAT(visibleFamilies(), ElementsAre("One", "Two"));
}

TEST_F(AnActivation, HidesASetWhoseRecordLeadsOutOfItsFolder) {
    activate(fonts());
    const std::string victim = sandbox_.write("victim.ttf", "x");
    writeBytes(
        set() + "/" + setRecordName,
        "glyphora-set 1\nset\t7\tactive\tX\nfile\t../../../../library/victim.ttf\t/x\t1\t1\t1\n");
    {
        const FontUser user(set() + "/one.ttf");
        EXPECT_THAT(deactivate().problems, ElementsAre(HasSubstr(".glyphora-set: line 3: "),
                                                       HasSubstr("it can be taken away when")));
    }
    EXPECT_THAT(visibleFamilies(), ElementsAre("One", "Two"));
    std::filesystem::create_directories(sandbox_.places().fonts() + "/.damaged-7-1/of before");
    EXPECT_THAT(deactivate().problems,
                ElementsAre(HasSubstr(".glyphora-set: line 3: "),
                            HasSubstr("/7: is kept as " + sandbox_.places().fonts())));
    EXPECT_THAT(visibleFamilies(), IsEmpty());
    EXPECT_THAT(entries(sandbox_.places().fonts() + "/.damaged-7-2"),
                ElementsAre(".glyphora-set", "one.ttf", "two.ttf"));
    EXPECT_TRUE(std::filesystem::exists(victim));
}

TEST_F(AnActivation, TouchesTheFolderForProgramsThatSeeSeconds) {
    Activation activation(sandbox_.places());
    const ContainerFonts wanted = fonts();
    EXPECT_FALSE(activation.isUnsettled());
    EXPECT_TRUE(activation.activate(std::span(&wanted, 1)).front().success);
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

TEST_F(AnActivation, IsUnsettledAfterAProcessThatDidNotSettle) {
    for (const bool expected : {false, true}) {
        Activation activation(sandbox_.places());
        const auto ignore = [](const std::string&) {};
        activation.recover(ignore); // the second round's finds what the first left
        EXPECT_EQ(activation.isUnsettled(), expected);
        activation.settle();
        const std::int64_t settled = changeTime(sandbox_.places().fonts());
        activation.recover(ignore);
        EXPECT_FALSE(activation.isUnsettled());
        EXPECT_EQ(changeTime(sandbox_.places().fonts()), settled) << "programs need not reload";
        activate(fonts());
    }
}

} // namespace
