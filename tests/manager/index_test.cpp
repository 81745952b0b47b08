// SPDX-License-Identifier: MIT
// What the index holds of faces, how it tells containers apart, and what it does with files that
// are away or twice there. The files are empty: what each holds is told by its name.
#include "manager/library/samefile.h"
#include "manager/library/schema.h"
#include "manager/library/update.h"
#include "tests/manager/indexfixture.h"

#include <cerrno>
#include <dirent.h>
#include <dlfcn.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>

using namespace manager;
using namespace managertest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

// A disk fails where this entry stands.
static std::string unreadableEntry;

// Takes the place of the system's.
extern "C" dirent* readdir(DIR* directory) {
    static const auto system = reinterpret_cast<dirent* (*)(DIR*)>(dlsym(RTLD_NEXT, "readdir"));
    dirent* entry = system(directory);
    if (entry != nullptr && entry->d_name == unreadableEntry) {
        errno = EIO;
        return nullptr;
    }
    return entry;
}

namespace {

TEST_F(AnIndex, GivesEachFaceBackAsItWasRead) {
    faces::Face plain;
    plain.names = {{"Plain", "", ""}};
    add("plain.ttf", plain);
    add("full.otf", fullFace("Full Name"));
    scan();
    const auto found = library_->findByPostScriptKey("FullName");
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(library_->face(found[0].id)->face, fullFace("Full Name"));
    EXPECT_EQ(library_->findByFamily("ab").at(0).names, fullFace("").names);
    EXPECT_THAT(library_->findByFullName("abbold"), SizeIs(1));
    EXPECT_THAT(library_->findByNormalisedFamily(""), IsEmpty());
    EXPECT_THAT(library_->comparableFaces().likenesses,
                ElementsAre(faces::likenessOf(fullFace("")).value()));
    EXPECT_EQ(library_->face(library_->findByFamily("plain")[0].id)->face, plain);
}

TEST_F(AnIndex, HasAContainerForEachFormatOfAFamily) {
    add("x.otf", plainFace("X", "Regular", faces::Technology::OpenTypePostScript));
    add("x.pfb", plainFace("X", "Regular", faces::Technology::Type1));
    add("x.ttf", plainFace("X", "Regular", faces::Technology::TrueType));
    add("xb.ttf", plainFace("X", "Bold", faces::Technology::OpenTypeTrueType));
    scan();
    EXPECT_THAT(shown(),
                ElementsAre(Pair(1, "x.otf "), Pair(2, "x.pfb "), Pair(3, "x.ttf xb.ttf ")));
}

TEST_F(AnIndex, ShowsTheNewestFileOfAFaceOnce) {
    add("1.ttf", plainFace("X", "Regular", faces::Technology::TrueType, 2));
    add("2.ttf", plainFace("X", "Regular", faces::Technology::TrueType, 3));
    add("3.ttf", plainFace("X", "Regular", faces::Technology::TrueType, 3));
    add("4.ttf", plainFace("X", "Bold"));
    scan();
    EXPECT_THAT(shown(), ElementsAre(Pair(1, "2.ttf 4.ttf ")));
    EXPECT_EQ(library_->container(ContainerId{1})->faces, 2);
    EXPECT_EQ(library_->containers().at(0).faces, 2);
    EXPECT_EQ(library_->counts(root_).faces, 2);
    const auto newest = library_->findByPostScriptKey("X-Regular");
    ASSERT_THAT(newest, SizeIs(1));
    EXPECT_EQ(newest[0].holder.faces, 2);
    EXPECT_THAT(library_->faces(ContainerId{1}), SizeIs(4));
    std::filesystem::remove(root_ + "/2.ttf");
    scan();
    EXPECT_THAT(shown(), ElementsAre(Pair(1, "3.ttf 4.ttf ")));
    std::filesystem::remove(root_ + "/3.ttf");
    scan();
    EXPECT_THAT(shown(), ElementsAre(Pair(1, "1.ttf 4.ttf ")));
}

TEST_F(AnIndex, TellsWhichFilesAreOneFont) {
    add("a/x.ttf", plainFace("X", "Regular"), "same bytes");
    add("b/x.ttf", plainFace("X", "Regular"), "same bytes");
    add("c/x.ttf", plainFace("X", "Regular"), "other byte");
    std::filesystem::create_directory(root_ + "/d");
    std::filesystem::create_hard_link(root_ + "/a/x.ttf", root_ + "/d/x.ttf");
    faces_[root_ + "/d/x.ttf"] = plainFace("X", "Regular");
    scan();
    goBackTo(3); // which did not know copies
    const auto before = shown();
    const auto isNew = [&] {
        std::vector<bool> result;
        MetFiles met;
        for (const FaceMatch& face : library_->findByPostScriptKey("X-Regular")) {
            result.push_back(met.isNew(face));
        }
        return result;
    };
    EXPECT_THAT(isNew(), ElementsAre(true, true, true, false)) << "links are known at any time";
    EXPECT_TRUE(library_->isScanOwed());
    EXPECT_EQ(scan().read, 4U) << "faces may be others as they are read now";
    EXPECT_THAT(isNew(), ElementsAre(true, false, true, false));
    EXPECT_EQ(shown(), before);
    EXPECT_EQ(scan().read, 0U);

    // Files that differ beyond what is summed up of all.
    add("e/x.ttf", plainFace("X", "Regular"), std::string(100'000, 'x') + "1");
    add("f/x.ttf", plainFace("X", "Regular"), std::string(100'000, 'x') + "2");
    add("g/x.ttf", plainFace("X", "Regular"), std::string(100'000, 'x') + "1");
    const auto end = [](UpdateStep step, std::size_t /*done*/, std::size_t /*total*/) {
        if (step == UpdateStep::Read) {
            throw Error("ended");
        }
    };
    EXPECT_THROW(scan(end), Error);
    EXPECT_TRUE(scan().changed()) << "there is something to be told still";
    EXPECT_FALSE(scan().changed());
    EXPECT_THAT(isNew(), ElementsAre(true, false, true, false, true, true, false));
    const auto copies = library_->duplicates();
    ASSERT_THAT(copies, SizeIs(2));
    EXPECT_THAT(copies[0], SizeIs(2));
    EXPECT_EQ(copies[0][1].path, root_ + "/g/x.ttf");
    EXPECT_THAT(copies[1], SizeIs(2));
}

TEST_F(AnIndex, KeepsWhatIsAwayAndDoesNotOfferIt) {
    add("disk/x.ttf", plainFace("X", "Regular"));
    add("disk/deep/y.ttf", plainFace("Y", "Regular"));
    root_ += "/disk";
    scan();
    const auto before = shown();
    const std::string elsewhere = root_ + "-elsewhere";
    std::filesystem::rename(root_, elsewhere);

    const UpdateReport gone = scan();
    EXPECT_EQ(gone.away, 2U);
    EXPECT_EQ(gone.removed, 0U);
    EXPECT_TRUE(gone.changed());
    EXPECT_THAT(gone.problems, ElementsAre(HasSubstr(root_ + ": the folder cannot be read")));
    EXPECT_THAT(library_->findByPostScriptKey("X-Regular"), IsEmpty());
    EXPECT_TRUE(library_->container(ContainerId{1})->away);
    for (const char* name : {"X-Regular", "x", "X-*", "[xz]"}) {
        EXPECT_THAT(library_->findContainersLike(name), ElementsAre(ContainerId{1})) << name;
    }
    EXPECT_EQ(library_->counts(root_).away, 2);
    EXPECT_THAT(found({}), SizeIs(2));
    FaceQuery here;
    here.away = false;
    EXPECT_THAT(found(here), IsEmpty());
    const UpdateReport still = scan();
    EXPECT_FALSE(still.changed());
    EXPECT_THAT(still.problems, IsEmpty());

    std::filesystem::rename(elsewhere, root_);
    const UpdateReport back = scan();
    EXPECT_EQ(back.unchanged, 2U);
    EXPECT_EQ(back.read, 0U);
    EXPECT_TRUE(back.changed());
    EXPECT_THAT(library_->findByPostScriptKey("X-Regular"), SizeIs(1));
    EXPECT_EQ(shown(), before);

    std::filesystem::remove(root_ + "/x.ttf");
    EXPECT_EQ(scan().removed, 1U);
}

// In place of mounts: the index is told that folders were on other disks when they were scanned.
TEST_F(AnIndex, TakesAnEmptyFolderForAwayWhereADiskWas) {
    const struct {
        const char* otherDisk;
        const char* emptied;
        std::size_t away;
    } cases[] = {
        {"/usb*", "/usb", 1}, {"*", "", 2}, {"*", "/usb", 0}, {"/", "/usb", 0}, {"/", "", 0},
    };
    for (const auto& [otherDisk, emptied, away] : cases) {
        add("x.ttf", plainFace("X", "Regular"));
        add("usb/deep/y.ttf", plainFace("Y", "Regular"));
        std::filesystem::create_directory(root_ + "/usb-never");
        scan();
        Statement move(library_->database(), "UPDATE directory SET device = -1 WHERE path GLOB ?");
        move.bind(1, root_ + otherDisk).run();
        for (const auto& entry : std::filesystem::directory_iterator(root_ + emptied)) {
            std::filesystem::remove_all(entry.path());
        }
        for (const bool again : {false, true}) {
            const UpdateReport gone = scan();
            EXPECT_EQ(gone.away, away) << otherDisk << " " << emptied << again;
            EXPECT_EQ(gone.changed(), !again);
            EXPECT_EQ(gone.problems.size(), away > 0 && !again ? 1U : 0U);
            EXPECT_EQ(gone.unreadFolders.size(), away == 2 ? 1U : 0U);
        }
        sandbox_.write("usb/note.txt", "");
        EXPECT_EQ(scan().away, 0U) << "it is in use";
    }
}

TEST_F(AnIndex, LosesNothingOfAFolderThatCannotBeReadToItsEnd) {
    add("x.ttf", plainFace("X", "Regular"));
    add("y.ttf", plainFace("Y", "Regular"));
    add("deep/z.ttf", plainFace("Z", "Regular"));
    for (const char* entry : {"x.ttf", "y.ttf", "deep", "z.ttf"}) {
        scan();
        unreadableEntry = entry;
        const UpdateReport report = scan();
        unreadableEntry.clear();
        EXPECT_THAT(report.problems, ElementsAre(HasSubstr("annot be read"))) << entry;
        EXPECT_EQ(report.removed, 0U) << entry;
        EXPECT_THAT(found({}), SizeIs(3)) << entry;
    }
    EXPECT_TRUE(library_->container(ContainerId{3})->away) << "in a folder that has nothing else";
}

TEST_F(AnIndex, SaysWhatTheDesktopShowsAnyway) {
    add("fonts/own/x.ttf", plainFace("X", "Regular"));
    add("other/y.ttf", plainFace("Y", "Regular"));
    sandbox_.setFontconfig("<dir>" + root_ + "/fonts</dir>");
    EXPECT_THAT(scan().problems, ElementsAre(HasSubstr(root_ + "/fonts: the desktop shows")));
    EXPECT_THAT(scan().problems, IsEmpty());
    EXPECT_TRUE(library_->container(ContainerId{1})->shownByDesktop);
    EXPECT_FALSE(library_->container(ContainerId{2})->shownByDesktop);
    sandbox_.setFontconfig("");
    EXPECT_TRUE(scan().moved);
    EXPECT_FALSE(library_->container(ContainerId{1})->shownByDesktop);
}

} // namespace
