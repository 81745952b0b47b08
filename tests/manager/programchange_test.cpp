// SPDX-License-Identifier: MIT
// Sets are changed as a window wants it; what was switched is taken back, and nothing else.
#include "manager/activation/reason.h"
#include "manager/library/fields.h"
#include "tests/manager/programfixture.h"

#include <map>
#include <nlohmann/json.hpp>

using namespace managertest;
using namespace testsupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Json = nlohmann::json;

class AChangeOfSets : public TheProgram {
protected:
    AChangeOfSets() {
        for (const char* style : {"Bold", "Regular"}) {
            sandbox_.write(std::string("fonts/pair-") + style + ".ttf",
                           makeFont({"Pair", style, std::string("Pair-") + style}));
        }
        EXPECT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
        serve(); // which ends what is due
    }
    /// What its document tells it to have changed.
    Json changesOf(std::vector<std::string> words) {
        words.insert(words.begin() + 1, "--json");
        const Ending ending = glyphora(words);
        EXPECT_EQ(ending.status, 0) << ending.output;
        return Json::parse(ending.output)["changes"];
    }
    Ending change(const std::string& input, const std::string& option) {
        return ProgramRun(
                   {"-c", R"(printf %s "$0" | "$1" change $2)", input, GLYPHORA_PROGRAM, option},
                   sandbox_.root() + "/log." + std::to_string(++runs_), "/bin/sh")
            .wait();
    }
    /// What it has changed in turn.
    Json change(const Json& changes) {
        const Ending ending = change(changes.dump(), "--json");
        EXPECT_EQ(ending.status, 0) << ending.output;
        return Json::parse(ending.output)["changes"];
    }
    Json takeBack(Json changes) {
        for (Json& one : changes) {
            for (const char* const part : {"reasons", "files"}) {
                one[part]["added"].swap(one[part]["removed"]);
            }
        }
        return change(changes);
    }
    static Json ofFiles(const Json& added, const Json& removed) {
        const Json byHand = added.empty() ? Json::array() : Json{Json{"hand"}};
        return {{{"id", 2},
                 {"reasons", {{"added", byHand}, {"removed", Json::array()}}},
                 {"files", {{"added", added}, {"removed", removed}}}}};
    }
    /// "FAMILY: REASON..., FACES".
    std::vector<std::string> active() {
        std::vector<std::string> lines;
        const Json status = Json::parse(glyphora({"status", "--json"}).output);
        for (const Json& set : status["active"]) {
            std::string line = set["name"].get<std::string>() + ":";
            for (const std::string reason : set["reasons"]) {
                line += " " + reason.substr(0, reason.find(" 2")); // of a time
            }
            const Json info = Json::parse(glyphora({"info", "--json", set["name"]}).output);
            for (const Json& face : info["faces"]) {
                line += face["state"] == "active" ? ", " + face["style"].get<std::string>() : "";
            }
            lines.push_back(line);
        }
        return lines;
    }
    struct Step {
        std::vector<std::string> command;
        int status;
        std::vector<std::string> active; ///< after it
        std::string message;
    };
    void expectSteps(const std::vector<Step>& steps) {
        for (const auto& [command, status, expected, message] : steps) {
            const Ending ending = glyphora(command);
            EXPECT_EQ(ending.status, status) << ending.output;
            EXPECT_THAT(ending.output, HasSubstr(message));
            EXPECT_EQ(active(), expected) << ending.output;
        }
    }

    std::string runtime_ = sandbox_.root() + "/runtime";
    bool isMade_ = std::filesystem::create_directory(runtime_);
    Variable folder_{"XDG_RUNTIME_DIR", runtime_};
};

TEST_F(AChangeOfSets, LeavesWhatWasActiveAsItWas) {
    EXPECT_EQ(glyphora({"activate", "--for", "2h", "Pair"}).status, 0);
    const auto before = active();
    ASSERT_THAT(before, ElementsAre("Pair: until, Bold, Regular"));

    const Json on = changesOf({"activate", "Lato & Co", "Pair"});
    const auto all = active();
    ASSERT_THAT(all, ElementsAre("Lato & Co: by hand, Bold", "Pair: until by hand, Bold, Regular"));
    EXPECT_THAT(changesOf({"activate", "Pair"}), IsEmpty()) << "as it is by hand already";
    const Json undone = takeBack(on);
    EXPECT_EQ(active(), before);
    takeBack(undone);
    EXPECT_EQ(active(), all);

    const Json off = changesOf({"deactivate", "--all"});
    EXPECT_THAT(active(), IsEmpty());
    takeBack(off);
    EXPECT_EQ(active(), all);
    EXPECT_TRUE(tells("activated lato.ttf of Lato & Co (container 1"));
}

TEST_F(AChangeOfSets, LeavesWhatCameSince) {
    const Json on = changesOf({"activate", "Pair"});
    EXPECT_EQ(glyphora({"activate", "--until-logout", "Pair"}).status, 0);
    takeBack(on);
    EXPECT_THAT(active(), ElementsAre("Pair: until logout, Bold, Regular"));
    const Json off = changesOf({"deactivate", "Pair"});
    EXPECT_EQ(glyphora({"activate", "--for", "2h", "Pair"}).status, 0);
    const Json undone = takeBack(off);
    EXPECT_THAT(active(), ElementsAre("Pair: until until logout, Bold, Regular"));
    takeBack(undone);
    EXPECT_THAT(active(), ElementsAre("Pair: until, Bold, Regular"));
}

TEST_F(AChangeOfSets, IsOfSingleFaces) {
    const Json bold = change(ofFiles({"pair-Bold.ttf"}, Json::array()));
    EXPECT_THAT(active(), ElementsAre("Pair: by hand, Bold"));
    EXPECT_THAT(glyphora({"search", "pair-regular"}).output, HasSubstr(" inactive "));
    const Json whole = change(Json{{{"id", 2}, {"active", true}}});
    EXPECT_THAT(active(), ElementsAre("Pair: by hand, Bold, Regular"));
    const Json less = change(ofFiles(Json::array(), {"pair-Bold.ttf"}));
    EXPECT_THAT(active(), ElementsAre("Pair: by hand, Regular"));
    EXPECT_TRUE(tells("deactivated pair-Bold.ttf of Pair (container 2"));
    const Json none = change(ofFiles(Json::array(), {"pair-Regular.ttf"}));
    EXPECT_THAT(active(), IsEmpty());
    const struct {
        Json changes;
        std::vector<std::string> expected;
    } steps[] = {{none, {"Pair: by hand, Regular"}},
                 {less, {"Pair: by hand, Bold, Regular"}},
                 {whole, {"Pair: by hand, Bold"}},
                 {bold, {}}};
    for (const auto& [changes, expected] : steps) {
        takeBack(changes);
        EXPECT_EQ(active(), expected) << changes;
    }
    change(bold);
    EXPECT_EQ(askFor("Pair-Regular", "isActive"), "1") << "the rest comes when it is asked for";
    EXPECT_THAT(active(), ElementsAre("Pair: by hand, Bold, Regular"));
    change(Json{{{"id", 2}, {"active", false}}});
    EXPECT_THAT(active(), IsEmpty());
}

TEST_F(AChangeOfSets, IsOfTheFilesThatACollectionHas) {
    const std::string folder = sandbox_.library() + "/fonts";
    writeBytes(sandbox_.places().own() + "/groups",
               "glyphora-groups 1\ncollection\tjob\ncontainer\t2\tPair\t" + folder +
                   "\t\ttruetype\tpair-Bold.ttf\ncollection\told\ncontainer\t2\tPair\t" + folder +
                   "\t\ttruetype\tgone.ttf\tpair-Regular.ttf\n");
    EXPECT_THAT(glyphora({"collection", "list", "job"}).output,
                HasSubstr(folder + ": pair-Bold.ttf only\n"));
    expectSteps({
        {{"activate", "collection:job"}, 0, {"Pair: by hand, Bold"}, "activated pair-Bold.ttf of "},
        {{"activate", "--for", "2h", "collection:old"},
         3,
         {"Pair: by hand until, Bold, Regular"},
         folder + "/gone.ttf: not in the library"},
        {{"deactivate", "collection:job", "Lato*"},
         3,
         {"Pair: by hand until, Regular"},
         "Lato*: no"},
        {{"deactivate", "collection:job"},
         0,
         {"Pair: by hand until, Regular"},
         "nothing is active"},
        {{"deactivate", "collection:old"}, 0, {}, "deactivated Pair (container 2"},
        {{"activate", "collection:job", "Pair"}, 0, {"Pair: by hand, Bold, Regular"}, ""},
        {{"deactivate", "Pair", "collection:job"}, 0, {}, "deactivated Pair (container 2"},
    });
    const Ending collected =
        glyphora({"collect", "--to", sandbox_.root() + "/out", "collection:job"});
    EXPECT_THAT(collected.output, HasSubstr("copied Pair/pair-Bold.ttf\n"));
    EXPECT_FALSE(std::filesystem::exists(sandbox_.root() + "/out/Pair/pair-Regular.ttf"));
    EXPECT_EQ(glyphora({"activate", "Pair", "1"}).status, 0);
    const Json off = changesOf({"deactivate", "collection:job", "1"});
    EXPECT_THAT(active(), ElementsAre("Pair: by hand, Regular"));
    takeBack(off);
    EXPECT_THAT(active(), ElementsAre("Lato & Co: by hand, Bold", "Pair: by hand, Bold, Regular"));
}

TEST_F(AChangeOfSets, IsOfFilesOfTheLibraryThatAreNamed) {
    const std::string file = "file:" + sandbox_.library() + "/fonts/pair-Bold.ttf";
    std::filesystem::create_symlink(sandbox_.library() + "/fonts", sandbox_.root() + "/link");
    const std::string linked = "file:" + sandbox_.root() + "/link/pair-Bold.ttf";
    const std::string none = "file:" + sandbox_.library() + "/none.ttf";
    expectSteps({
        {{"activate", file, none}, 3, {"Pair: by hand, Bold"}, "/none.ttf: not in the library"},
        {{"activate", "Pair"}, 0, {"Pair: by hand, Bold, Regular"}, "activated Pair (container 2"},
        {{"deactivate", linked}, 0, {"Pair: by hand, Regular"}, ""},
        {{"collection", "add", "job", linked, none},
         3,
         {"Pair: by hand, Regular"},
         "collection:job: added pair-Bold.ttf of Pair (container 2, "},
        {{"activate", "collection:job"}, 0, {"Pair: by hand, Bold, Regular"}, "pair-Bold.ttf of "},
    });
}

TEST_F(AChangeOfSets, TellsWhatCannotBeDone) {
    const auto reasons = [](const std::string& added, const std::string& removed = "") {
        return R"([{"id": 1, "files": {"added": ["lato.ttf"], "removed": []}, "reasons": {"added": [)" +
               added + R"(], "removed": [)" + removed + "]}}]";
    };
    std::string use = manager::reasonLine(manager::Reason::inUseBy(*manager::markOf(getpid())));
    use = Json(manager::splitFields(use.substr(0, use.size() - 1)).value()).dump();
    use.replace(0, 10, "["); // without "reason"
    const struct {
        std::string input;
        int status;
        std::string message;
    } cases[] = {
        {"[]", 0, ""},
        {"what?", 1, "change 1: "},
        {R"([{"id": 1, "active": false}, {"id": 1}])", 1, "change 2: "},
        {R"([{"id": 1, "active": 1}])", 1, "change 1: "},
        {reasons(R"(["whim"])"), 1, R"(change 1: ["whim"] is not a r)"},
        {reasons(R"(["hand", 2])"), 1, "change 1: "},
        {R"([{"id": 77, "active": true}])", 1, "container 77: not in the library"},
        {reasons(R"(["time", "1"])"), 0, "what it was active for has ended"},
        {reasons(use), 0, "what it was active for has ended"},
        {reasons("", R"(["hand"])"), 0, ""},
    };
    for (const auto& [input, status, message] : cases) {
        const Ending ending = change(input, "");
        EXPECT_EQ(ending.status, status) << input;
        EXPECT_THAT(ending.output, HasSubstr(message));
        EXPECT_TRUE(!message.empty() || ending.output.empty()) << ending.output;
        EXPECT_THAT(active(), IsEmpty());
    }
}

} // namespace
