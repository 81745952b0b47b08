// SPDX-License-Identifier: MIT
// The command line, the environment, and what the program makes of them.
#include "host/cli/bundlesearch.h"
#include "host/cli/consolefrontend.h"
#include "host/cli/exitstatus.h"
#include "host/cli/options.h"
#include "host/cli/sabotage.h"
#include "programrun.h"
#include "system/translation.h"
#include "tests/support/temporaryfolder.h"

#include <sstream>

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(ALocale, IsCutToLanguageAndCountry) {
    const std::pair<const char*, const char*> cases[] = {{"de_DE.UTF-8", "de_DE"},
                                                         {"de_DE@euro", "de_DE"},
                                                         {"de_AT.UTF-8@x", "de_AT"},
                                                         {"fr", "fr"},
                                                         {"C", "en_US"},
                                                         {"C.UTF-8", "en_US"},
                                                         {"POSIX", "en_US"},
                                                         {"", "en_US"}};
    for (const auto& [name, code] : cases) {
        EXPECT_EQ(sys::localeCode(name), code) << name;
    }
}

class ACommandLine : public testing::Test {
protected:
    std::optional<Options> read(std::vector<const char*> arguments) {
        arguments.insert(arguments.begin(), "glyphora-host");
        return readOptions(static_cast<int>(arguments.size()), arguments.data(), output, errors,
                           status);
    }
    std::ostringstream output;
    std::ostringstream errors;
    int status = -1;
};

TEST_F(ACommandLine, IsReadInAnyOrder) {
    const auto options = read({"open", "--reload", "a.svg", "--plugin", "p.aip", "b.svg",
                               "--report", "json", "--misbehave", "failing-call=AddTimer", "c.svg",
                               "--locale", "de_DE", "--headless", "--answers", "a"});
    ASSERT_TRUE(options) << errors.str();
    EXPECT_THAT(options->files, ElementsAre("a.svg", "b.svg", "c.svg"));
    EXPECT_EQ(options->plugin, "p.aip");
    EXPECT_EQ(options->report, ReportFormat::Json);
    EXPECT_EQ(options->locale, "de_DE");
    EXPECT_THAT(options->misbehave, ElementsAre("failing-call=AddTimer"));
    EXPECT_TRUE(options->reload);
    EXPECT_FALSE(options->keepGroups);
    EXPECT_TRUE(options->headless);
    EXPECT_EQ(options->answers, "a");
    const testsupport::Variable locale("LC_ALL", "en_GB.UTF-8");
    const testsupport::Variable language("LANGUAGE", "fr:de");
    EXPECT_EQ(read({"open", "a.svg"})->locale, "de_DE");
    EXPECT_FALSE(read({"open", "--help"}));
    EXPECT_EQ(status, exitSuccess);
    EXPECT_THAT(output.str(), HasSubstr("--fail-on-missing"));
}

TEST_F(ACommandLine, IsRefusedWithAMessageWhenItIsWrong) {
    const std::vector<std::vector<const char*>> wrong{
        {},
        {"open"},
        {"close", "a.svg"},
        {"open", "a.svg", "--report", "xml"},
        {"open", "a.svg", "b.svg", "--save", "c.svg"},
        {"open", "a.svg", "--no-plugin", "--plugin", "p.aip"},
        {"open", "a.svg", "--quiet", "--verbose"},
        {"open", "a.svg", "--misbehave", "badly"},
        {"open", "a.svg", "--misbehave", "missing-suite=AI Font Suite"},
        {"open", "a.svg", "--misbehave", "failing-call=AddTimer:0"},
        {"open", "a.svg", "--misbehave", "failing-call=AddTimer:OOPS:x"},
        {"about", "--no-plugin"},
        {"about", "open", "a.svg"},
        {"--self-test", "about"},
        {"--self-test", "open", "a.svg"}};
    for (const auto& arguments : wrong) {
        status = -1;
        errors.str("");
        EXPECT_FALSE(read(arguments)) << testing::PrintToString(arguments);
        EXPECT_EQ(status, exitUsage) << testing::PrintToString(arguments);
        EXPECT_FALSE(errors.str().empty()) << testing::PrintToString(arguments);
        EXPECT_THAT(errors.str(), testing::Not(HasSubstr("To open it")));
    }
    EXPECT_FALSE(read({"-q", "/proc/self/exe"}));
    EXPECT_THAT(errors.str(), HasSubstr("To open it: glyphora-host open /proc/self/exe\n"));
}

TEST(ThePlugin, IsLookedForAroundTheProgram) {
    namespace fs = std::filesystem;
    const testsupport::TemporaryFolder folder;
    const fs::path root = folder / "root";
    const fs::path program = root / "bin";
    fs::create_directories(program);
    EXPECT_EQ(findPluginNear(program), std::nullopt);
    for (const fs::path& place : {root / "lib" / "glyphora", root, program}) {
        fs::create_directories(place / "Glyphora.aip");
        EXPECT_EQ(findPluginNear(program), place / "Glyphora.aip");
    }
    setenv("GLYPHORA_PLUGIN", "/somewhere/else.aip", 1);
    EXPECT_EQ(findPlugin(), "/somewhere/else.aip");
    unsetenv("GLYPHORA_PLUGIN");
}

TEST(AFault, IsBuiltInOnlyWhereThereIsSuchAThing) {
    std::ostringstream ignored;
    ConsoleFrontend frontend(ignored);
    Core core(frontend);
    EXPECT_EQ(applySabotage(core, "missing-suite=AI Font Suite:1003"), "");
    EXPECT_EQ(applySabotage(core, "missing-suite=AI Font Suite:1003"),
              "there is no suite AI Font Suite:1003");
    EXPECT_EQ(applySabotage(core, "failing-call=AI Timer Suite/AddTimer:-7:2"), "");
    EXPECT_EQ(applySabotage(core, "failing-call=AI Menu Suite/AddTimer"),
              "no suite has a call AddTimer");
    CallSite* const site = CallSite::find("AI Timer Suite", "AddTimer");
    EXPECT_EQ(site->enter(), kNoErr);
    EXPECT_EQ(site->enter(), -7);
}

} // namespace
} // namespace host::test
