// SPDX-License-Identifier: MIT
// What is found in the index, what is counted there, and indexes of older schemas.
#include "manager/library/database.h"
#include "tests/manager/indexfixture.h"
#include "tests/support/fontmaker.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <numeric>

using namespace manager;
using namespace managertest;
using testing::ElementsAre;
using testing::Pair;
using testing::SizeIs;

namespace {

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
        {"pattern", [](Query& q) { q.text = "*pla*light*"; }, light},
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
        {"characters in any order, again", [](Query& q) { q.characters = U"b~aab"; }, full},
        {"thousands of characters",
         [](Query& q) {
             q.characters.resize(5000);
             std::iota(q.characters.begin(), q.characters.end(), U'a');
         },
         none},
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

TEST_F(AnIndex, FindsInstancesOfAVariableFontOrTheFont) {
    using Recipe = testsupport::FontRecipe;
    for (const auto& [file, recipe] :
         {std::pair{"v.ttf", Recipe{.family = "V", .instances = {"Medium", "Demi", "Bold"}}},
          std::pair{"plain.ttf", Recipe{.family = "Plain", .weight = 700}}}) {
        sandbox_.write(file, testsupport::makeFont(recipe));
    }
    sandbox_.write("two.ttc", testsupport::makeCollection(
                                  {Recipe{.family = "First", .instances = {"Medium", "Demi"}},
                                   Recipe{.family = "Second", .instances = {"Light"}}}));
    updateLibrary(*library_, std::vector{root_}, FontReaderLimits{});
    const struct {
        Range weights;
        std::vector<std::string> found;
    } cases[] = {
        {{600, 700}, {"First Demi", "Plain Regular", "Second Regular", "V Bold", "V Demi"}},
        {{350, 450}, {"First Regular", "Second Regular", "V Regular"}},
        {{850, 900}, {"First Regular", "Second Regular", "V Regular"}},
        {{901, 950}, {}},
    };
    for (const auto& [weights, expected] : cases) {
        FaceQuery query;
        query.weight = weights;
        std::vector<std::string> names;
        for (const FaceMatch& face : library_->search(query).faces) {
            names.push_back(face.familyName + " " + face.styleName);
        }
        EXPECT_THAT(names, testing::UnorderedElementsAreArray(expected)) << weights.from;
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
