// SPDX-License-Identifier: MIT
// Parts of the program apart from its processes: lines for people, the watch on folders, what the
// sets on disk tell, collections and tags.
#include "manager/activation/setrecord.h"
#include "manager/cli/folderwatch.h"
#include "manager/cli/groupchange.h"
#include "manager/cli/groups.h"
#include "manager/cli/knownsets.h"
#include "manager/cli/report.h"
#include "manager/cli/timer.h"
#include "manager/library/error.h"
#include "manager/library/update.h"
#include "tests/manager/sandbox.h"
#include "tests/support/fontmaker.h"

#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <sys/stat.h>
#include <tuple>

using namespace manager;
using namespace managertest;
using namespace testsupport;
namespace fs = std::filesystem;

namespace {

TEST(ALineForPeople, ShowsControlCharacters) {
    const struct {
        std::string text;
        std::string shown;
    } cases[] = {
        {"M\u00fcller & S\u00f6hne \\ \u4e2d", "M\u00fcller & S\u00f6hne \\ \u4e2d"},
        {"two\nlines\tand\rmore", "two\\nlines\\tand\\x0dmore"},
        {"\x1b[2J\x7f", "\\x1b[2J\\x7f"},
        {"\xc2\x9b"
         "2J\xc2\xa0",
         "\\x9b2J\xc2\xa0"},
        {"cut \xc2", "cut \xc2"},
    };
    for (const auto& [text, shown] : cases) {
        EXPECT_EQ(printable(text), shown);
    }
}

TEST(APacedDeed, IsDoneAtOnceThenAfterAWhileAndNeverInVain) {
    using std::chrono::milliseconds;
    const Paced::Time start{};
    Paced deed{milliseconds(20)};
    EXPECT_FALSE(deed.take(start) || deed.due());
    deed.want();
    EXPECT_TRUE(deed.due() <= start && deed.take(start));
    deed.want();
    deed.want();
    EXPECT_EQ(deed.due(), start + milliseconds(20));
    EXPECT_FALSE(deed.take(start + milliseconds(19)));
    EXPECT_TRUE(deed.take(start + milliseconds(20)));
    EXPECT_FALSE(deed.take(start + milliseconds(99)) || deed.due());
}

TEST(AContainerNumber, IsADecimalOfAtLeastOne) {
    EXPECT_EQ(toContainerId("12"), static_cast<ContainerId>(12));
    for (const char* text : {"", "0", "-1", "1 ", " 1", "1x", "2147483648", "+1"}) {
        EXPECT_FALSE(toContainerId(text)) << text;
    }
}

TEST(ASetOnDisk, TellsItsContainer) {
    const Sandbox sandbox;
    const std::string fonts = sandbox.places().fonts() + "/";
    for (const auto& [id, name, file] :
         {std::tuple{4, "Test Sans", "one.ttf"}, std::tuple{9, "pair.ttc", "pair.ttc"}}) {
        fs::create_directories(fonts + std::to_string(id));
        const std::string source = std::string("/library/a/") + file;
        writeBytes(fonts + std::to_string(id) + "/" + setRecordName,
                   recordText({ContainerId{id}, name, {{file, source, {1, 2, 3}}}}));
        writeBytes(fonts + std::to_string(id) + "/" + file, id == 4 ? "OTTO" : "ttcf");
    }
    fs::create_directories(fonts + "11"); // of somebody else
    fs::create_directories(fonts + "12");
    writeBytes(fonts + "12/" + setRecordName, "rubbish");

    std::map<int, std::string> told;
    for (const auto& [id, name, folder, file, format] : containersOnDisk(sandbox.places())) {
        told[static_cast<int>(id)] = name + "," + folder + "," + file + "," +
                                     (format ? std::to_string(static_cast<int>(*format)) : "");
    }
    EXPECT_EQ(told, (std::map<int, std::string>{{4, "Test Sans,/library/a,,2"},
                                                {9, "pair.ttc,/library/a,pair.ttc,3"},
                                                {12, ",,,"}}));
}

class AGroup : public testing::Test {
protected:
    void scan() {
        library_.emplace(sandbox_.places());
        updateLibrary(*library_, std::vector{sandbox_.library()}, FontReaderLimits{});
    }
    Group& group() {
        groups_ = readGroups(sandbox_.places());
        return *findGroup(groups_, GroupKind::Tag, "two\nlines");
    }

    Sandbox sandbox_;
    std::optional<Library> library_;
    Groups groups_;
};

TEST_F(AGroup, KeepsItsMembersWhenANewIndexGivesOtherNumbers) {
    sandbox_.write("b/sans.ttf", makeFont({"Test Sans", "Regular", "TestSans"}));
    sandbox_.write("b/pair.ttc", makeCollection({{"Pair", "Regular", "Pair"}}));
    scan();
    changeGroups(sandbox_.places(), [&](Groups& groups) {
        groups.push_back({GroupKind::Tag, "two\nlines", {}});
        for (const Container& c : library_->containers()) {
            groups.back().members.push_back({c.id, c.name, c.folder, c.file, c.format});
        }
        groups.back().members.push_back({ContainerId{3}, "Gone", "/gone", "", {}});
        groups.push_back({GroupKind::Collection, "empty", {}});
    });
    for (const char* part : {"", "-wal", "-shm"}) {
        fs::remove(sandbox_.places().database() + part);
    }
    sandbox_.write("a/sans.ttf", makeFont({"Test Sans", "Regular", "TestSans"}));
    scan();
    const auto& members = group().members;
    ASSERT_EQ(members.size(), 3U);
    for (const GroupMember& member : members) {
        const auto id = currentNumber(*library_, member);
        const auto found = id ? library_->container(*id) : std::nullopt;
        EXPECT_EQ(found ? found->folder : "", member.name == "Gone" ? "" : member.folder);
        EXPECT_NE(id, member.id) << "else this shows nothing";
    }
    EXPECT_EQ(groups_.front().name, "empty") << "collections come first";
}

std::string textOf(const std::vector<GroupMember>& members) {
    std::string text;
    for (const GroupMember& member : members) {
        text += member.name + "(";
        for (const std::string& file : member.files) {
            text += file;
        }
        text += ") ";
    }
    return text;
}

TEST_F(AGroup, HasContainersOrSingleFilesAndIsAsBeforeWhatIsTakenBack) {
    const auto some = [](const std::string& name, std::set<std::string> files) {
        return GroupMember{ContainerId{1}, name, "/" + name, "", {}, std::move(files)};
    };
    const auto all = [](const GroupMember& member) {
        return member.name == "A" ? std::set<std::string>{"a", "b", "\tc\n"}
                                  : std::set<std::string>{"z"};
    };
    using Members = std::vector<GroupMember>;
    const struct {
        Members before;
        Members added;
        Members removed;
        const char* after;
    } cases[] = {
        {{}, {some("A", {"b", "a"})}, {}, "A(ab) "},
        {{some("A", {"a"})}, {some("A", {"a", "\tc\n"})}, {}, "A(\tc\na) "},
        {{some("A", {"a"})}, {some("A", {})}, {}, "A() "},
        {{some("A", {})}, {some("A", {"a"})}, {}, "A() "},
        {{some("A", {})}, {some("B", {"z"}), some("B", {})}, {}, "A() B() "},
        {{some("A", {"a", "b"}), some("B", {})}, {}, {some("A", {"b"})}, "A(a) B() "},
        {{some("A", {"a", "b"})}, {}, {some("A", {})}, ""},
        {{some("A", {"a", "b"})}, {}, {some("A", {"a"}), some("A", {"b"})}, ""},
        {{some("A", {"a"})}, {}, {some("A", {"a"}), some("A", {})}, ""},
        {{some("A", {"a"})}, {}, {some("A", {"b"})}, "A(a) "},
        {{some("A", {})}, {}, {some("A", {"b"})}, "A(\tc\na) "},
        {{some("A", {})}, {}, {some("A", {"d"})}, "A() "},
        {{some("B", {})}, {}, {some("B", {"z"})}, ""},
    };
    const GroupTitle title{GroupKind::Tag, "two\nlines"};
    for (const auto& [before, added, removed, after] : cases) {
        const Groups one{{title.kind, title.name, before}};
        changeGroups(sandbox_.places(), [&](Groups& groups) { groups = one; });
        const auto back = changeGroup(sandbox_.places(),
                                      {.title = title, .added = added, .removed = removed}, all);
        const std::string given = "from " + textOf(before) + "to " + after;
        EXPECT_EQ(textOf(group().members), after);
        EXPECT_EQ(back.isEmpty(), textOf(before) == after) << given;
        const auto again = changeGroup(sandbox_.places(), back, all);
        EXPECT_EQ(textOf(group().members), textOf(before)) << given;
        static_cast<void>(changeGroup(sandbox_.places(), again, all));
        EXPECT_EQ(textOf(group().members), after) << given;
    }
}

TEST_F(AGroup, IsNotChangedWhereItsFileCannotBeRead) {
    const std::string path = sandbox_.places().own() + "/groups";
    fs::create_directories(sandbox_.places().own());
    const struct {
        std::string text;
        const char* problem;
    } cases[] = {
        {"", "line 1: expected \"glyphora-groups 1\""},
        {"glyphora-groups 1\ncontainer\t1\ta\t/a\t\t\n", "line 2: "},
        {"glyphora-groups 1\ntag\tx\ncontainer\t0\ta\t/a\t\t\n", "line 3: "},
        {"glyphora-groups 1\ntag\tx\ncontainer\t1\ta\t/a\t\tbitmap\n", "line 3: "},
        {"glyphora-groups 1\ntag\tx\nshelf\ty\n", "line 3: "},
    };
    for (const auto& [text, problem] : cases) {
        writeBytes(path, text);
        try {
            changeGroups(sandbox_.places(), [](Groups& groups) { groups.clear(); });
            ADD_FAILURE() << problem;
        } catch (const Error& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(path + ": " + problem));
        }
        EXPECT_EQ(readBytes(path), text);
    }
}

TEST(AListOfMounts, TellsOfChangesNearAFolder) {
    const std::string base = "21 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
                             "30 21 0:22 / /proc rw - proc proc rw\n";
    const struct {
        const char* added;
        bool near;
    } cases[] = {
        {"", false},
        {"40 21 8:2 / /media rw - ext4 d rw\n", true},
        {"40 21 8:2 / /media/my\\040disk/fonts/more rw - ext4 d rw\n", true},
        {"40 21 8:2 / /media/my\\040disk rw - ext4 d rw\n", true},
        {"40 21 8:2 / /media/my\\040disk/other rw - ext4 d rw\n", false},
        {"40 21 8:2 / /media/my rw - ext4 d rw\n", false},
        {"40 21\n\n", false},
    };
    for (const auto& [added, near] : cases) {
        const Mounts before = readMounts(base);
        const Mounts after = readMounts(base + added);
        const std::vector<std::string> folders = {"/srv", "/media/my disk/fonts"};
        EXPECT_EQ(isMountChangedNear(before, after, folders), near) << added;
        EXPECT_EQ(isMountChangedNear(after, before, folders), near) << added;
    }
}

TEST(AListOfMounts, TellsWhereOthersChangeFoldersSilently) {
    const Mounts mounts = readMounts("21 1 8:1 / / rw shared:1 master:2 - ext4 /dev/sda1 rw\n"
                                     "40 21 0:50 / /net rw - autofs auto rw\n"
                                     "41 40 0:51 / /net rw shared:3 - nfs4 host:/ rw\n"
                                     "9 41 8:2 / /net/my\\040disk rw - fuseblk /dev/sdb1 rw\n"
                                     "50 21 0:52 / /home/far rw - fuse.sshfs far: rw\n"
                                     "51 21 0:53 / /home/fa rw nfs - tmpfs nfs rw\n"
                                     "52 21 0:54 / /cut rw - \n");
    const struct {
        const char* folder;
        bool silently;
    } cases[] = {
        {"/fonts", false},       {"/net", true},          {"/net/fonts", true},
        {"/network", false},     {"/net/my disk", false}, {"/net/my disks", true},
        {"/home/far/x/y", true}, {"/home/fa/r", false},   {"/home/farther", false},
        {"/cut/x", false},
    };
    for (const auto& [folder, silently] : cases) {
        EXPECT_EQ(isChangedSilently(mounts, folder), silently) << folder;
    }
    EXPECT_FALSE(isChangedSilently({}, "/fonts"));
}

class AFolderWatch : public testing::Test {
protected:
    AFolderWatch() {
        fs::create_directories(sandbox_.places().own());
        fs::create_directories(root_);
    }
    void watch() {
        const bool here = fs::is_directory(root_);
        watch_.begin(here ? std::vector{root_} : std::vector<std::string>(), {root_});
        watch_.goOn();
        watch_.drain();
    }
    bool hears(const std::function<void()>& deed) {
        deed();
        return watch_.drain();
    }

    Sandbox sandbox_;
    std::string root_ = sandbox_.library() + "/volume/fonts";
    FolderWatch watch_{sandbox_.places()};
};

TEST_F(AFolderWatch, HearsOfFontsAndFoldersAlone) {
    const std::string font = root_ + "/a.ttf";
    const std::string list = sandbox_.places().folders();
    const std::string far = sandbox_.library() + "/list";
    watch();
    const struct {
        const char* deed;
        std::function<void()> run;
        bool heard;
    } cases[] = {
        {"a font comes", [&] { writeBytes(font, "x"); }, true},
        {"it may be read", [&] { chmod(font.c_str(), 0600); }, true},
        {"a log is written", [&] { writeBytes(root_ + "/log.txt", "x"); }, false},
        {"and goes", [&] { fs::remove(root_ + "/log.txt"); }, false},
        {"a hidden copy", [&] { writeBytes(root_ + "/.a.ttf", "x"); }, false},
        {"moves into place", [&] { fs::rename(root_ + "/.a.ttf", font); }, true},
        {"a folder", [&] { fs::create_directory(root_ + "/more"); }, true},
        {"a link to one", [&] { fs::create_directory_symlink("more", root_ + "/link"); }, true},
        {"a font goes", [&] { fs::remove(font); }, true},
        {"a neighbour", [&] { writeBytes(sandbox_.library() + "/volume/b.ttf", "x"); }, false},
        {"the list", [&] { replaceFile(list, "x"); }, true},
        {"becomes a link", [&] { fs::rename(list, far), fs::create_symlink(far, list); }, true},
    };
    for (const auto& [deed, run, heard] : cases) {
        EXPECT_EQ(hears(run), heard) << deed;
    }
    watch();
    EXPECT_TRUE(hears([&] { replaceFile(list, "y"); }));
    EXPECT_EQ(readBytes(far), "y");
}

TEST_F(AFolderWatch, HearsThatARootGoesAndComesBack) {
    const std::string volume = sandbox_.library() + "/volume";
    watch();
    EXPECT_TRUE(hears([&] { fs::rename(volume, volume + ".away"); })) << "with what is above it";
    watch();
    EXPECT_FALSE(hears([&] { fs::create_directory(sandbox_.library() + "/other"); }));
    EXPECT_TRUE(hears([&] { fs::create_directory(volume); })) << "the first step";
    watch();
    EXPECT_TRUE(hears([&] { fs::remove(volume); })) << "and back";
    watch();
    EXPECT_TRUE(hears([&] { fs::rename(volume + ".away", volume); }));
    watch();
    EXPECT_TRUE(hears([&] { writeBytes(root_ + "/a.ttf", "x"); }));
    EXPECT_TRUE(hears([&] { fs::rename(root_, root_ + ".away"); }));
    watch();
    EXPECT_TRUE(hears([&] { fs::rename(root_ + ".away", root_); }));
}

TEST_F(AFolderWatch, HearsThatARootGoesAgainBeforeItIsWatched) {
    const std::string volume = sandbox_.library() + "/volume";
    const struct {
        const char* way;
        std::function<void()> come, go;
    } cases[] = {
        {"renamed", [&] { fs::rename(volume + ".away", volume); },
         [&] { fs::rename(volume, volume + ".away"); }},
        {"made and removed", [&] { fs::create_directories(root_); },
         [&] { fs::remove_all(volume); }},
    };
    fs::rename(volume, volume + ".away");
    for (const auto& [way, come, go] : cases) {
        watch();
        EXPECT_TRUE(hears(come)) << way;
        // Here a scan found it.
        go();
        watch_.begin({root_}, {root_});
        const auto result = watch_.goOn();
        EXPECT_TRUE(watch_.drain() || (result && result->added != 0)) << way;
    }
}

TEST_F(AFolderWatch, IsSetInPortionsAndAsSetUntilAPathMayLeadElsewhere) {
    std::vector<std::string> folders;
    for (int i = 0; i < 500; ++i) {
        folders.push_back(root_ + "/" + std::to_string(i));
    }
    const auto makeFolders = [&] {
        std::for_each(folders.begin(), folders.end(), manager::makeFolders);
    };
    const auto added = [&] {
        std::optional<FolderWatch::Result> result;
        for (watch_.begin(folders, {root_}); !result; result = watch_.goOn()) {
        }
        return result->added;
    };
    makeFolders();
    watch_.begin(folders, {root_});
    EXPECT_FALSE(watch_.goOn());
    EXPECT_GE(added(), folders.size()) << "what happened there before was not heard";
    EXPECT_EQ(added(), 0);
    watch_.drain();
    EXPECT_TRUE(watch_.isAsSet());
    fs::rename(root_, root_ + ".away");
    makeFolders();
    watch_.drain();
    EXPECT_FALSE(watch_.isAsSet());
    EXPECT_GE(added(), folders.size()) << "others of the same names";
}

} // namespace
