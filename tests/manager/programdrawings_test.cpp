// SPDX-License-Identifier: MIT
// What drawings use as a collection, and drawings that cannot be read.
#include "tests/manager/programfixture.h"

#include <filesystem>

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace managertest {

namespace {

class TheProgramWithDrawings : public TheProgram {
protected:
    std::string draw(const std::string& name, const std::string& inside) {
        const std::string head = R"(<svg xmlns="http://www.w3.org/2000/svg">)";
        return sandbox_.write("../drawings/" + name, head + inside + "</svg>");
    }
    static std::string say(const std::string& family) {
        return "<text font-weight='700' font-family=\"" + family + "\">x</text>";
    }
};

TEST_F(TheProgramWithDrawings, MakesACollectionOfWhatTheyUse) {
    sandbox_.write("fonts/other.ttf", testsupport::makeFont({"Other", "Bold", "Other-Bold"}));
    sandbox_.write("fonts/again/lato.ttf",
                   testsupport::makeFont({"Lato & Co", "Bold", "Lato-Bold"}));
    const std::string poster = draw("[a].svg", say("Nobody") + say("Other") + say("serif"));
    const std::string card =
        draw("card", "<style>@font-face{font-family:Own;src:url(o.ttf)}" + std::string("</style>") +
                         say("Lato &amp; Co") + say("Own") + say("Nobody") + say("Other"));
    const std::string text = sandbox_.write("../drawings/text.svg", "no drawing");
    expectEach({
        {{"add", sandbox_.library()}, 0, "added"},
        {{"collection", "add", "c"}, 2, "name containers, or give --from; see glyphora collection"},
        {{"collection", "add", "c", "--from", text}, 1, text + ":1:1: not XML\n"},
        {{"collection", "list"}, 0, "there are no collections"},
    });
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(sandbox_.root() + "/drawings");
    const Ending made = glyphora({"collection", "add", "job", "--from", "[a].svg", "--from",
                                  "text.svg", "--from", "/gone.svg", "--from", "card", "--json"});
    std::filesystem::current_path(before);
    EXPECT_EQ(made.status, 3);
    EXPECT_THAT(made.output, AllOf(HasSubstr("/text.svg:1:1: not XML"), HasSubstr("/gone.svg: No"),
                                   HasSubstr("[a].svg: Nobody Bold: not in the library"),
                                   Not(HasSubstr("card: Nobody")), Not(HasSubstr("serif")),
                                   Not(HasSubstr("Own")), HasSubstr("\"name\": \"Other\""),
                                   HasSubstr("card: Lato & Co Bold: in 2 containers; taken is ")));
    expectEach({
        {{"collection", "list"}, 0, "job: 2 containers\n"},
        {{"collection", "add", "job", "--from", poster}, 1, poster + ": Nobody Bold: not in"},
    });
}

TEST_F(TheProgramWithDrawings, TellsWhyTheyCannotBeRead) {
    const std::string folder = sandbox_.root() + "/bin";
    std::filesystem::create_directories(folder);
    std::filesystem::copy_file(GLYPHORA_PROGRAM, folder + "/glyphora"); // with no reader beside it
    const testsupport::Variable path("PATH", "bin:" + sandbox_.root() + "/path");
    const std::string drawing = draw("a.svg", say("Other"));
    const std::string log = sandbox_.root() + "/log.reading";
    const auto start = [&] {
        return ProgramRun({"read-drawings", "--json", drawing}, log,
                          (folder + "/glyphora").c_str());
    };
    const auto install = [&](const std::string& script) {
        const std::string reader = sandbox_.write("../path/glyphora-host", "#!/bin/sh\n" + script);
        std::filesystem::permissions(reader, std::filesystem::perms::owner_all);
    };
    EXPECT_THAT(start().wait().output, HasSubstr(drawing + ": cannot be read: the program "
                                                           "glyphora-host, which reads drawings"));
    const struct {
        const char* script;
        const char* told;
    } readers[] = {
        {"kill -9 $$", "/path/glyphora-host ended before it had told of it"},
        {"echo '{\"documents\": [{\"opened\": true'", "ended before it had told of it"},
        {"echo '{\"documents\": []}'", "glyphora-host tells of it in another form"},
        {"echo '{\"documents\": [{\"opened\": 1}]}'", "glyphora-host tells of it in another form"},
        // Without a process for each line: there is a minute for all of it.
        {"line=$(printf %060000d 0); while echo $line; do :; done",
         "uses more fonts than can be told"},
    };
    for (const auto& [script, told] : readers) {
        install(script);
        const Ending ending = start().wait();
        EXPECT_EQ(ending.status, 1);
        EXPECT_THAT(ending.output, AllOf(HasSubstr(drawing + ": "), HasSubstr(told))) << script;
    }
    const std::string begun = sandbox_.root() + "/begun";
    install("echo $$ > " + begun + "; read forever");
    ProgramRun run({"read-drawings", "--json", drawing}, log, (folder + "/glyphora").c_str());
    ASSERT_TRUE(await([&] { return std::filesystem::exists(begun) && !readBytes(begun).empty(); }));
    kill(run.process(), SIGTERM);
    EXPECT_THAT(run.wait().output, HasSubstr(drawing + ": cancelled before it was read"));
    EXPECT_FALSE(std::filesystem::exists("/proc/" + std::to_string(std::stoi(readBytes(begun)))));
}

} // namespace

} // namespace managertest
