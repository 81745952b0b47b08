// SPDX-License-Identifier: MIT
// The rows of the list: what they say, and by which face they are shown.
#include "manager/library/update.h"
#include "manager/qt/facemodel.h"
#include "manager/qt/setchoice.h"
#include "manager/view/texts.h"
#include "tests/manager/sandbox.h"

#include <QMimeData>

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace manager;
using testing::ElementsAre;

namespace managertest {

namespace {

class TheRows : public testing::Test {
protected:
    void add(const std::string& path, const std::string& family, const std::string& style,
             const faces::Style& look = {}, bool isVariable = false) {
        faces::Face face;
        face.postScriptName = family + "-" + style;
        face.names = {{family, style, "en"}};
        face.style = look;
        if (isVariable) {
            face.axes = {{"wght", "Weight", 100, 400, 900}};
        }
        std::vector<faces::Face>& file = faces_[sandbox_.write(path, "")];
        file.push_back(face);
        if (isVariable) {
            file.push_back(face); // its first named instance
            file.back().index = 1U << 16U;
        }
    }
    void scan() {
        std::vector<std::string> folders;
        for (const char* const name : {"/one", "/two", "/away"}) {
            folders.push_back(sandbox_.library() + name);
        }
        updateLibrary(library_, folders, FontReaderLimits{}, {}, [this](const std::string& path) {
            return faces::FontFileContents{false, faces_.at(path)};
        });
    }
    /// Shows the library with the containers of these folders active.
    void show(const std::vector<std::string>& active, const std::vector<AskedFont>& drawing = {},
              const std::optional<std::string>& only = {}) {
        std::vector<ActiveContainer> containers;
        for (const Container& container : library_.containers()) {
            const std::string folder = std::filesystem::path(container.folder).filename();
            if (std::find(active.begin(), active.end(), folder) != active.end()) {
                std::vector<std::string> files;
                for (const LibraryFile& file : library_.files(container.id)) {
                    files.push_back(nameOf(file.path));
                }
                std::sort(files.begin(), files.end());
                if (only) {
                    files = {*only};
                }
                containers.push_back({container.id,
                                      container.name,
                                      std::move(files),
                                      {Reason::byHand(), Reason::untilLogout()}});
            }
        }
        FaceTable table(library_);
        FaceStates states(table, containers);
        ListFilter filter;
        filter.isDrawing = !drawing.empty();
        model_.show(std::make_shared<const LibraryView>(
                        LibraryView{std::move(table), std::move(states), drawing, {}}),
                    std::move(filter));
    }
    /// What a screen reader hears of the families, and of the faces of the first.
    std::vector<std::string> heard(const QModelIndex& parent = {}) {
        std::vector<std::string> rows;
        for (int row = 0; row < model_.rowCount(parent); ++row) {
            rows.push_back(
                model_.index(row, 0, parent).data(Qt::AccessibleTextRole).toString().toStdString());
        }
        return rows;
    }
    QModelIndex first() { return model_.index(0, 0); }

    Sandbox sandbox_;
    testsupport::Variable runtime_{"XDG_RUNTIME_DIR", sandbox_.root()}; // ends with the session
    std::map<std::string, std::vector<faces::Face>> faces_;
    Library library_{sandbox_.places()};
    FaceModel model_;
};

TEST_F(TheRows, SayWhatIsActiveAndWhyOfEachAndOfAllTogether) {
    add("one/a.ttf", "Alpha", "Regular");
    add("two/a.ttf", "Alpha", "Regular");
    add("away/a.ttf", "Alpha", "Light");
    scan();
    std::filesystem::rename(sandbox_.library() + "/away", sandbox_.root() + "/elsewhere");
    scan();
    const std::string why = ": by hand, until logout";
    const struct {
        std::vector<std::string> active;
        std::string family;
        std::vector<std::string> faces; // in no order
    } cases[] = {
        {{}, "differs by style", {"away", "inactive", "inactive"}},
        {{"one"}, "1 active", {"away", "active" + why, "inactive"}},
        {{"one", "two"}, "2 active", {"away", "conflicting" + why, "conflicting" + why}},
        {{"one", "away"}, "2 active", {"active (away)" + why, "active" + why, "inactive"}},
    };
    for (const auto& [active, family, faces] : cases) {
        show(active);
        EXPECT_THAT(heard(), ElementsAre("Alpha, 3 styles, " + family));
        std::vector<std::string> states;
        for (const std::string& row : heard(first())) {
            for (const char* const begin : {"Light, TrueType, ", "Regular, TrueType, "}) {
                if (row.starts_with(begin)) {
                    states.push_back(row.substr(std::string_view(begin).size()));
                    break;
                }
            }
        }
        EXPECT_THAT(states, testing::UnorderedElementsAreArray(faces));
    }
    EXPECT_THAT(first().data(Qt::ToolTipRole).toString().toStdString(),
                testing::HasSubstr("2 active"));
    EXPECT_TRUE(model_.flags(first()).testFlag(Qt::ItemIsDragEnabled));
}

TEST_F(TheRows, TellAVariableFontFromItsInstanceOfTheSameName) {
    add("one/a.ttf", "Alpha", "Regular", {}, true);
    scan();
    show({});
    EXPECT_THAT(heard(first()), ElementsAre("Regular, TrueType, variable, inactive",
                                            "Regular, TrueType, named instance, inactive"));
}

TEST_F(TheRows, AreShownByTheFaceThatIsNearestToTheUsual) {
    add("one/condensed.ttf", "Alpha", "Condensed", {400, 75, faces::Slant::Upright});
    add("one/italic.ttf", "Alpha", "Italic", {400, 100, faces::Slant::Italic});
    add("one/medium.ttf", "Alpha", "Medium", {500, 100, faces::Slant::Upright});
    scan();
    show({});
    const auto sample = model_.row(first()).sample;
    ASSERT_TRUE(sample);
    const FaceTable& table = model_.listing().view().table;
    EXPECT_EQ(table.faces()[*sample].style, "Medium");
    // That it cannot be drawn is said of both, until the library is read anew.
    model_.setDamaged(*sample, true);
    EXPECT_THAT(heard(), ElementsAre("Alpha, 3 styles, cannot be drawn, inactive"));
    EXPECT_THAT(heard(first()), testing::Contains("Medium, TrueType, cannot be drawn, inactive"));
    show({});
    EXPECT_THAT(heard(), ElementsAre("Alpha, 3 styles, inactive"));
}

TEST_F(TheRows, AreSwitchedAsFarAsTheyCanBe) {
    add("one/a.ttf", "Alpha", "Regular");
    add("one/b.ttf", "Alpha", "Bold", {700, 100, faces::Slant::Upright});
    add("away/a.ttf", "Zeta", "Regular");
    scan();
    std::filesystem::rename(sandbox_.library() + "/away", sandbox_.root() + "/elsewhere");
    scan();
    show({"one"}, {}, "a.ttf");
    const QModelIndex regular = model_.index(0, 0, first());
    const QModelIndex bold = model_.index(1, 0, first());
    const QModelIndex away = model_.index(1, 0);
    const auto container =
        static_cast<std::int32_t>(model_.listing().view().table.faces().front().container);
    using Files = std::map<std::int32_t, std::set<std::string>>;
    const struct {
        const char* what;
        QModelIndexList rows;
        bool on;
        std::set<std::int32_t> containers;
        Files files;
    } cases[] = {
        {"a face", {regular, bold}, true, {}, {{container, {"b.ttf"}}}},
        {"another", {regular, bold}, false, {}, {{container, {"a.ttf"}}}},
        {"all of a family", {first()}, true, {container}, {}},
        {"and its face", {bold, first()}, true, {container}, {}},
        {"what is away", {away, model_.index(0, 0, away)}, true, {}, {}},
        {"nor off", {away}, false, {}, {}},
    };
    for (const auto& [what, rows, on, containers, files] : cases) {
        const SetChoice choice = choiceOf(model_, rows, on);
        EXPECT_EQ(choice.containers, containers) << what;
        EXPECT_EQ(choice.files, files) << what;
        EXPECT_EQ(choice.isEmpty(), containers.empty() && files.empty()) << what;
    }
    show({"one"}, {}, "former.ttf"); // which a program keeps
    EXPECT_EQ(choiceOf(model_, {first()}, false).containers, std::set{container});
    EXPECT_TRUE(choiceOf(model_, {model_.index(0, 0, first())}, false).isEmpty());
}

TEST_F(TheRows, SayOfADrawingsFontWhatTheDesktopShowsItself) {
    show({}, {{"Gamma", true, {}}, {"Delta", false, {}}});
    EXPECT_THAT(heard(), ElementsAre("Gamma, 0 candidates, shown by the desktop",
                                     "Delta, 0 candidates, not in the library"));
}

} // namespace

} // namespace managertest
