// SPDX-License-Identifier: MIT
// The index: containers, look-up, incremental scans.
#include "manager/library/cancel.h"
#include "manager/library/error.h"
#include "tests/manager/libraryfixture.h"

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <unistd.h>

using namespace manager;
using namespace managertest;
using namespace testsupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;
using testing::SizeIs;

namespace {

TEST_F(ALibrary, HoldsFamiliesByFolderAndEachCollectionByItself) {
    add("a/sans.ttf", {});
    add("a/sansbold.ttf", {"TEST sans", "Bold", "TestSans-Bold"});
    add("a/other.ttf", {"Other", "Regular", "Other-Regular"});
    add("b/sans.ttf", {});
    sandbox_.write("a/pair.ttc", makeCollection({{}, {"Second", "Bold", "S-B"}}));
    add("v.ttf", {"Vary", "Regular", "Vary", false, "", "", {"Medium", "Black"}});
    scan();
    EXPECT_THAT(ids(), ElementsAre(Key("Other@/a"), Key("Test Sans@/a"), Key("Test Sans@/b"),
                                   Key("Vary@"), Key("pair.ttc@/a/pair.ttc")));
    const auto instances = library_->findByFamily("vary");
    ASSERT_THAT(instances, SizeIs(3));
    EXPECT_EQ(library_->container(instances[0].container)->faces, 3);
    EXPECT_THAT(library_->findByPostScriptName("TestSans-Regular"), SizeIs(3));
    const auto bold = library_->findByPostScriptName("TestSans-Bold");
    ASSERT_THAT(bold, SizeIs(1));
    EXPECT_EQ(library_->container(bold[0].container)->faces, 2);
    EXPECT_THAT(library_->files(bold[0].container), SizeIs(2));
}

TEST_F(ALibrary, FindsFacesByEachOfTheirNames) {
    add("a.ttf", {"Lato Black", "Italic", "Lato-BlackItalic", true, "Lato", "Black Italic"});
    add("b.ttf", {"Müller & Söhne", "Book", "MuellerSoehne"});
    scan();
    for (const char* key : {"lato", "latoblack", "müller&söhne"}) {
        EXPECT_THAT(library_->findByFamily(key), SizeIs(1)) << key;
    }
    EXPECT_THAT(library_->findByFamily("lat"), IsEmpty());
    EXPECT_THAT(library_->findByFamily(""), IsEmpty());
    EXPECT_THAT(library_->findByPostScriptName("lato-blackitalic"), IsEmpty());
    EXPECT_THAT(library_->findByPostScriptName(""), IsEmpty());
    EXPECT_EQ(library_->findByPostScriptName("Lato-BlackItalic").at(0).familyName, "Lato");
}

TEST_F(ALibrary, ReadsAgainOnlyWhatHasChangedAndKeepsNumbers) {
    add("a/one.ttf", {});
    add("a/two.ttf", {"Two", "Regular", "Two"});
    sandbox_.write("a/bad.ttf", "bad");
    const UpdateReport first = scan();
    EXPECT_EQ(first.read, 3U);
    EXPECT_THAT(first.problems, ElementsAre(HasSubstr("/a/bad.ttf: ")));
    const auto before = ids();

    const UpdateReport second = scan();
    EXPECT_EQ(second.read, 0U);
    EXPECT_EQ(second.unchanged, 3U);
    EXPECT_FALSE(second.changed());
    EXPECT_THAT(second.problems, IsEmpty());
    EXPECT_THAT(second.knownProblems, ElementsAre(HasSubstr("/a/bad.ttf: ")));

    const std::string kept = readBytes(sandbox_.library() + "/a/two.ttf");
    std::filesystem::remove(sandbox_.library() + "/a/two.ttf");
    add("a/bad.ttf", {"Mended", "Regular", "Mended"});
    const UpdateReport third = scan();
    EXPECT_EQ(third.read, 1U);
    EXPECT_EQ(third.removed, 1U);
    EXPECT_THAT(library_->findByPostScriptName("Two"), IsEmpty());
    EXPECT_THAT(library_->findByPostScriptName("Mended"), SizeIs(1));

    sandbox_.write("a/two.ttf", kept);
    scan();
    auto after = ids();
    after.erase("Mended@/a");
    EXPECT_EQ(after, before);
}

TEST_F(ALibrary, TriesAgainWhatMayHavePassed) {
    const std::string closed = sandbox_.write("closed.ttf", makeFont({}));
    const std::string gate = sandbox_.root() + "/open";
    const auto scanThroughGate = [&] {
        const auto read = [&](const std::string& path) {
            if (!std::filesystem::exists(gate)) {
                throw faces::UnreadableNow(path + ": closed");
            }
            return faces::readFontFile(path);
        };
        return updateLibrary(*library_, std::vector{sandbox_.library()}, FontReaderLimits{}, {},
                             read);
    };
    EXPECT_THAT(scanThroughGate().problems, ElementsAre(closed + ": closed"));
    const UpdateReport again = scanThroughGate();
    EXPECT_FALSE(again.changed());
    EXPECT_THAT(again.problems, IsEmpty());
    EXPECT_THAT(again.knownProblems, ElementsAre(closed + ": closed"));

    writeBytes(gate, "");
    EXPECT_TRUE(scanThroughGate().changed());
    EXPECT_THAT(library_->findByPostScriptName("TestSans-Regular"), SizeIs(1));
    EXPECT_THAT(library_->problems(), IsEmpty());
}

TEST_F(ALibrary, KeepsWhatACancelledScanHasRead) {
    constexpr int count = 12;
    for (int i = 10; i < 10 + count; ++i) {
        const std::string name = std::to_string(i);
        sandbox_.write("b/" + name + ".ttf", makeFont({name, "Regular", name}));
    }
    const auto cancelAtSeventh = [](const std::string& path) {
        if (path.ends_with("/16.ttf")) { // in the reader's process, which is one alone
            kill(getppid(), SIGTERM);
            for (;;) {
                pause();
            }
        }
        return faces::readFontFile(path);
    };
    std::pair<std::size_t, std::size_t> read;
    {
        const CancelBySignals cancel;
        try {
            updateLibrary(*library_, std::vector{sandbox_.library()}, {.processes = 1}, {},
                          cancelAtSeventh);
        } catch (const ScanCancelled& cancelled) {
            read = {cancelled.read, cancelled.wanted};
        }
    }
    EXPECT_EQ(read, std::pair(6UL, 12UL));
    EXPECT_EQ(library_->counts("/").files, 6);
    EXPECT_EQ(scan().read, 6);
    EXPECT_EQ(library_->counts("/").files, count);
}

TEST_F(ALibrary, ComparesOnWhereACancelledScanEnded) {
    scan(); // the first is owed anyway
    for (const char* const name : {"a.ttf", "b/a.ttf", "c/a.ttf"}) {
        sandbox_.write(name, makeFont({}));
    }
    const auto sizeOfSets = [this] {
        std::vector<std::size_t> sizes;
        for (const auto& copies : library_->duplicates()) {
            sizes.push_back(copies.size());
        }
        return sizes;
    };
    std::vector<std::size_t> told;
    const auto cancelAtLast = [&](UpdateStep step, std::size_t done, std::size_t total) {
        if (step == UpdateStep::Compare) {
            told.push_back(done);
            if (done + 1 == total) {
                std::raise(SIGTERM);
            }
        }
    };
    {
        const CancelBySignals cancel;
        EXPECT_THROW(updateLibrary(*library_, std::vector{sandbox_.library()}, {}, cancelAtLast),
                     Cancelled);
    }
    EXPECT_THAT(told, ElementsAre(0, 1, 2));
    EXPECT_THAT(sizeOfSets(), ElementsAre(2)) << "what was read is kept";
    EXPECT_TRUE(scan().changed());
    EXPECT_THAT(sizeOfSets(), ElementsAre(3));
    EXPECT_FALSE(scan().changed());
}

TEST_F(ALibrary, KeepsWhatTheWalkCouldNotLookAt) {
    const std::string link = sandbox_.library() + "/link.ttf";
    std::filesystem::create_symlink("nothing.ttf", link);
    EXPECT_THAT(scan().problems, ElementsAre(HasSubstr(link)));
    const UpdateReport again = scan();
    EXPECT_THAT(again.problems, IsEmpty());
    EXPECT_THAT(again.knownProblems, ElementsAre(HasSubstr(link)));
    EXPECT_THAT(library_->problems(), ElementsAre(HasSubstr(link)));
    std::filesystem::remove(link);
    scan();
    EXPECT_THAT(library_->problems(), IsEmpty());
}

} // namespace
