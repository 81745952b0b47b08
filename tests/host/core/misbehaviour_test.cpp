// SPDX-License-Identifier: MIT
// Plug-ins that do one thing wrong each: the host notices, says so, and goes on.
#include "recordingfrontend.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace host::test {
namespace {

using testing::ElementsAre;

struct Fault {
    const char* what;
    std::vector<std::string> misbehaviour;
    std::vector<std::string> errors;
};

class AMisbehavingPlugin : public testing::TestWithParam<Fault> {
protected:
    AMisbehavingPlugin() { setenv("GLYPHORA_TEST_MISBEHAVIOUR", GetParam().what, 1); }
    ~AMisbehavingPlugin() override { unsetenv("GLYPHORA_TEST_MISBEHAVIOUR"); }

    RecordingFrontend frontend;
};

TEST_P(AMisbehavingPlugin, IsNoticed) {
    Core core(frontend);
    const std::filesystem::path folder(TEST_BUNDLES);
    Plugin& bad = core.load(folder / "misbehaving.aip");
    try {
        bad.startUp();
    } catch (const PluginError& problem) {
        frontend.reportError(problem.what());
    }
    Plugin& good = core.load(folder / "wellbehaved.aip");
    good.startUp();
    core.notify(kAIDocumentOpenedNotifier);
    core.shutDownAll();
    EXPECT_EQ(frontend.alerts.size(), 1U) << "the other plug-in was served";
    EXPECT_THAT(frontend.misbehaviour, testing::ElementsAreArray(GetParam().misbehaviour));
    EXPECT_THAT(frontend.errors, testing::ElementsAreArray(GetParam().errors));
}

const std::string openedAnswer =
    "misbehaving: the plug-in answered \"AI Document Opened Notifier\" with error ";

INSTANTIATE_TEST_SUITE_P(
    Faults, AMisbehavingPlugin,
    testing::Values(
        Fault{"nothing", {}, {}},
        Fault{"other thread",
              {"misbehaving called \"AI Notifier Suite\" AddNotifier off the main thread"},
              {}},
        Fault{"leaked suites",
              {"misbehaving did not release 2 suite(s) at its shut-down: AI Font Suite 1003, AI "
               "Notifier Suite 1002 (2 times)"},
              {}},
        Fault{"release without acquire",
              {"misbehaving released \"AI Notifier Suite\" 1002 without acquiring it"},
              {}},
        Fault{"leaked blocks", {"misbehaving leaked 2 block(s) of memory, 123 bytes"}, {}},
        Fault{"call after shut-down",
              {"misbehaving called \"SP Basic Suite\" AcquireSuite after its shut-down"},
              {}},
        Fault{"thrown number",
              {"misbehaving threw the number 'BANG' out of \"AI Notifier\"/\"AI Notify\""},
              {openedAnswer + "'BANG'"}},
        Fault{"thrown zero",
              {"misbehaving threw the number 0 out of \"AI Notifier\"/\"AI Notify\""},
              {openedAnswer + "'!MSG'"}},
        Fault{"thrown exception",
              {"misbehaving threw an exception (out of luck) out of \"AI Notifier\"/\"AI "
               "Notify\""},
              {openedAnswer + "'!MSG'"}},
        Fault{"thrown something",
              {"misbehaving threw something unknown out of \"AI Notifier\"/\"AI Notify\""},
              {openedAnswer + "'!MSG'"}},
        Fault{"error", {}, {openedAnswer + "'OOPS'"}},
        Fault{"failing start", {}, {"misbehaving: the plug-in failed to start with error 'OOPS'"}},
        Fault{"forgotten context",
              {"misbehaving left 2 application context(s) on the stack after \"AI "
               "Notifier\"/\"AI Notify\""},
              {}}),
    [](const auto& test) {
        std::string name = test.param.what;
        for (const char separator : {' ', '-'}) {
            std::replace(name.begin(), name.end(), separator, '_');
        }
        return name;
    });

TEST(APluginThatStaysInMemory, IsNoticedWhenItIsUnloaded) {
    RecordingFrontend frontend;
    Core core(frontend);
    Plugin& plugin = core.load(std::filesystem::path(TEST_BUNDLES) / "staying.aip");
    plugin.startUp();
    EXPECT_TRUE(plugin.unload());
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("staying stays in memory after it was unloaded"));
}

TEST(TheLedger, CountsEqualEntriesAndTellsOnlyTheFirst) {
    RecordingFrontend frontend;
    Ledger ledger(frontend);
    for (int i = 0; i < 3; ++i) {
        ledger.report("p", "same");
        ledger.report("q", "same");
    }
    EXPECT_THAT(frontend.misbehaviour, ElementsAre("p same", "q same"));
    EXPECT_EQ(ledger.entries()[1].times, 3U);
    for (int i = 0; i < 2000; ++i) {
        ledger.report("p", "number " + std::to_string(i));
    }
    EXPECT_EQ(ledger.entries().size(), 1001U);
    EXPECT_EQ(ledger.entries().back().times, 1002U);
    EXPECT_EQ(frontend.misbehaviour.size(), 1001U);
}

class AForgetfulPlugin : public CoreFixture {};

TEST_F(AForgetfulPlugin, MayPutAwayWhatItMadeBeforeItThrew) {
    int object = 0;
    std::vector<std::string> selectors;
    handler = [&](std::string_view, std::string_view selector, void* message) -> SPErr {
        selectors.emplace_back(selector);
        auto& data = *static_cast<SPMessageData*>(message);
        if (selector == "Startup") {
            data.globals = &object;
            throw -1;
        }
        EXPECT_EQ(data.globals, &object);
        data.globals = nullptr;
        return kNoErr;
    };
    Plugin& plugin = core.addBuiltIn("thrower", entry);
    EXPECT_THROW(plugin.startUp(), PluginError);
    EXPECT_THAT(selectors, ElementsAre("Startup", "Shutdown"));
    EXPECT_EQ(plugin.state(), PluginState::Ended);
}

TEST_F(AForgetfulPlugin, HasNotStartedWhenItThrewZero) {
    handler = [](std::string_view, std::string_view selector, void*) -> SPErr {
        return selector == "Startup" ? throw kNoErr : kNoErr;
    };
    EXPECT_THROW(core.addBuiltIn("thrower", entry).startUp(), PluginError);
}

TEST_F(AForgetfulPlugin, IsNotTrustedWithAForeignBlock) {
    int local = 0;
    void* block = nullptr;
    EXPECT_EQ(basic->AllocateBlock(0, &block), kNoErr);
    EXPECT_EQ(basic->FreeBlock(block), kNoErr);
    EXPECT_EQ(basic->FreeBlock(block), kBadParameterErr);
    EXPECT_EQ(basic->FreeBlock(&local), kBadParameterErr);
    ASSERT_EQ(core.ledger().entries().size(), 1U);
    EXPECT_EQ(core.ledger().entries()[0].times, 2U);
}

} // namespace
} // namespace host::test
