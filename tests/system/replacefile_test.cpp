// SPDX-License-Identifier: MIT
// Files are replaced whole or not at all, and nothing else is left.
#include "system/replacefile.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string readWhole(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string watched; // the file whose text is noted at each sync
std::vector<std::pair<std::string, std::string>> synced; // the name, and that text

} // namespace

// In place of the C library's, in this program.
int fsync(int descriptor) {
    const fs::path path = fs::read_symlink("/proc/self/fd/" + std::to_string(descriptor));
    synced.emplace_back(path.filename(), readWhole(watched));
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

namespace {

using testing::_;
using testing::Contains;
using testing::ElementsAre;
using testing::Pair;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class AReplacedFile : public testing::Test {
protected:
    AReplacedFile() {
        watched = path("file");
        synced.clear();
    }

    std::string path(const std::string& name) const { return folder_ / name; }
    void write(const std::string& name, const std::string& text) const {
        std::ofstream(path(name)) << text;
    }
    std::string read(const std::string& name) const { return readWhole(path(name)); }
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder_.path())) {
            names.push_back(entry.path().filename());
        }
        return names;
    }
    unsigned rights(const std::string& name) const {
        struct stat status {};
        EXPECT_EQ(stat(path(name).c_str(), &status), 0);
        return status.st_mode & 07777U;
    }
    /// The message of the failure; empty when there was none.
    std::string failure(const std::string& name, const std::string& text) const {
        try {
            sys::replaceFile(path(name), text);
        } catch (const std::system_error& error) {
            return error.what();
        }
        return {};
    }

    testsupport::TemporaryFolder folder_;
};

TEST_F(AReplacedFile, KeepsItsRightsAndTakesThoseOfNewFilesOtherwise) {
    const mode_t mask = umask(027);
    write("old", "before");
    ASSERT_EQ(chmod(path("old").c_str(), 0462), 0);
    sys::replaceFile(path("old"), "after");
    sys::replaceFile(path("new"), "first");
    umask(mask);
    EXPECT_EQ(read("old"), "after");
    EXPECT_EQ(rights("old"), 0462U);
    EXPECT_EQ(read("new"), "first");
    EXPECT_EQ(rights("new"), 0640U);
    EXPECT_THAT(names(), UnorderedElementsAre("old", "new"));
}

TEST_F(AReplacedFile, IsAnotherFileThanTheOldOneThatReadersHold) {
    write("file", "before");
    fs::create_hard_link(path("file"), path("other name"));
    std::ifstream reader(path("file"));
    sys::replaceFile(path("file"), "after");
    EXPECT_EQ(read("other name"), "before");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), "before");
}

TEST_F(AReplacedFile, IsTheOneThatLinksLeadTo) {
    fs::create_directory(path("sub"));
    write("sub/file", "before");
    fs::create_symlink("sub/file", path("link"));
    fs::create_symlink("link", path("linked link"));
    fs::create_symlink("none yet", path("sub/hop"));
    fs::create_symlink("sub/hop", path("dangling"));
    sys::replaceFile(path("linked link"), "after");
    sys::replaceFile(path("dangling"), "made");
    EXPECT_EQ(read("sub/file"), "after");
    EXPECT_EQ(read("sub/none yet"), "made");
    for (const char* link : {"link", "linked link", "dangling", "sub/hop"}) {
        EXPECT_TRUE(fs::is_symlink(path(link))) << link;
    }
}

TEST_F(AReplacedFile, MayHaveTheLongestNameThereIs) {
    std::string name = "n";
    while (name.size() < 255) {
        name += "é";
    }
    EXPECT_EQ(failure(name, "text"), "");
    EXPECT_THAT(names(), ElementsAre(name));
    EXPECT_THAT(synced, Contains(Pair(StartsWith(name.substr(0, 199) + ".new"), _))) << "no cut é";
}

TEST_F(AReplacedFile, IsOnTheDiskBeforeItTakesItsNameWhichFollows) {
    write("file", "before");
    sys::replaceFile(path("file"), "after");
    EXPECT_THAT(synced, ElementsAre(Pair(StartsWith("file.new"), "before"),
                                    Pair(folder_.path().filename(), "after")));
}

TEST_F(AReplacedFile, IsWrittenAsideWhereThatIsWanted) {
    write("file", "before");
    // What a process of this number left there under the first name is not written over.
    const std::string left = path("aside.new") + std::to_string(getpid()) + "-0";
    std::ofstream(left) << "left";
    sys::replaceFile(path("file"), "after", path("aside"));
    EXPECT_EQ(read("file"), "after");
    EXPECT_EQ(read(fs::path(left).filename()), "left");
    EXPECT_THROW(sys::replaceFile(path("file"), "again", path("no folder/aside")),
                 std::system_error);
    EXPECT_EQ(read("file"), "after");
}

TEST_F(AReplacedFile, StaysAsItWasWhenTheNewOneCannotBeHad) {
    write("file", "before");
    write("sub", "no folder");
    fs::create_directory(path("folder"));
    const std::string large(4096, 'x');
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{1024, limit.rlim_max}; // as on a full disk, a part is taken
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string tooLarge = failure("file", large);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, previous);
    EXPECT_EQ(tooLarge,
              path("file") + ": cannot be written: " + std::generic_category().message(EFBIG));
    EXPECT_EQ(read("file"), "before");
    EXPECT_THAT(failure("sub/file", "text"),
                StartsWith(path("sub/file") + ": cannot be written: "));
    EXPECT_THAT(failure("folder", "text"), StartsWith(path("folder") + ": cannot be written: "));
    EXPECT_THAT(names(), UnorderedElementsAre("file", "sub", "folder"));
}

} // namespace
