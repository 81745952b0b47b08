// SPDX-License-Identifier: MIT
// Opening the index: damaged, begun anew, without space or rights, beside others that have it open.
#include "manager/library/error.h"
#include "manager/library/schema.h"
#include "tests/manager/libraryfixture.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace manager;
using namespace managertest;
using namespace testsupport;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;
using testing::SizeIs;
using testing::StartsWith;

namespace {

// What another process comes to.
int inAnotherProcess(const std::function<int()>& look) {
    const pid_t other = fork();
    if (other == 0) {
        try {
            _exit(look());
        } catch (...) { // NOLINT(bugprone-empty-catch): told by the status
        }
        _exit(2);
    }
    int status = -1;
    EXPECT_EQ(waitpid(other, &status, 0), other);
    return status;
}

TEST_F(ALibrary, ThatIsDamagedIsMovedAsideAndKeepsWhatCanBeRead) {
    add("a/one.ttf", {});
    add("b/two.ttf", {"Two", "Regular", "Two"});
    scan();
    const auto before = ids();
    library_->database().run("PRAGMA wal_checkpoint(TRUNCATE)");
    library_.reset();
    const std::string path = sandbox_.places().database();
    const std::string whole = readBytes(path);

    const std::vector<std::string> damages = {
        "no database at all, but a text that is long enough to look at",
        whole.substr(0, whole.size() / 2),
        whole.substr(0, 100) + std::string(whole.size() - 100, 'x'),
    };
    std::set<std::string> asides;
    for (const std::string& damaged : damages) {
        for (const char* part : {"-wal", "-shm"}) {
            std::filesystem::remove(path + part);
        }
        writeBytes(path, damaged);
        reports_.clear();
        library_ = open();
        EXPECT_TRUE(library_->isScanOwed());
        EXPECT_THAT(reports_, ElementsAre(HasSubstr(path + ": ")));
        const std::string told = reports_.front().substr(reports_.front().find("moved to "));
        EXPECT_THAT(told, StartsWith("moved to library.db.damaged-"));
        asides.insert(told.substr(0, told.find(". ")));
        library_ = open();
        EXPECT_TRUE(library_->isScanOwed()) << "also for those who open it after that";
        scan();
        EXPECT_FALSE(library_->isScanOwed());
        EXPECT_THAT(ids(), ElementsAre(Key("Test Sans@/a"), Key("Two@/b")));
        library_.reset();
    }
    EXPECT_THAT(asides, SizeIs(damages.size())) << "also within a second";

    // Damage beyond the containers leaves their numbers as they were.
    const std::size_t name = whole.find("TestSans-Regular");
    ASSERT_NE(name, std::string::npos);
    std::string tail = whole;
    tail.replace(name / 4096 * 4096, 8, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF");
    writeBytes(path, tail);
    library_ = open();
    ASSERT_TRUE(library_->isScanOwed());
    scan();
    EXPECT_EQ(ids(), before);
}

// The containers' keys stand in it twice, so that no page alone is their only place.
TEST_F(ALibrary, KeepsAllNumbersWhicheverPageIsLost) {
    constexpr std::int64_t last = 120;
    const auto containers = [&] {
        Statement count(library_->database(), "SELECT count(*), max(id) FROM container "
                                              "WHERE folder = '/' || family_key || id");
        count.step();
        return std::pair(count.number(0), count.number(1));
    };
    {
        ContainerKeeper keeper(library_->database());
        const std::string key(100, 'k');
        for (std::int64_t id = 1; id <= last; ++id) {
            keeper.keep({id, "/" + key + std::to_string(id), "", key, "Name", FontFormat::Type1});
        }
    }
    library_->vouch();
    const std::string path = sandbox_.places().database();
    const auto root = [&] {
        Statement container(library_->database(),
                            "SELECT rootpage - 1 FROM sqlite_master WHERE name = 'container'");
        container.step();
        return static_cast<std::size_t>(container.number(0));
    }();
    library_.reset();
    const std::string whole = readBytes(path);
    std::set<std::size_t> pages = {0, root};
    for (std::size_t at = 0; (at = whole.find("kkkk", at)) != std::string::npos; at += 100) {
        pages.insert(at / 4096);
    }
    EXPECT_GE(pages.size(), 8U);
    std::string aside;
    for (const std::size_t page : pages) {
        std::string damaged = whole;
        damaged.replace(page * 4096, 4096, 4096, '\xFF');
        for (const char* part : {"-wal", "-shm", soundMark}) {
            std::filesystem::remove(path + part);
        }
        writeBytes(path, damaged);
        reports_.clear();
        library_ = open(IndexCheck::WhenSuspect);
        EXPECT_THAT(reports_, ElementsAre(HasSubstr(page == 0 ? "numbers of 0 containers of 120;"
                                                              : "numbers of 120 containers;")));
        EXPECT_TRUE(page == 0 || containers() == std::pair(last, last)) << page;
        if (page == 0) {
            add("a/one.ttf", {});
            scan();
            EXPECT_EQ(ids().begin()->second, ContainerId{last + 1}) << "of none that was given";
        }
        library_.reset();
        const auto said = reports_.front().find(".damaged-");
        aside = reports_.front().substr(said, reports_.front().find(". Kept") - said);
    }
    std::set<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(sandbox_.places().own())) {
        const std::string name = entry.path().string();
        if (name.starts_with(path + ".damaged-")) {
            left.insert(name.substr(path.size()));
        }
    }
    EXPECT_THAT(left, SizeIs(9)) << "three and their logs";
    EXPECT_THAT(left, Contains(aside)) << "the last";
}

TEST_F(ALibrary, MadeAnewTellsNoProblemAgain) {
    const std::string bad = sandbox_.write("bad.ttf", "bad");
    std::filesystem::create_symlink("nothing.ttf", sandbox_.library() + "/link.ttf");
    EXPECT_THAT(scan().problems, SizeIs(2));
    const std::string path = sandbox_.places().database();
    library_.reset();
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 1);
    library_ = open();
    EXPECT_THAT(reports_, SizeIs(1));
    const UpdateReport again = scan();
    EXPECT_THAT(again.problems, IsEmpty());
    EXPECT_THAT(again.knownProblems, SizeIs(2));
    EXPECT_EQ(again.read, 1U);
}

TEST_F(ALibrary, BegunAnewGivesNoNumberToAnotherContainer) {
    const std::string folder = sandbox_.library() + "/a";
    add("a/0.ttf", {"Zero", "Regular", "Zero"});
    add("a/one.ttf", {});
    sandbox_.write("a/pair.ttc", makeCollection({{}}));
    known_ = {{ContainerId{7}, "TEST sans", folder, ""},
              {ContainerId{3}, "pair.ttc", folder, "pair.ttc"},
              {ContainerId{12}, "", "", ""}};
    const std::string path = sandbox_.places().database();
    for (const char* way : {"missing", "damaged"}) {
        library_.reset();
        std::filesystem::remove(path);
        if (std::string_view(way) == "damaged") {
            writeBytes(path, "no database at all, but a text that is long enough to look at");
        }
        library_ = open();
        EXPECT_TRUE(library_->isScanOwed()) << way;
        scan();
        EXPECT_EQ(ids(),
                  (std::map<std::string, ContainerId>{{"Zero@/a", ContainerId{13}},
                                                      {"Test Sans@/a", ContainerId{7}},
                                                      {"pair.ttc@/a/pair.ttc", ContainerId{3}}}))
            << way;
    }
}

TEST_F(ALibrary, InAFolderThatCannotBeWrittenToCanBeRead) {
    add("one.ttf", {});
    scan();
    library_.reset();
    const std::string own = sandbox_.places().own();
    const auto user = geteuid();
    for (const std::string& path : {sandbox_.root(), sandbox_.places().data, own}) {
        chmod(path.c_str(), 0555);
    }
    chmod(sandbox_.places().database().c_str(), 0444);
    if (user == 0) {
        ASSERT_EQ(seteuid(65534), 0); // nothing holds root up
    }
    try {
        library_ = open();
        EXPECT_THAT(library_->findByPostScriptName("TestSans-Regular"), SizeIs(1));
        EXPECT_FALSE(library_->isScanOwed());
        EXPECT_THROW(library_->database().run("DELETE FROM file"), Error);
    } catch (const Error& error) {
        ADD_FAILURE() << error.what();
    }
    library_.reset();
    EXPECT_EQ(seteuid(user), 0);
    for (const std::string& path : {sandbox_.root(), sandbox_.places().data, own}) {
        chmod(path.c_str(), 0755);
    }
}

TEST_F(ALibrary, OfANewerVersionOrAnotherProgramIsLeftAlone) {
    library_->database().run("PRAGMA user_version=99");
    library_.reset();
    EXPECT_THROW(open(), Error);
    {
        Database database(sandbox_.places().database());
        database.run("PRAGMA application_id=1");
    }
    EXPECT_THROW(open(), Error);
    EXPECT_THAT(reports_, IsEmpty());
}

// Cut anywhere, it is noticed when it is opened; damaged in place, when it is met or scanned.
TEST_F(ALibrary, IsReadAsAWholeOnlyWhereItMayBeDamaged) {
    add("a/one.ttf", {});
    scan();
    const auto before = ids();
    library_.reset();
    const std::string path = sandbox_.places().database();
    const std::string whole = readBytes(path);
    const auto put = [&](std::string_view bytes) {
        library_.reset();
        std::filesystem::remove(path + "-wal");
        std::filesystem::remove(path + "-shm");
        writeBytes(path, bytes);
        reports_.clear();
    };
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{1}, std::size_t{99}, std::size_t{100}, std::size_t{4095},
          std::size_t{4096}, std::size_t{5000}, whole.size() / 2, whole.size() - 1}) {
        for (const bool inUse : {false, true}) {
            put(whole);
            library_ = open(IndexCheck::WhenSuspect);
            library_->database().run("UPDATE state SET scan_owed = 0"); // there is a log now
            library_->vouch();
            if (!inUse) {
                library_.reset();
            }
            std::filesystem::resize_file(path, length);
            reports_.clear();
            EXPECT_TRUE(!inUse || library_->isReplaced());
            EXPECT_THROW(open(IndexCheck::Never), DamagedDatabase);
            const auto mended = open(IndexCheck::WhenSuspect);
            EXPECT_THAT(reports_, ElementsAre(HasSubstr("damaged (cut short); moved"))) << length;
            EXPECT_TRUE(mended->isScanOwed()) << length;
        }
    }

    std::string damaged = whole;
    damaged.replace(whole.find("TestSans-Regular") / 4096 * 4096, 8, 8, '\xFF');
    put(damaged);
    library_ = open(IndexCheck::WhenSuspect);
    EXPECT_THAT(reports_, IsEmpty());
    EXPECT_FALSE(library_->isVouchedFor());
    EXPECT_THROW(static_cast<void>(library_->search({})), DamagedDatabase);
    library_.reset();
    library_ = open(IndexCheck::WhenSuspect);
    EXPECT_THAT(reports_, SizeIs(1));
    scan();
    EXPECT_TRUE(library_->isVouchedFor());
    EXPECT_EQ(ids(), before);

    put(damaged);
    library_ = open(IndexCheck::WhenUnclean);
    EXPECT_THAT(reports_, SizeIs(1));
}

// Whoever has it open meets the damage, and closes it before it is mended.
TEST_F(ALibrary, LosesNothingOfItsLogToWhomTheDamageIsMetBy) {
    add("a/one.ttf", {});
    add("b/two.ttf", {"Two", "Regular", "Two"});
    scan();
    const auto before = ids();
    const std::string path = sandbox_.places().database();
    for (const bool withLog : {true, false}) {
        if (!withLog) {
            library_->database().run("PRAGMA wal_checkpoint(TRUNCATE)");
        }
        library_->vouch();
        library_->database().run("PRAGMA shrink_memory");
        std::filesystem::resize_file(path, 0);
        EXPECT_THROW(static_cast<void>(library_->search({})), DamagedDatabase) << withLog;
        library_.reset();
        reports_.clear();
        library_ = open(IndexCheck::WhenSuspect);
        EXPECT_THAT(reports_, ElementsAre(HasSubstr(withLog ? "numbers of 2 containers;"
                                                            : "numbers of 0 containers of 2;")));
        scan();
        if (withLog) {
            EXPECT_EQ(ids(), before);
        } else {
            EXPECT_EQ(ids().begin()->second, ContainerId{3}) << "of none that was given";
        }
    }
}

TEST_F(ALibrary, KeepsItsLocksWhenItsProcessOpensItOnceMore) {
    library_->database().run("PRAGMA wal_checkpoint(TRUNCATE)"); // so that the header counts
    static_cast<void>(open(IndexCheck::Never));
    const sys::Descriptor file(::open(sandbox_.places().database().c_str(), O_RDWR));
    EXPECT_EQ(inAnotherProcess([&] {
                  struct flock lock {};
                  lock.l_type = F_WRLCK;
                  return fcntl(file.get(), F_GETLK, &lock) == 0 && lock.l_pid == getppid() ? 0 : 1;
              }),
              0);
}

TEST_F(ALibrary, CanBeReadOnAFullDisk) {
    add("a/one.ttf", {});
    scan();
    const std::string path = sandbox_.places().database();
    const std::string locked = path + ": is locked by manager_library (" + std::to_string(getpid());
    for (const bool withLog : {false, true}) {
        if (withLog) { // as a process leaves it that is killed
            add("a/two.ttf", {"Two", "Regular", "Two"});
            scan();
            for (const char* part : {"", "-wal"}) {
                std::filesystem::copy_file(path + part, path + part + "-copy");
            }
            library_.reset();
            for (const char* part : {"", "-wal"}) {
                std::filesystem::rename(path + part + "-copy", path + part);
            }
        }
        library_.reset();
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit before{};
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit nothing{0, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &nothing);
        try {
            library_ = open(IndexCheck::WhenSuspect);
            EXPECT_THAT(library_->findByPostScriptName("TestSans-Regular"), SizeIs(1));
            EXPECT_THAT(library_->findByPostScriptName("Two"), SizeIs(withLog ? 1 : 0));
            EXPECT_TRUE(library_->isReplaced()) << "to be opened anew once there is room";
            if (withLog) {
                EXPECT_EQ(inAnotherProcess([&] {
                              try {
                                  static_cast<void>(open(IndexCheck::Never, {}));
                              } catch (const Locked& error) {
                                  return std::string_view(error.what()).starts_with(locked) ? 0 : 1;
                              }
                              return 1;
                          }),
                          0);
            }
        } catch (const Error& error) {
            ADD_FAILURE() << error.what();
        }
        library_.reset();
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
        library_ = open();
        EXPECT_FALSE(library_->isReplaced());
    }
    EXPECT_THAT(reports_, IsEmpty());
}

} // namespace
