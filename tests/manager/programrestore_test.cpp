// SPDX-License-Identifier: MIT
// What was switched is taken back, and nothing else.
#include "tests/manager/programfixture.h"

#include <map>
#include <nlohmann/json.hpp>

using namespace managertest;
using namespace testsupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

namespace {

class TakingBackASwitch : public TheProgram {
protected:
    TakingBackASwitch() {
        sandbox_.write("fonts/pair.ttf", makeFont({"Pair", "Regular", "Pair"}));
        EXPECT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
        serve(); // which ends what is due
    }
    /// What its document tells it to have changed.
    nlohmann::json changesOf(std::vector<std::string> words) {
        words.insert(words.begin() + 1, "--json");
        const Ending ending = glyphora(words);
        EXPECT_EQ(ending.status, 0) << ending.output;
        return nlohmann::json::parse(ending.output)["changes"];
    }
    Ending restore(const std::string& input) {
        return ProgramRun({"-c", R"(printf %s "$0" | "$1" restore)", input, GLYPHORA_PROGRAM},
                          sandbox_.root() + "/log." + std::to_string(++runs_), "/bin/sh")
            .wait();
    }
    Ending takeBack(nlohmann::json changes) {
        for (auto& change : changes) {
            change["added"].swap(change["removed"]);
        }
        return restore(changes.dump());
    }
    std::map<std::string, std::vector<std::string>> active() {
        std::map<std::string, std::vector<std::string>> reasons;
        const auto status = nlohmann::json::parse(glyphora({"status", "--json"}).output);
        for (const auto& container : status["active"]) {
            reasons[container["name"]] = container["reasons"];
        }
        return reasons;
    }

    std::string runtime_ = sandbox_.root() + "/runtime";
    bool isMade_ = std::filesystem::create_directory(runtime_);
    Variable folder_{"XDG_RUNTIME_DIR", runtime_};
};

TEST_F(TakingBackASwitch, LeavesWhatWasActiveAsItWas) {
    EXPECT_EQ(glyphora({"activate", "--for", "2h", "Pair"}).status, 0);
    const auto before = active();
    ASSERT_THAT(before, ElementsAre(Pair("Pair", ElementsAre(HasSubstr("until 2")))));

    const auto on = changesOf({"activate", "Lato & Co", "Pair"});
    ASSERT_THAT(active(), ElementsAre(Pair("Lato & Co", ElementsAre("by hand")),
                                      Pair("Pair", ElementsAre(HasSubstr("until 2"), "by hand"))));
    EXPECT_THAT(changesOf({"activate", "Pair"}), IsEmpty()) << "as it is by hand already";
    EXPECT_EQ(takeBack(on).status, 0);
    EXPECT_EQ(active(), before);
    EXPECT_EQ(restore(on.dump()).status, 0); // and again

    const auto whole = active();
    EXPECT_EQ(whole.size(), 2U);
    const auto off = changesOf({"deactivate", "--all"});
    EXPECT_THAT(active(), IsEmpty());
    EXPECT_EQ(takeBack(off).status, 0);
    EXPECT_EQ(active(), whole);
    EXPECT_TRUE(tells("activated Lato & Co (container 1"));
}

TEST_F(TakingBackASwitch, LeavesWhatCameSince) {
    const auto on = changesOf({"activate", "Pair"});
    EXPECT_EQ(glyphora({"activate", "--until-logout", "Pair"}).status, 0);
    EXPECT_EQ(takeBack(on).status, 0);
    EXPECT_THAT(active(), ElementsAre(Pair("Pair", ElementsAre("until logout"))));
    const auto off = changesOf({"deactivate", "Pair"});
    EXPECT_EQ(glyphora({"activate", "--for", "2h", "Pair"}).status, 0);
    EXPECT_EQ(takeBack(off).status, 0);
    EXPECT_THAT(active(),
                ElementsAre(Pair("Pair", ElementsAre(HasSubstr("until 2"), "until logout"))));
    EXPECT_EQ(restore(off.dump()).status, 0);
    EXPECT_THAT(active(), ElementsAre(Pair("Pair", ElementsAre(HasSubstr("until 2")))));
}

TEST_F(TakingBackASwitch, TellsWhatCannotBeTakenBack) {
    const struct {
        std::string input;
        int status;
        std::string message;
    } cases[] = {
        {"[]", 0, ""},
        {"what?", 1, "change 1: "},
        {R"([{"id": 1, "added": [], "removed": []}, {"id": 1}])", 1, "change 2: "},
        {R"([{"id": 1, "added": [["whim"]], "removed": []}])", 1,
         "change 1: [\"whim\"] is not a r"},
        {R"([{"id": 1, "added": [["hand", 2]], "removed": []}])", 1, "change 1: "},
        {R"([{"id": 77, "added": [["hand"]], "removed": []}])", 1,
         "container 77: not in the library"},
        {R"([{"id": 1, "added": [["time", "1"]], "removed": []}])", 0,
         "what it was active for has ended"},
        {R"([{"id": 1, "added": [], "removed": [["hand"]]}])", 0, ""},
    };
    for (const auto& [input, status, message] : cases) {
        const Ending ending = restore(input);
        EXPECT_EQ(ending.status, status) << input;
        EXPECT_THAT(ending.output, HasSubstr(message));
        EXPECT_TRUE(!message.empty() || ending.output.empty()) << ending.output;
        EXPECT_THAT(active(), IsEmpty());
    }
}

} // namespace
