// SPDX-License-Identifier: MIT
// Fonts collected for others: which licence files go with them, and what the list says.
#include "tests/manager/programfixture.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>

using namespace managertest;
using namespace testsupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

namespace fs = std::filesystem;

class ACollection : public TheProgram {
protected:
    void font(const std::string& path, const std::string& family, const std::string& licence = {},
              const std::string& style = "Regular") {
        std::vector<RawName> names = {{.id = 1, .bytes = wide(family)},
                                      {.id = 2, .bytes = wide(style)},
                                      {.id = 6, .bytes = wide(family + style)}};
        if (!licence.empty()) {
            names.push_back({.id = 13, .bytes = wide(licence)});
        }
        sandbox_.write(path, makeFont({.names = names}));
    }
    std::set<std::string> collected() {
        std::set<std::string> paths;
        for (const auto& entry : fs::recursive_directory_iterator(target_)) {
            if (!entry.is_directory()) {
                paths.insert(fs::relative(entry.path(), target_).string());
            }
        }
        return paths;
    }
    std::string list() { return readBytes(target_ + "/fonts.txt"); }

    std::string target_ = sandbox_.root() + "/to";
};

TEST_F(ACollection, HasTheLicenceFilesThatLieBesideItsFonts) {
    font("../above/ttf/lone.ttf", "Lone");
    sandbox_.write("../above/OFL.txt", "of others");
    font("a/one.ttf", "One");
    font("a/two.ttf", "One", {}, "Bold");
    font("b/Static/three.ttf", "Three");
    font("b/other/four.ttf", "Four");
    font("c/otf/five.ttf", "Five");
    for (const char* const name :
         {"a/OFL.txt", "a/Fontlog.TXT", "a/.license.txt", "a/one.png", "a/LICENSE/x", "b/OFL.txt",
          "OFL.txt", "c/README", "c/otf/UFL.txt"}) {
        sandbox_.write(name, name);
    }
    expectEach({{{"add", sandbox_.library(), sandbox_.root() + "/above/ttf"}, 0, "added"}});
    const auto told = nlohmann::json::parse(
        glyphora({"collect", "--json", "--to", target_, "One", "Three", "Four", "Five", "Lone"})
            .output);
    EXPECT_THAT(collected(),
                ElementsAre("Five/UFL.txt", "Five/five.ttf", "Four/four.ttf", "Lone/lone.ttf",
                            "One/Fontlog.TXT", "One/OFL.txt", "One/one.ttf", "One/two.ttf",
                            "Three/OFL.txt", "Three/three.ttf", "fonts.txt"));
    EXPECT_EQ(readBytes(target_ + "/One/OFL.txt"), "a/OFL.txt");
    EXPECT_EQ(readBytes(target_ + "/Three/OFL.txt"), "b/OFL.txt");
    EXPECT_THAT(told["problems"], testing::IsEmpty());
    EXPECT_THAT(told["collected"][0]["licenceFiles"],
                ElementsAre("One/Fontlog.TXT", "One/OFL.txt"));
    EXPECT_THAT(list(), HasSubstr("\n    Files on the licence: One/Fontlog.TXT, One/OFL.txt\n"));
}

TEST_F(ACollection, TellsWhichLicenceFilesAreNotInIt) {
    font("a/one.ttf", "One");
    const std::string longName = "LICENSE " + std::string(200, 'x');
    sandbox_.write("a/" + longName, "too long a path in the new folder");
    sandbox_.write("a/OFL", "");
    for (target_ = sandbox_.root(); target_.size() < 3900;) {
        target_ += "/" + std::string(50, 'd');
    }
    fs::create_directories(fs::path(target_).parent_path());
    for (int number = 0; number < 21; ++number) {
        const std::string design = std::to_string(number);
        font("b/" + design + ".ttf", "B" + design);
        sandbox_.write("b/license " + design + ".txt", "");
    }
    expectEach({{{"add", sandbox_.library()}, 0, "added"}});
    const Ending ending = glyphora({"collect", "--to", target_, "One", "B1", "B2"});
    EXPECT_EQ(ending.status, 3);
    EXPECT_THAT(ending.output,
                HasSubstr(sandbox_.library() + "/a/" + longName + ": cannot be copied: "));
    const std::string problem = sandbox_.library() + "/b: none of its 21 files on licences";
    const std::size_t first = ending.output.find(problem);
    ASSERT_NE(first, std::string::npos) << ending.output;
    EXPECT_EQ(ending.output.find(problem, first + 1), std::string::npos) << "told twice";
    EXPECT_THAT(collected(),
                ElementsAre("B1/1.ttf", "B2/2.ttf", "One/OFL", "One/one.ttf", "fonts.txt"));
}

TEST_F(ACollection, SaysInTheUsersLanguageWhatFontsSayOfLicences) {
    const std::string words(400, 'x');
    font("a/long.ttf", "Long", "First\r\n\n" + words + "\rlast\n");
    font("a/none.ttf", "None");
    font("a/other.ttf", "Other", "First\r\n\n" + words + "\rlast\n");
    expectEach({{{"add", sandbox_.library()}, 0, "added"}});
    const Variable language("LANGUAGE", "de");
    expectEach({
        {{"collect", "--to", target_, "Long", "None", "Other"}, 0, "copied Long/long.ttf"},
        {{"collect", "--to", target_, "Long"}, 1, "is there already"},
    });
    EXPECT_THAT(list(), HasSubstr("    Lizenz: First\n\n      " + words + "\n      last\n"));
    EXPECT_THAT(list(), HasSubstr("    Lizenz: die Datei nennt keine\n    Einbetten: "));
    EXPECT_THAT(list(), HasSubstr("    Lizenz: wie bei Long/long.ttf\n"));
    EXPECT_THAT(list(), Not(HasSubstr("Licence")));
    const auto told = nlohmann::json::parse(
        glyphora({"--translated", "collect", "--json", "--to", target_ + "2", "Long"}).output);
    const auto& face = told["collected"][0]["faces"][0];
    EXPECT_EQ(face["embedding"], 4);
    EXPECT_THAT(face["embeddingText"], testing::StartsWith("erlaubt, aber nur zum Ansehen"));
}

} // namespace
