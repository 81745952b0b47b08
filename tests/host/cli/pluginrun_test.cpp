// SPDX-License-Identifier: MIT
// The program with real plug-ins, good and bad, and with bad drawings.
#include "programrun.h"
#include "system/descriptor.h"

#include <nlohmann/json.hpp>

#include <fcntl.h>

#include <algorithm>
#include <utility>

namespace host::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

class ARun : public ProgramFixture {
protected:
    void letMisbehave(const char* how) { setenv("GLYPHORA_TEST_MISBEHAVIOUR", how, 1); }
};

TEST_F(ARun, ShowsEachDrawingToThePluginAndPrintsItsFaces) {
    const ProgramResult result = run(
        {"open", "--plugin", bundle("wellbehaved"), goodDrawing("a.svg"), goodDrawing("b.svg")});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.errors, HasSubstr("alert: Good day 1\n"));
    EXPECT_THAT(result.errors, HasSubstr("alert: Good day 2\n"));
    EXPECT_THAT(result.output, HasSubstr("a.svg\n"));
    EXPECT_THAT(result.output, HasSubstr("No Such Face Bold  NoSuchFace-Bold  missing  missing"));
    EXPECT_THAT(result.errors, Not(HasSubstr("error:")));
    EXPECT_THAT(result.errors, Not(HasSubstr("misbehaves")));
}

TEST_F(ARun, ReportsInJson) {
    const ProgramResult result =
        run({"open", "--report", "json", "--reload", "--plugin", bundle("wellbehaved"),
             goodDrawing("a.svg"), goodDrawing("b.svg")});
    EXPECT_EQ(result.status, 0) << result.errors;
    const json report = json::parse(result.output);
    EXPECT_EQ(report["plugin"], "wellbehaved");
    EXPECT_EQ(report["reloads"], 1);
    EXPECT_EQ(report["alerts"][1]["text"], "Good day 2") << "the plug-in's object stayed";
    EXPECT_TRUE(report["misbehaviour"].empty());
    EXPECT_TRUE(report["errors"].empty());
    const json& face = report["documents"][1]["faces"][0];
    EXPECT_EQ(face["postScriptName"], "NoSuchFace-Bold");
    EXPECT_EQ(face["before"], "missing");
    EXPECT_EQ(face["after"], "missing");
    EXPECT_EQ(face["runs"], 1);
    EXPECT_GE(report["timingsMs"]["total"], report["documents"][1]["timingsMs"]["startToOutcome"]);
    EXPECT_GE(report["documents"][1]["timingsMs"]["startToOutcome"],
              report["documents"][0]["timingsMs"]["startToOutcome"]);
}

TEST_F(ARun, KeepsWhatThePluginPrintsOutOfTheReport) {
    letMisbehave("chatter");
    const std::string drawing = goodDrawing();
    const ProgramResult verbose =
        run({"open", "-v", "--report", "json", "--plugin", bundle("misbehaving"), drawing});
    EXPECT_TRUE(json::accept(verbose.output)) << verbose.output;
    EXPECT_THAT(verbose.errors, HasSubstr("chatter of the plug-in"));
    const ProgramResult plain = run({"open", "--plugin", bundle("misbehaving"), drawing});
    EXPECT_THAT(plain.output + plain.errors, Not(HasSubstr("chatter")));
}

TEST_F(ARun, SaysWhichAnswersCouldNotBeGiven) {
    const auto answered = [&](const std::string& script) {
        return run({"open", "--plugin", bundle("wellbehaved"), "--answers",
                    write("answers", script), goodDrawing()});
    };
    const std::string script = folder / "answers";
    const ProgramResult wrong = answered("# one\npress two");
    EXPECT_EQ(wrong.status, 64);
    EXPECT_THAT(wrong.errors, HasSubstr("error: " + script + ":2: press: a number"));
    const ProgramResult unasked = answered("press 1");
    EXPECT_EQ(unasked.status, 4);
    EXPECT_THAT(unasked.errors, HasSubstr("error: " + script + ":1: no dialog was shown"));
    EXPECT_EQ(answered("wait for end").status, 0) << "that has come";
}

TEST_F(ARun, GoesOnWithoutAPluginThatCannotBeLoaded) {
    for (const std::string& plugin : {bundle("no-such"), bundle("noentry")}) {
        const ProgramResult result = run({"open", "--plugin", plugin, goodDrawing()});
        EXPECT_EQ(result.status, 3);
        EXPECT_THAT(result.errors, HasSubstr("error: " + plugin));
        EXPECT_THAT(result.output, HasSubstr("NoSuchFace-Bold"));
    }
    letMisbehave("failing start");
    const ProgramResult result = run({"open", "--plugin", bundle("misbehaving"), goodDrawing()});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.errors, HasSubstr("failed to start with error 'OOPS'"));
}

TEST_F(ARun, FailsWhenThePluginCannotBeReloaded) {
    for (const auto& [step, message] :
         {std::pair{"Unload", "refuses to be unloaded with error 'OOPS'"},
          std::pair{"Reload", "was reloaded with error 'OOPS'"}}) {
        letMisbehave(step);
        const ProgramResult result =
            run({"open", "--report", "json", "--reload", "--plugin", bundle("misbehaving"),
                 goodDrawing("a.svg"), goodDrawing("b.svg")});
        EXPECT_EQ(result.status, 3) << step;
        EXPECT_THAT(result.errors, HasSubstr(message));
        const json report = json::parse(result.output);
        EXPECT_EQ(report["pluginFailed"], true) << step;
        EXPECT_EQ(report["documents"].size(), 2U) << step;
    }
}

TEST_F(ARun, TellsMisbehaviourApartFromErrors) {
    letMisbehave("thrown number");
    const ProgramResult result = run({"open", "--report", "json", "--plugin", bundle("misbehaving"),
                                      goodDrawing("a.svg"), goodDrawing("b.svg")});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.errors, HasSubstr("the plug-in misbehaves: misbehaving threw the number"));
    const json report = json::parse(result.output);
    ASSERT_EQ(report["misbehaviour"].size(), 1U);
    EXPECT_EQ(report["misbehaviour"][0]["times"], 2);
    EXPECT_EQ(report["errors"].size(), 2U);
    EXPECT_EQ(report["documents"][1]["checkFailed"], true);
}

TEST_F(ARun, SavesByteForByteAndFailsForMissingFontsOnlyWhenAskedTo) {
    const std::string drawing = goodDrawing();
    const std::string copy = folder / "copy.svg";
    EXPECT_EQ(run({"open", "--no-plugin", "--save", copy, drawing}).status, 0);
    EXPECT_EQ(contentOf(copy), contentOf(drawing));
    EXPECT_EQ(run({"open", "--no-plugin", "--fail-on-missing", drawing}).status, 1);
    const std::string plain =
        write("plain.svg", R"(<svg xmlns="http://www.w3.org/2000/svg"><rect/></svg>)");
    EXPECT_EQ(run({"open", "--no-plugin", "--fail-on-missing", plain}).status, 0);
}

TEST_F(ARun, RefusesToReplaceTheFileThatItsReportGoesTo) {
    const std::string report = folder / "stdout";
    for (const char* form : {"text", "json"}) {
        const ProgramResult result =
            run({"open", "--no-plugin", "--report", form, "--save", report, goodDrawing()});
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.errors, HasSubstr("the program's own output goes there"));
        EXPECT_THAT(result.output, HasSubstr("NoSuchFace-Bold"));
    }
}

TEST_F(ARun, SavesThroughDescriptors) {
    const std::string drawing = goodDrawing();
    const std::string content = contentOf(drawing);
    for (const char* place : {"/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"}) {
        const ProgramResult quiet = run({"open", "--no-plugin", "-q", "--save", place, drawing});
        EXPECT_EQ(quiet.status, 0) << quiet.errors;
        EXPECT_EQ(quiet.output, content) << place;
    }
    const ProgramResult told =
        run({"open", "--no-plugin", "--save", "/dev/stderr", drawing}, folder / "report");
    EXPECT_EQ(told.errors, content);
    EXPECT_THAT(told.output, HasSubstr("saved as /dev/stderr\n"));
    const sys::Descriptor file(
        ::open((folder / "5.svg").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600));
    const std::string name = "/dev/fd/" + std::to_string(file.get());
    EXPECT_EQ(run({"open", "--no-plugin", "--save", name, drawing}).status, 0);
    EXPECT_EQ(contentOf(folder / "5.svg"), content);
    EXPECT_EQ(run({"open", "--no-plugin", "--save", "/dev/fd/987", drawing}).status, 2);
}

TEST_F(ARun, CanBeASelfTestOrTellOfThePlugin) {
    const ProgramResult good = run({"--self-test", "--plugin", bundle("wellbehaved")});
    EXPECT_EQ(good.status, 0) << good.errors;
    EXPECT_THAT(good.output, HasSubstr("wellbehaved: loaded, started and shut down"));
    EXPECT_EQ(run({"--self-test", "--plugin", bundle("noentry")}).status, 3);
    letMisbehave("About");
    const ProgramResult refused = run({"about", "--plugin", bundle("misbehaving")});
    EXPECT_EQ(refused.status, 3);
    EXPECT_THAT(refused.errors, HasSubstr("answered \"About\" with error 'OOPS'"));
}

TEST_F(ARun, CanMisbehaveOnPurpose) {
    const std::string drawing = goodDrawing();
    const ProgramResult result = run({"open", "--plugin", bundle("wellbehaved"), "--misbehave",
                                      "failing-call=AddNotifier:OOPS", drawing});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.errors, HasSubstr("failed to start with error 'OOPS'"));
    EXPECT_EQ(run({"open", "--no-plugin", "--misbehave", "failing-call=Nothing", drawing}).status,
              64);
}

TEST_F(ARun, SaysWhenItsReportCannotBeWritten) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"open", "--no-plugin", goodDrawing()}, {"--version"}}) {
        const ProgramResult result = run(arguments, "/dev/full");
        EXPECT_EQ(result.status, 74);
        EXPECT_THAT(result.errors, HasSubstr("could not be written"));
    }
}

class ABadDrawing : public ProgramFixture {};

TEST_F(ABadDrawing, IsNamedAndTheOthersAreStillOpened) {
    const std::string directory = folder / "folder.svg";
    std::filesystem::create_directory(directory);
    const std::vector<std::string> bad{
        write("empty.svg", ""),
        write("text.svg", "Dear reader,\nhello.\n"),
        write("cut.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\"><g><text>cut o"),
        write("cut.svgz", std::string("\x1F\x8B\x08\0\0\0\0\0\0\3\x4B", 11)),
        folder / "none.svg",
        directory};
    std::vector<std::string> arguments{"open", "--no-plugin"};
    arguments.insert(arguments.end(), bad.begin(), bad.end());
    arguments.push_back(goodDrawing());
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, 2) << result.errors;
    for (const std::string& file : bad) {
        EXPECT_THAT(result.errors, HasSubstr("error: " + file + ":"));
    }
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 6) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("NoSuchFace-Bold")) << "the good one was opened";
}

TEST_F(ABadDrawing, IsSaidInTheJsonReportToo) {
    const std::string none = folder / "none.svg";
    const ProgramResult result = run({"open", "--no-plugin", "--report", "json", none});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.output, HasSubstr("\"opened\": false"));
    EXPECT_THAT(result.output, HasSubstr("\"error\": \"" + none));
}

using AnUnwritablePlace = ABadDrawing;

TEST_F(AnUnwritablePlace, ToSaveToLosesNothing) {
    const std::string drawing = goodDrawing();
    const std::string target = folder / "no/such/folder.svg";
    const ProgramResult result = run({"open", "--no-plugin", "--save", target, drawing});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, HasSubstr("error: " + target + ":"));
    EXPECT_THAT(result.output, HasSubstr("NoSuchFace-Bold"));
}

} // namespace
} // namespace host::test
