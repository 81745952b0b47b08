// SPDX-License-Identifier: MIT
// What the window's list is made of: the table of faces, their states, and what of them is shown.
// The files are empty: what each holds is told by its name.
#include "manager/library/update.h"
#include "manager/view/facecopies.h"
#include "manager/view/facefacts.h"
#include "manager/view/facefilters.h"
#include "manager/view/facelisting.h"
#include "tests/manager/sandbox.h"

#include <array>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>

using namespace manager;
using managertest::Sandbox;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::shared_ptr<const std::vector<FaceId>> ids(std::vector<FaceId> list) {
    return std::make_shared<const std::vector<FaceId>>(std::move(list));
}

class AList : public testing::Test {
protected:
    void add(const std::string& path, const std::string& family, const std::string& style,
             double weight = 400, const std::vector<faces::Name>& more = {}) {
        faces::Face face;
        face.postScriptName = family.substr(0, family.find(' ')) + "-" + style;
        face.fullNames = {family + " " + style};
        face.names = {{family, style, "en"}};
        face.names.insert(face.names.end(), more.begin(), more.end());
        face.style.weight = weight;
        faces_[sandbox_.write(path, "")] = face;
    }
    void scan(std::vector<std::string> folders = {}) {
        if (folders.empty()) {
            folders.push_back(sandbox_.library());
        }
        updateLibrary(*library_, folders, FontReaderLimits{}, {}, [this](const std::string& path) {
            return faces::FontFileContents{false, {faces_.at(path)}};
        });
    }
    [[nodiscard]] ContainerId containerOf(const std::string& file) {
        const FaceTable table(*library_);
        for (const ListedFace& face : table.faces()) {
            if (face.file == file) {
                return face.container;
            }
        }
        return {};
    }
    void read(const std::vector<ActiveContainer>& active = {}) {
        FaceTable table(*library_);
        FaceStates states(table, active);
        view_ =
            std::make_shared<const LibraryView>(LibraryView{std::move(table), std::move(states)});
    }
    /// "FAMILY: STYLE STYLE" of each family.
    std::vector<std::string> shown(ListFilter filter = {}) {
        listing_.show(view_, std::move(filter));
        std::vector<std::string> lines;
        for (const ShownFamily& family : listing_.families()) {
            std::string line = view_->table.families()[family.family].name + ":";
            for (std::uint32_t i = 0; i < family.count; ++i) {
                line += " " + view_->table.faces()[listing_.faces()[family.first + i]].style;
            }
            lines.push_back(line);
        }
        return lines;
    }
    FaceState stateOf(const std::string& file) {
        const auto faces = view_->table.faces();
        for (FaceRow row = 0; row < faces.size(); ++row) {
            if (faces[row].file == file) {
                return view_->states.of(row);
            }
        }
        ADD_FAILURE() << file << " is not listed";
        return {};
    }

    Sandbox sandbox_;
    std::map<std::string, faces::Face> faces_;
    std::unique_ptr<Library> library_ = std::make_unique<Library>(sandbox_.places());
    std::shared_ptr<const LibraryView> view_;
    FaceListing listing_;
};

TEST_F(AList, HasFamiliesByNameAndTheirFacesByWeight) {
    add("b.ttf", "Beta", "Regular");
    add("a3.ttf", "alpha Two", "Black", 900);
    add("a1.ttf", "Alpha Two", "Thin", 100);
    add("a2.ttf", "Alpha  two", "Regular", 400); // spelt otherwise, the same family
    scan();
    read();
    EXPECT_THAT(shown(), ElementsAre("Alpha Two: Thin Regular Black", "Beta: Regular"));
    const FaceTable& table = view_->table;
    for (FaceRow row = 0; row < table.faces().size(); ++row) {
        EXPECT_EQ(table.rowOf(table.faces()[row].id), row);
    }
    EXPECT_EQ(table.rowOf(FaceId{12345}), std::nullopt);
    EXPECT_EQ(table.pathOf(table.faces()[0]), sandbox_.library() + "/a1.ttf");
}

TEST_F(AList, FindsEachWordInSomeNameWhateverItsCase) {
    add("1.ttf", "Nanum Gothic", "ExtraBold", 800, {{"나눔고딕", "ExtraBold", "ko"}});
    add("2.ttf", "Nanum Myeongjo", "Regular");
    add("3.ttf", "Gothic Extras", "Bold", 700);
    add("4.ttf", "Ärger", "Regular");
    scan();
    read();
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases{
        {"nanum", {"Nanum Gothic: ExtraBold", "Nanum Myeongjo: Regular"}},
        {"gothic EXTRA", {"Gothic Extras: Bold", "Nanum Gothic: ExtraBold"}},
        {"gothic extra nanum", {"Nanum Gothic: ExtraBold"}},
        {"나눔", {"Nanum Gothic: ExtraBold"}},
        {"ÄRG", {"Ärger: Regular"}},
        {"gothic-bold", {"Gothic Extras: Bold"}}, // the PostScript name
        {"  ",
         {"Gothic Extras: Bold", "Nanum Gothic: ExtraBold", "Nanum Myeongjo: Regular",
          "Ärger: Regular"}},
        {"boldregular", {}}, // names of two faces, or of one, are not run together
        {"extrabold나눔고딕", {}},
    };
    for (const auto& [text, families] : cases) {
        EXPECT_EQ(shown({.text = text}), families) << text;
    }
}

TEST_F(AList, FollowsWhatIsTypedAndTakenBack) {
    add("1.ttf", "Lato", "Regular");
    add("2.ttf", "Latin", "Regular");
    add("3.ttf", "Plat", "Regular");
    scan();
    read();
    for (const auto& [text, count] : std::vector<std::pair<std::string, std::size_t>>{{"l", 3},
                                                                                      {"la", 3},
                                                                                      {"lat", 3},
                                                                                      {"lati", 1},
                                                                                      {"lat", 3},
                                                                                      {"lato x", 0},
                                                                                      {"lato", 1},
                                                                                      {"lato p", 0},
                                                                                      {"", 3},
                                                                                      {"pl", 1}}) {
        listing_.show(view_, {.text = text});
        EXPECT_EQ(listing_.families().size(), count) << text;
    }
    // Another view is looked through anew.
    listing_.show(view_, {.text = "plat"});
    add("4.ttf", "Platin", "Regular");
    scan();
    read();
    EXPECT_THAT(shown({.text = "plat"}), ElementsAre("Plat: Regular", "Platin: Regular"));
}

TEST_F(AList, TellsWhatCanBeSeenAndWhatStandsInItsWay) {
    add("one/a.ttf", "Alpha", "Regular");
    add("two/a.ttf", "Alpha", "Regular");
    add("two/b.ttf", "Beta", "Bold");
    add("away/c.ttf", "Gamma", "Regular");
    scan({sandbox_.library() + "/one", sandbox_.library() + "/two", sandbox_.library() + "/away"});
    std::filesystem::rename(sandbox_.library() + "/away", sandbox_.root() + "/elsewhere");
    scan({sandbox_.library() + "/one", sandbox_.library() + "/two", sandbox_.library() + "/away"});
    const auto containers = library_->containers();
    const auto numberOf = [&](const std::string& name, const std::string& folder) {
        for (const Container& container : containers) {
            if (container.name == name && container.folder == sandbox_.library() + folder) {
                return container.id;
            }
        }
        return ContainerId{};
    };
    const Reason reason = Reason::byHand();
    const ActiveContainer first{numberOf("Alpha", "/one"), "Alpha", {"a.ttf"}, {reason}};
    const ActiveContainer second{numberOf("Alpha", "/two"), "Alpha", {"a.ttf"}, {reason}};

    read({first});
    EXPECT_EQ(view_->states.count(FaceState::Active), 1U);
    EXPECT_EQ(stateOf("b.ttf"), FaceState::Inactive);
    EXPECT_EQ(stateOf("c.ttf"), FaceState::Away);
    EXPECT_THAT(view_->states.why(first.id), ElementsAre(reason));
    EXPECT_THAT(view_->states.why(second.id), IsEmpty());
    EXPECT_THAT(shown({.state = FaceState::Active}), ElementsAre("Alpha: Regular"));
    EXPECT_THAT(shown({.text = "be", .state = FaceState::Active}), IsEmpty());

    read({{first.id, "Alpha", {"other.ttf"}, {reason}}});
    EXPECT_EQ(stateOf("a.ttf"), FaceState::Inactive) << "as it is another file's set";
    EXPECT_EQ(view_->states.count(FaceState::Active), 0U);

    read({first, second});
    EXPECT_EQ(view_->states.count(FaceState::Conflicting), 2U);
    EXPECT_EQ(stateOf("a.ttf"), FaceState::Conflicting);

    // What was activated before its folder was unplugged is seen on, and is both.
    read({{numberOf("Gamma", "/away"), "Gamma", {"c.ttf"}, {reason}}});
    EXPECT_EQ(stateOf("c.ttf"), FaceState::Active);
    for (const FaceState state : {FaceState::Active, FaceState::Away}) {
        EXPECT_EQ(view_->states.count(state), 1U);
        EXPECT_THAT(shown({.state = state}), ElementsAre("Gamma: Regular"));
        EXPECT_THAT(shown({.alsoState = state}), ElementsAre("Gamma: Regular"));
    }
}

TEST_F(AList, KeepsToContainersAndToFacesThatASearchFound) {
    add("one/a.ttf", "Alpha", "Regular");
    add("two/a.ttf", "Alpha", "Bold", 700);
    add("two/b.ttf", "Beta", "Bold", 700);
    scan();
    read();
    const FaceTable& table = view_->table;
    const ListedFace& bold = table.faces()[1];
    ASSERT_EQ(bold.style, "Bold");
    EXPECT_THAT(shown({.among = std::vector{bold.container}}), ElementsAre("Alpha: Bold"));
    EXPECT_THAT(shown({.found = ids({table.faces()[2].id, bold.id, FaceId{99999}})}),
                ElementsAre("Alpha: Bold", "Beta: Bold"));
    EXPECT_THAT(shown({.among = std::vector<ContainerId>{}}), IsEmpty());
    EXPECT_THAT(shown({.found = ids({table.faces()[2].id})}), ElementsAre("Beta: Bold"));
    EXPECT_EQ(listing_.placeOf(table.faces()[2].family), 0U);
    EXPECT_EQ(listing_.placeOf(bold.family), std::nullopt);
}

TEST_F(AList, HasFontsOfADrawingWithoutCandidatesUnlessItIsNarrowed) {
    add("a.ttf", "Alpha", "Regular");
    scan();
    FaceTable table(*library_);
    FaceStates states(table, {});
    const AskedFont known{"Alpha-Black", false, {{table.faces()[0].id, {}, false, {}}}};
    const AskedFont unknown{"Gamma", false, {}};
    view_ = std::make_shared<const LibraryView>(
        LibraryView{std::move(table), std::move(states), {known, unknown}});
    const auto counts = [&](ListFilter filter) {
        filter.isDrawing = true;
        listing_.show(view_, std::move(filter));
        std::vector<unsigned> list;
        for (const ShownFamily& font : listing_.families()) {
            list.push_back(font.count);
        }
        return list;
    };
    EXPECT_THAT(counts({}), ElementsAre(1, 0));
    EXPECT_THAT(counts({.text = "alpha"}), ElementsAre(1));
    EXPECT_THAT(counts({.found = ids({})}), IsEmpty());
    EXPECT_THAT(counts({.alsoState = FaceState::Active}), IsEmpty());
    EXPECT_THAT(counts({.alsoState = FaceState::Inactive}), ElementsAre(1));
}

TEST_F(AList, IsNarrowedByWhatTheIndexKnows) {
    add("light.ttf", "Alpha", "Light", 300);
    {
        faces::Face& face = faces_.begin()->second;
        face.style = {300, 75, faces::Slant::Italic};
        face.technology = faces::Technology::OpenTypePostScript;
        face.classification = faces::Classification::SansSerif;
        face.scripts = {"Latn"};
        face.languages = {"de"};
        face.features = {"smcp"};
        face.foundry = "Foundry & Co";
        face.licence = "free";
        face.embedding = 0;
        face.axes = {{"wght", "Weight", 200, 300, 400}};
        face.coverage = {{U'ß', U'ß'}, {U'ö', U'ö'}};
        face.version = "2.001";
        face.monospaced = face.colour = true;
    }
    add("bold.ttf", "Beta", "Bold", 700);
    scan();
    read();
    const auto narrowed = [&](const FilterValues& values) {
        std::vector<FaceId> found;
        if (const auto query = queryOf(values)) {
            for (const auto& [id, key] : library_->familyKeys(*query)) {
                found.push_back(FaceId{id});
            }
            return shown({.alsoState = manager::stateOf(values), .found = ids(found)});
        }
        return shown({.alsoState = manager::stateOf(values)});
    };
    const std::map<FilterKind, std::pair<const char*, const char*>> ofAlphaOnly = {
        {FilterKind::Class, {"2", "0"}},          {FilterKind::Weight, {"1", "6"}},
        {FilterKind::Width, {"0", "2"}},          {FilterKind::Slant, {"1", "2"}},
        {FilterKind::Format, {"2", "0"}},         {FilterKind::Script, {"Latn", "Cyrl"}},
        {FilterKind::Language, {"de", "d"}},      {FilterKind::Feature, {"smcp", "liga"}},
        {FilterKind::Axis, {"wght", "wdth"}},     {FilterKind::Characters, {"öß\nö", "ßA"}},
        {FilterKind::Version, {"2.0", "0"}},      {FilterKind::Foundry, {"y & c", "x"}},
        {FilterKind::Licence, {"Free", "x"}},     {FilterKind::Variable, {"1", nullptr}},
        {FilterKind::Monospaced, {"1", nullptr}}, {FilterKind::Colour, {"1", nullptr}},
        {FilterKind::Embeddable, {"1", nullptr}}};
    for (const auto& [kind, values] : ofAlphaOnly) {
        EXPECT_THAT(narrowed({{kind, values.first}}), ElementsAre("Alpha: Light")) << titleOf(kind);
        if (values.second != nullptr) {
            EXPECT_THAT(narrowed({{kind, values.second}}), IsEmpty()) << titleOf(kind);
        }
    }
    EXPECT_THAT(narrowed({{FilterKind::State, "1"}, {FilterKind::Weight, "5"}}),
                ElementsAre("Beta: Bold"));
    EXPECT_THAT(narrowed({{FilterKind::State, "0"}, {FilterKind::Weight, "5"}}), IsEmpty());
}

TEST_F(AList, KnowsWhichContainersAreCopiesOfWhatIsKept) {
    for (const char* folder : {"all", "few", "more"}) {
        for (const char* style : {"Bold", "Regular"}) {
            if (folder != std::string("few") || style != std::string("Bold")) {
                add(std::string(folder) + "/" + style + ".ttf", "Alpha", style);
            }
        }
    }
    add("more/Light.ttf", "Alpha", "Light"); // and nowhere else
    scan();
    const FaceTable table(*library_);
    std::map<std::string, std::vector<FileCopy>> byName;
    std::map<std::string, ContainerId> containers;
    for (const ListedFace& face : table.faces()) {
        byName[face.file].push_back({table.pathOf(face), face.container});
        containers[std::filesystem::path(table.folderOf(face)).filename()] = face.container;
    }
    const FaceCopies copies(table, {byName["Bold.ttf"], byName["Regular.ttf"]});
    EXPECT_EQ(copies.faces().size(), 5U);
    const auto othersOf = [&](const std::string& folder) {
        return copies.othersOf(table, std::array{containers.at(folder)});
    };
    EXPECT_THAT(othersOf("more"),
                testing::UnorderedElementsAre(containers.at("all"), containers.at("few")));
    EXPECT_THAT(othersOf("all"), ElementsAre(containers.at("few"))) << "more has Light, too";
    EXPECT_THAT(othersOf("few"), IsEmpty());
}

TEST(EmbeddingFlags, AreToldByTheLeastRestrictiveOfThem) {
    const std::pair<std::optional<std::uint16_t>, const char*> cases[] = {
        {std::nullopt, "the font does not tell"},
        {0, "allowed, and it may be installed from there"},
        {0x2, "not without permission of the owner"},
        {0x6, "allowed to view and print documents only"},
        {0x10C, "allowed, also in documents that are edited; only as a whole"},
        {0x202, "not without permission of the owner; only its bitmaps"},
    };
    for (const auto& [flags, words] : cases) {
        EXPECT_EQ(manager::embeddingWords(flags), words);
    }
}

} // namespace
