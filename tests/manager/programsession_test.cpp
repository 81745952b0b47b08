// SPDX-License-Identifier: MIT
// Font files that are active for one session without being added.
#include "tests/manager/programfixture.h"

#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>

using namespace managertest;
using namespace testsupport;
using testing::HasSubstr;

namespace {

class AFontFileForTheSession : public TheProgram {
protected:
    std::string outside(const std::string& name, const FontRecipe& recipe) {
        return sandbox_.write("../outside/" + name, makeFont(recipe));
    }
    Ending activate(const std::vector<std::string>& files) {
        std::vector<std::string> words{"activate", "--until-logout"};
        words.insert(words.end(), files.begin(), files.end());
        return glyphora(words);
    }
    std::vector<std::string> copies() {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(runtime_)) {
            if (entry.path().parent_path().filename().string().starts_with("font-")) {
                names.push_back(entry.path().filename().string());
            }
        }
        return names;
    }
    /// The names of what the library has, the session's included.
    std::vector<std::string> known() {
        std::vector<std::string> names;
        const auto list = nlohmann::json::parse(glyphora({"list", "--json"}).output);
        for (const auto& container : list["containers"]) {
            names.push_back(container["name"]);
        }
        return names;
    }

    std::string runtime_ = sandbox_.root() + "/runtime";
    bool isMade_ = std::filesystem::create_directory(runtime_);
    Variable folder_{"XDG_RUNTIME_DIR", runtime_};
    std::string lone_ = outside("lone.ttf", {"Lone", "Bold", "L"});
};

TEST_F(AFontFileForTheSession, IsThereForItAlone) {
    const std::string next = outside("two.ttf", {"Lone", "Thin", "T"});
    const std::string bad = sandbox_.write("../outside/bad.otf", "bad");
    const std::string twin =
        sandbox_.write("../outside/twin.ttf", readBytes(sandbox_.library() + "/fonts/lato.ttf"));
    serve();
    expectEach({{{"add", sandbox_.library()}, 0, "added"},
                {{"activate", lone_}, 1, lone_ + ": is not in the library: add it"},
                {{"activate", "--until-logout", bad}, 1, bad + ": "},
                {{"activate", twin}, 0, "activated Lato & Co"},
                {{"activate", "--until-logout", lone_, next}, 0, "activated Lone"},
                {{"status"}, 0, "Lone, 1 file, until logout"},
                {{"activate", "--until-logout", lone_}, 0, "activated Lone"},
                {{"list"}, 0, runtime_ + "/glyphora-fonts-"},
                {{"add", lone_}, 0, "as " + sandbox_.places().singleFonts() + "/lone.ttf"},
                {{"show", bad}, 1, bad + ": "},
                {{"show", "nosuch.TTF"}, 1, "nosuch.TTF: there is no such file"},
                {{"show", sandbox_.library()}, 1, sandbox_.library() + ": is a folder; "}});
    const auto sets = [&] {
        return nlohmann::json::parse(glyphora({"status", "--json"}).output)["active"].size();
    };
    EXPECT_EQ(sets(), 3U); // each file by itself, and once
    std::filesystem::remove_all(runtime_);
    EXPECT_EQ(glyphora({"scan"}).status, 0);
    EXPECT_THAT(glyphora({"list"}).output, testing::Not(HasSubstr(runtime_)));
}

TEST_F(AFontFileForTheSession, NeedsNoPostScriptName) {
    const std::string nameless = outside("nameless.ttf", {"Nameless", "Regular", ""});
    const std::string namesake = outside("namesake.ttf", {"Nameless", "Bold", ""});
    expectEach({{{"add", sandbox_.library()}, 0, "added"},
                {{"activate", "--until-logout", nameless}, 0, "activated Nameless (container 2, "},
                {{"activate", "--until-logout", namesake}, 0, "activated Nameless (container 3, "},
                {{"activate", "--until-logout", nameless}, 0, "activated Nameless (container 2, "},
                {{"add", nameless}, 0, "added"},
                {{"activate", nameless}, 0, sandbox_.places().singleFonts()}});
    std::filesystem::rename(nameless, nameless + ".otf");
    expectEach({{{"add", nameless + ".otf"}, 0, "is in the library already"}});
    EXPECT_EQ(copies().size(), 2U);
}

TEST_F(AFontFileForTheSession, LeavesNoCopyThatIsNotActive) {
    const std::string blocked = outside("blocked.ttf", {"Blocked", "Regular", "Blocked"});
    const std::string download = outside("download", {"Download", "Regular", "Download"});
    sandbox_.setFontconfig("<dir>" + sandbox_.places().fonts() +
                           "</dir><selectfont><rejectfont><glob>*/blocked.ttf</glob>"
                           "</rejectfont></selectfont>");
    const struct {
        std::vector<std::string> files;
        int status;
        std::string problem;
    } cases[] = {
        {{blocked, lone_}, 3, "blocked.ttf: was in place, but fontconfig shows no font"},
        {{download, lone_}, 3, download + ": cannot be activated: its name is not"},
        {{lone_, lone_}, 0, "activated Lone"},
    };
    for (const auto& [files, status, problem] : cases) {
        const Ending ending = activate(files);
        EXPECT_EQ(ending.status, status) << ending.output;
        EXPECT_THAT(ending.output, HasSubstr(problem));
        EXPECT_THAT(copies(), testing::ElementsAre("lone.ttf"));
        EXPECT_THAT(known(), testing::ElementsAre("Lone"));
        EXPECT_EQ(glyphora({"deactivate", "--all"}).status, 0);
        std::filesystem::remove_all(runtime_);
        std::filesystem::create_directory(runtime_);
    }
    std::filesystem::remove_all(sandbox_.places().fonts());
    writeBytes(sandbox_.places().fonts(), "no folder");
    EXPECT_EQ(activate({lone_}).status, 1);
    EXPECT_THAT(copies(), testing::IsEmpty());
}

TEST_F(AFontFileForTheSession, LeavesNoCopyWhenItIsCancelled) {
    EXPECT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    std::optional<manager::FileLock> scanned(sandbox_.places().scanLock());
    ProgramRun run({"activate", "--until-logout", lone_}, sandbox_.root() + "/log.cancelled");
    ASSERT_TRUE(await([&] { return copies().size() == 1; })) << run.output();
    kill(run.process(), SIGTERM);
    EXPECT_TRUE(await([&] { return copies().empty(); })) << run.output();
    scanned.reset(); // the library is to forget it, too
    EXPECT_EQ(run.wait().status, 1) << run.output();
    EXPECT_THAT(known(), testing::ElementsAre("Lato & Co"));
}

} // namespace
