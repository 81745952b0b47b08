// SPDX-License-Identifier: MIT
// What the index holds of faces, how it tells containers apart, and what it does with files that
// are away or twice there. The files are empty: what each holds is told by its name.
#include "manager/library/samefile.h"
#include "manager/library/schema.h"
#include "manager/library/update.h"
#include "tests/manager/fullface.h"
#include "tests/manager/sandbox.h"

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

faces::Face plainFace(const std::string& family, const std::string& style,
                      faces::Technology technology = faces::Technology::TrueType,
                      std::uint32_t revision = 1) {
    faces::Face face;
    face.technology = technology;
    face.postScriptName = family + "-" + style;
    face.fullNames = {family + " " + style};
    face.names = {{family, style, "en"}};
    face.revision = revision;
    return face;
}

class AnIndex : public testing::Test {
protected:
    void add(const std::string& path, const faces::Face& face, const std::string& bytes = "") {
        const std::string full = sandbox_.write(path, bytes);
        faces_[full] = face;
    }
    UpdateReport scan(const UpdateProgress& progress = {}) {
        return updateLibrary(*library_, std::vector{root_}, FontReaderLimits{}, progress,
                             [this](const std::string& path) {
                                 return faces::FontFileContents{false, {faces_.at(path)}};
                             });
    }
    /// PostScript names by the numbers of their containers, with what is activated of each.
    std::map<std::int32_t, std::string> shown() {
        std::map<std::int32_t, std::string> result;
        for (const Container& container : library_->containers()) {
            std::string& names = result[static_cast<std::int32_t>(container.id)];
            for (const LibraryFile& file : library_->files(container.id)) {
                names += nameOf(file.path) + " ";
            }
        }
        return result;
    }
    /// Makes the index one of schema 4 or 3 and opens it again.
    void goBackTo(int schema) {
        library_->database().run(
            ("DROP INDEX face_order; DROP INDEX file_whole; ALTER TABLE face DROP COLUMN names; "
             "ALTER TABLE face DROP COLUMN family_key; ALTER TABLE container DROP COLUMN faces; "
             "ALTER TABLE container DROP COLUMN files; " +
             std::string(schema == 3 ? "ALTER TABLE file DROP COLUMN whole; " : "") +
             "PRAGMA user_version=" + std::to_string(schema))
                .c_str());
        library_.reset();
        library_ = openLibrary(sandbox_.places(), {}, [](const std::string&) {});
    }
    std::vector<std::string> found(const FaceQuery& query) {
        std::vector<std::string> names;
        for (const FaceMatch& face : library_->search(query).faces) {
            names.push_back(face.postScriptName);
        }
        return names;
    }

    Sandbox sandbox_;
    std::string root_ = sandbox_.library();
    std::map<std::string, faces::Face> faces_;
    std::unique_ptr<Library> library_ = std::make_unique<Library>(sandbox_.places());
};

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
    const auto end = [](std::size_t /*done*/, std::size_t /*total*/) { throw Error("ended"); };
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

TEST_F(AnIndex, FindsFacesByEachCondition) {
    add("full.otf", fullFace("Full"));
    faces::Face sans = plainFace("Plain Sans", "Light Italic");
    sans.style = {300, 75, faces::Slant::Italic};
    sans.classification = faces::Classification::SansSerif;
    sans.foundry = "Acme";
    sans.coverage = {{0x41, 0x5A}};
    sans.languages = {"de"};
    sans.embedding = 8;
    add("sans.ttf", sans);
    scan();
    using Query = FaceQuery;
    const auto full = std::vector<std::string>{"Full"};
    const auto light = std::vector<std::string>{"Plain Sans-Light Italic"};
    const std::vector<std::string> none;
    EXPECT_THAT(library_->tags(SharedKind::Axes), ElementsAre("GRAD", "wght"));
    EXPECT_THAT(library_->tags(SharedKind::Languages), ElementsAre("de", "pt-br", "ru"));
    const struct {
        const char* name;
        void (*set)(Query&);
        const std::vector<std::string>& found;
    } cases[] = {
        {"words", [](Query& q) { q.text = "LIGHT plain"; }, light},
        {"word of a PostScript name", [](Query& q) { q.text = "FUL"; }, full},
        {"words of two", [](Query& q) { q.text = "light full"; }, none},
        {"weight",
         [](Query& q) {
             q.weight = {{500, 600}};
         },
         full},
        {"weight of an axis",
         [](Query& q) {
             q.weight = {{800, 2000}};
         },
         full},
        {"width",
         [](Query& q) {
             q.width = {{70, 80}};
         },
         light},
        {"slants", [](Query& q) { q.slants = {faces::Slant::Italic}; }, light},
        {"technologies", [](Query& q) { q.technologies = {faces::Technology::OpenTypePostScript}; },
         full},
        {"classes", [](Query& q) { q.classifications = {faces::Classification::SansSerif}; },
         light},
        {"monospaced", [](Query& q) { q.monospaced = true; }, full},
        {"symbolic", [](Query& q) { q.symbolic = true; }, none},
        {"colour", [](Query& q) { q.colour = false; }, light},
        {"variable", [](Query& q) { q.variable = true; }, full},
        {"version", [](Query& q) { q.version = "2.001"; }, full},
        {"foundry", [](Query& q) { q.foundry = "CM"; }, light},
        {"licence", [](Query& q) { q.licence = "EXAMPLE.org"; }, full},
        {"embeddable", [](Query& q) { q.embeddable = true; }, light},
        {"scripts",
         [](Query& q) {
             q.scripts = {"Latn", "Cyrl"};
         },
         full},
        {"languages", [](Query& q) { q.languages = {"pt"}; }, none},
        {"features", [](Query& q) { q.features = {"smcp"}; }, full},
        {"axes", [](Query& q) { q.axes = {"GRAD"}; }, full},
        {"characters", [](Query& q) { q.characters = U"a~"; }, full},
        {"no characters", [](Query& q) { q.characters = U"[A"; }, full},
        {"folder", [](Query& q) { q.folder = "/nowhere"; }, none},
        {"page", [](Query& q) { q.offset = 1; }, light},
    };
    for (const char* of : {"", " of an index of before"}) {
        for (const auto& [name, set, expected] : cases) {
            Query query;
            set(query);
            EXPECT_EQ(found(query), expected) << name << of;
        }
        goBackTo(4);
    }
}

TEST_F(AnIndex, GivesPagesOfFacesThatAreCalledAndLookAlike) {
    for (const char* folder : {"c", "a", "b"}) {
        add(std::string(folder) + "/x.ttf", plainFace("X", "Regular"));
        scan();
    }
    faces::Face bold = plainFace("X", "Bold");
    bold.style.weight = 700;
    add("a/bold.ttf", bold);
    add("z/a.ttf", plainFace("A", "Regular"));
    scan();
    const auto places = [&](std::size_t offset, std::size_t limit) {
        FaceQuery query;
        query.offset = offset;
        query.limit = limit;
        std::string text;
        const FoundFaces page = library_->search(query);
        for (const FaceMatch& face : page.faces) {
            text += face.folder.substr(root_.size() + 1) + "/" + face.fileName + " ";
        }
        return text + std::to_string(page.total);
    };
    EXPECT_EQ(places(0, 100), "z/a.ttf a/x.ttf b/x.ttf c/x.ttf a/bold.ttf 5");
    EXPECT_EQ(places(2, 2), "b/x.ttf c/x.ttf 5");
    EXPECT_EQ(places(1, 1), "a/x.ttf 5");
    EXPECT_EQ(places(4, SIZE_MAX), "a/bold.ttf 5");
    EXPECT_EQ(places(5, 1), "5");
    EXPECT_EQ(places(0, 0), "5");
}

TEST_F(AnIndex, CountsFilesAndFacesAsTheyComeAndGo) {
    const auto counts = [&] {
        const LibraryCounts now = library_->counts("/");
        return std::vector{now.containers, now.files, now.faces};
    };
    add("1.ttf", plainFace("X", "Regular", faces::Technology::TrueType, 1));
    add("2.ttf", plainFace("X", "Regular", faces::Technology::TrueType, 2));
    add("3.ttf", plainFace("X", "Bold"));
    add("y.ttf", plainFace("Y", "Bold"));
    scan();
    EXPECT_THAT(counts(), ElementsAre(2, 4, 3));
    goBackTo(4);
    EXPECT_THAT(counts(), ElementsAre(2, 4, 3));
    std::filesystem::remove(root_ + "/y.ttf");
    add("3.ttf", plainFace("Y", "Bold"), "another"); // goes over to the other container
    scan();
    EXPECT_THAT(counts(), ElementsAre(2, 3, 2));
    std::filesystem::remove(root_ + "/3.ttf");
    std::filesystem::remove(root_ + "/2.ttf");
    scan();
    EXPECT_THAT(counts(), ElementsAre(1, 1, 1));
    EXPECT_FALSE(library_->container(ContainerId{2}));
    EXPECT_EQ(library_->container(ContainerId{1})->faces, 1);
}

// The tables of schema 2, as far as they are taken over.
constexpr const char* schema2 = R"sql(
CREATE TABLE directory (path TEXT PRIMARY KEY) WITHOUT ROWID;
CREATE TABLE container (id INTEGER PRIMARY KEY AUTOINCREMENT, folder TEXT NOT NULL,
    file TEXT NOT NULL, family_key TEXT NOT NULL, name TEXT NOT NULL,
    UNIQUE (folder, file, family_key));
CREATE TABLE file (id INTEGER PRIMARY KEY, path TEXT NOT NULL UNIQUE, size INTEGER, changed INTEGER,
    inode INTEGER, container INTEGER REFERENCES container (id), problem TEXT);
CREATE TABLE face (id INTEGER PRIMARY KEY, file INTEGER NOT NULL REFERENCES file (id)
    ON DELETE CASCADE, container INTEGER NOT NULL REFERENCES container (id), number INTEGER,
    type INTEGER NOT NULL, postscript_name TEXT, family TEXT, style TEXT);
CREATE TABLE name (family_key TEXT, style_key TEXT, face INTEGER NOT NULL REFERENCES face (id)
    ON DELETE CASCADE, PRIMARY KEY (family_key, style_key, face)) WITHOUT ROWID;
CREATE TABLE walk_problem (problem TEXT PRIMARY KEY) WITHOUT ROWID;
CREATE TABLE state (scan_owed INTEGER NOT NULL);
INSERT INTO state (scan_owed) VALUES (0);
INSERT INTO container VALUES (3, '@', '', 'x', 'X'), (5, '@', '', 'y', 'Y'), (6, '@', '', 'z', 'Z'),
    (8, '@', 'c.ttc', '', 'c.ttc'), (9, '@', '', 'gone', 'Gone');
UPDATE sqlite_sequence SET seq = 20;
INSERT INTO file VALUES (1, '@/x', 1, 1, 1, 3, NULL);
INSERT INTO face (file, container, type) VALUES
    (1, 3, 0), (1, 3, 2), (1, 3, 0), (1, 5, 1), (1, 5, 3), (1, 5, 2), (1, 6, 0), (1, 6, 2);
INSERT INTO name VALUES ('x', 'regular', 1);
PRAGMA application_id=1196185926;
PRAGMA user_version=2;
)sql";

TEST_F(AnIndex, OfSchema2IsReplacedAndKeepsItsNumbers) {
    const std::string path = sandbox_.places().database();
    library_.reset();
    std::filesystem::remove(path);
    std::string sql = schema2;
    for (std::size_t at = 0; (at = sql.find('@', at)) != std::string::npos;) {
        sql.replace(at, 1, root_);
    }
    Database(path).run(sql.c_str());
    library_ = openLibrary(sandbox_.places(), {}, [](const std::string&) {});
    EXPECT_TRUE(library_->isScanOwed());
    const std::vector<std::pair<const char*, faces::Technology>> formats = {
        {".otf", faces::Technology::OpenTypePostScript},
        {".pfb", faces::Technology::Type1},
        {".ttf", faces::Technology::TrueType}};
    for (const char* family : {"X", "Y", "Z"}) {
        for (const auto& [ending, technology] : formats) {
            add(family + std::string(ending), plainFace(family, "Regular", technology));
        }
    }
    add("gone.ttf", plainFace("Gone", "Regular"));
    scan();
    // The most faces decide; X were Type 1, Y TrueType, of Z there were as many of two kinds.
    EXPECT_THAT(shown(), testing::IsSupersetOf({Pair(3, "X.pfb "), Pair(5, "Y.ttf "),
                                                Pair(6, "Z.otf "), Pair(9, "gone.ttf ")}));
    EXPECT_THAT(shown(), SizeIs(10));
    EXPECT_EQ(shown().upper_bound(9)->first, 21) << "no number that was given is given again";
}

} // namespace
