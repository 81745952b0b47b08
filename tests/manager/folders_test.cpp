// SPDX-License-Identifier: MIT
// The list of library folders, and the walk through them.
#include "manager/library/error.h"
#include "manager/library/fields.h"
#include "manager/library/folders.h"
#include "manager/library/walk.h"
#include "tests/manager/sandbox.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace manager;
using namespace managertest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class AFolderList : public testing::Test {
protected:
    std::string folder(const std::string& name) {
        std::string path = sandbox_.library() + "/" + name;
        std::filesystem::create_directories(path);
        return path;
    }
    Sandbox sandbox_;
    Places places_ = sandbox_.places();
};

TEST_F(AFolderList, KeepsCanonicalPathsWithAnyCharacters) {
    const std::string odd = folder("new\nline\tand\\slash");
    const std::string plain = folder("plain");
    std::filesystem::create_directory_symlink(plain, sandbox_.library() + "/link");
    const std::vector<std::string> given = {odd + "/../new\nline\tand\\slash/",
                                            sandbox_.library() + "/link"};
    EXPECT_THAT(addFolders(places_, given), ElementsAre(odd, plain));
    EXPECT_THAT(readFolders(places_), ElementsAre(odd, plain));
}

TEST_F(AFolderList, TakesNoFolderTwiceAndNoneInsideAnother) {
    const std::string outer = folder("outer");
    const std::vector<std::string> given = {outer, folder("outer/inner"), outer, folder("outer2")};
    EXPECT_THAT(addFolders(places_, given), ElementsAre(outer, sandbox_.library() + "/outer2"));
}

TEST_F(AFolderList, IsLeftAsItWasByACommandThatFails) {
    const std::string good = folder("good");
    EXPECT_THROW(addFolders(places_, std::vector{good, sandbox_.library() + "/absent"}), Error);
    EXPECT_THROW(addFolders(places_, std::vector{sandbox_.write("file", "x")}), Error);
    EXPECT_THAT(readFolders(places_), IsEmpty());
    addFolders(places_, std::vector{good});
    EXPECT_THROW(removeFolders(places_, std::vector{good, folder("other")}), Error);
    EXPECT_THAT(readFolders(places_), ElementsAre(good));
}

TEST_F(AFolderList, ForgetsAFolderThatIsGone) {
    const std::string gone = folder("gone");
    addFolders(places_, std::vector{gone});
    std::filesystem::remove(gone);
    EXPECT_THAT(removeFolders(places_, std::vector{gone}), ElementsAre(gone));
    EXPECT_THAT(readFolders(places_), IsEmpty());
}

TEST_F(AFolderList, OfAnotherProgramIsRefusedWithItsLine) {
    std::filesystem::create_directories(places_.own());
    for (const auto& [text, place] : {std::pair{"something else\n", "line 1"},
                                      std::pair{"glyphora-folders 1\n/a\nrelative\n", "line 3"},
                                      std::pair{"glyphora-folders 1\n/a\\x\n", "line 2"}}) {
        writeBytes(places_.folders(), text);
        try {
            static_cast<void>(readFolders(places_));
            ADD_FAILURE() << text;
        } catch (const Error& error) {
            EXPECT_THAT(error.what(), HasSubstr(places_.folders() + ": " + place));
        }
    }
}

TEST_F(AFolderList, OnADiskThatIsAwayIsNotTakenForAnEmptyOne) {
    std::filesystem::create_directories(places_.own());
    std::filesystem::create_symlink(sandbox_.root() + "/away/folders", places_.folders());
    EXPECT_THROW(static_cast<void>(readFolders(places_)), Error);
    std::filesystem::create_directory(sandbox_.root() + "/away");
    writeBytes(sandbox_.root() + "/away/folders", "glyphora-folders 1\n");
    EXPECT_THAT(addFolders(places_, std::vector{folder("new")}), testing::SizeIs(1));
    EXPECT_TRUE(std::filesystem::is_symlink(places_.folders()));
}

TEST(AFieldLine, CarriesAnyBytes) {
    const std::string odd("a\tb\nc\\d\0e\xFF", 10);
    const std::string line = joinFields({odd, "", "plain"});
    EXPECT_THAT(splitLines(line), testing::SizeIs(1));
    EXPECT_THAT(*splitFields(splitLines(line).front()), ElementsAre(odd, "", "plain"));
    EXPECT_FALSE(splitFields("bad\\escape"));
    EXPECT_FALSE(splitFields("cut\\"));
}

class AFolderWalk : public AFolderList {
protected:
    std::vector<std::string> names(const FoundFiles& found) {
        std::vector<std::string> result;
        for (const FoundFolder& folder : found.folders) {
            for (const FoundFile& file : folder.files) {
                result.push_back(
                    joinPath(folder.path, file.name).substr(sandbox_.library().size() + 1));
            }
        }
        return result;
    }
};

TEST_F(AFolderWalk, EndsInSpiteOfLoopsAndVisitsEachFolderOnce) {
    sandbox_.write("a/one.ttf", "x");
    sandbox_.write("a/b/two.otf", "x");
    sandbox_.write("a/notes.txt", "x");
    sandbox_.write("a/.hidden/three.ttf", "x");
    std::filesystem::create_directory_symlink("..", sandbox_.library() + "/a/b/loop");
    std::filesystem::create_directory_symlink("a/b", sandbox_.library() + "/0-first");
    std::filesystem::create_symlink("self.ttf", sandbox_.library() + "/self.ttf");
    std::filesystem::create_symlink("/away/fonts", sandbox_.library() + "/disk");
    std::filesystem::create_symlink("/away/notes.txt", sandbox_.library() + "/notes.txt");
    std::filesystem::create_directory_symlink("/proc/self", sandbox_.library() + "/kernel");
    ASSERT_EQ(mkfifo((sandbox_.library() + "/pipe.ttf").c_str(), 0600), 0);

    const FoundFiles found = findFontFiles(std::vector{sandbox_.library()});
    EXPECT_THAT(names(found), ElementsAre("a/one.ttf", "a/b/two.otf"));
    EXPECT_THAT(found.problems,
                testing::UnorderedElementsAre(HasSubstr("/self.ttf: cannot be read"),
                                              HasSubstr("/disk: cannot be read: No such file"),
                                              HasSubstr("/pipe.ttf: not a regular")));
    EXPECT_THAT(found.folders, testing::SizeIs(3));
}

TEST_F(AFolderWalk, NamesAFolderThatIsAwayAndGoesOn) {
    sandbox_.write("a/one.ttf", "x");
    const FoundFiles found =
        findFontFiles(std::vector{sandbox_.library() + "/away", sandbox_.library() + "/a"});
    EXPECT_THAT(names(found), ElementsAre("a/one.ttf"));
    EXPECT_THAT(found.problems, ElementsAre(HasSubstr("/away: the folder cannot be read")));
    EXPECT_THAT(found.unreadRoots, ElementsAre(sandbox_.library() + "/away"));
}

TEST_F(AFolderWalk, PassesOverWhatIsActiveByWhateverWayItIsReached) {
    namespace fs = std::filesystem;
    const std::string active = sandbox_.library() + "/fonts/active";
    sandbox_.write("fonts/own.ttf", "x");
    sandbox_.write("fonts/active/1/copy.ttf", "x");
    fs::create_directory_symlink("fonts/active", sandbox_.library() + "/linked");
    fs::create_directory_symlink("fonts/active/1", sandbox_.library() + "/deep");
    fs::create_symlink("fonts/active/1/copy.ttf", sandbox_.library() + "/link.ttf");
    EXPECT_THAT(names(findFontFiles(std::vector{sandbox_.library()}, active)),
                ElementsAre("fonts/own.ttf"));
    EXPECT_THAT(names(findFontFiles(std::vector{active, active + "/1"}, active)), IsEmpty());
    EXPECT_THAT(names(findFontFiles(std::vector{active}, active + "/2")),
                ElementsAre("fonts/active/1/copy.ttf"));

    fs::create_directories(places_.fonts() + "/1");
    EXPECT_THROW(addFolders(places_, std::vector{places_.fonts() + "/1"}), Error);
    EXPECT_THAT(addFolders(places_, std::vector{places_.data + "/fonts"}), testing::SizeIs(1));
}

} // namespace
